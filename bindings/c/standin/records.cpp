/// The records of the library, in C.

#include "zktarn_standin/records.hpp"
#include "zktarn_standin.h"

namespace standin = zktarn::standin;

void zktarn_standin_fail_record(int64_t k) {
    standin::fail_record(k);
}

int64_t zktarn_standin_record_requests() {
    return standin::record_requests();
}

int64_t zktarn_standin_live_records() {
    return standin::live_records();
}
