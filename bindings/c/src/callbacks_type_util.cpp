#include "zktarn/callbacks/callbacks_type_util.hpp"

#include "arguments.hpp"
#include "records.hpp"

using namespace zktarn;
using c::cpp;

void zktarn_cbstatusdatainitialise(zktarn_cbstatusdata* first, int32_t count) {
    if (c::has_records(first, count)) {
        callbacks_type_util::_cbstatusdatainitialise(cpp(first), count);
    }
}

void zktarn_cbdatainitialise(zktarn_cbdata* first, int32_t count) {
    if (c::has_records(first, count)) {
        callbacks_type_util::_cbdatainitialise(cpp(first), count);
    }
}

void zktarn_cbdatalistinitialise(zktarn_cbdatalist* first, int32_t count) {
    if (c::has_records(first, count)) {
        callbacks_type_util::_cbdatalistinitialise(cpp(first), count);
    }
}

void zktarn_cbdatalistcopy(zktarn_cbdatalist* first, int32_t count) {
    if (c::has_records(first, count)) {
        callbacks_type_util::_cbdatalistcopy(cpp(first), count);
    }
}

void zktarn_cbdatalistfinalise(zktarn_cbdatalist* first, int32_t count) {
    if (c::has_records(first, count)) {
        callbacks_type_util::_cbdatalistfinalise(cpp(first), count);
    }
}
