/// The bridge between a solver and its host, in C: solve state, reports, interrupts, assertions.

#include "arguments.hpp"
#include "zktarn/assert/assert_mod.hpp"
#include "zktarn/callbacks/callbacks_type_util.hpp"
#include "zktarn/callbacks/callbacks_util.hpp"
#include "zktarn/host/libqv.hpp"

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

void zktarn_cbinit(zktarn_cbdata** cb) {
    if (!c::any_null(cb)) {
        callbacks_util::cbinit(cpp(cb));
    }
}

void zktarn_cbfree(zktarn_cbdata** cb) {
    if (!c::any_null(cb)) {
        delete cpp(cb);
        *cb = nullptr;
    }
}

zktarn_array_handle zktarn_qvinitcbarray(const char* phase, size_t phase_length) {
    if (c::null_elements(phase, phase_length)) {
        return 0;
    }
    return callbacks_util::qvinitcbarray({phase, phase_length});
}

void zktarn_qvfreecbarray(zktarn_array_handle* structure) {
    if (!c::any_null(structure) && *structure != 0) {
        host::qvdestroyarray800_(*structure);
        *structure = 0;
    }
}

void zktarn_addrealscalartoqvstruct(zktarn_array_handle structure, const char* name,
                                    size_t name_length, double value) {
    if (!c::null_elements(name, name_length)) {
        callbacks_util::addrealscalartoqvstruct(structure, {name, name_length}, value);
    }
}

void zktarn_addrealvectoqvstruct(zktarn_array_handle structure, const char* name,
                                 size_t name_length, const double* values, int64_t n) {
    if (!c::null_elements(name, name_length) && !c::null_elements(values, n)) {
        callbacks_util::addrealvectoqvstruct(structure, {name, name_length}, values, n);
    }
}

void zktarn_qvcalloutputfcn(zktarn_array_handle structure, zktarn_flag* stop, int32_t status,
                            int32_t ctrlc) {
    if (!c::any_null(stop)) {
        callbacks_util::qvcalloutputfcn(structure, *stop, status, ctrlc);
    }
}

void zktarn_cbprintdisplay(int32_t status, int32_t ctrlc, int32_t display, const char* line,
                           size_t line_length) {
    if (!c::null_elements(line, line_length)) {
        callbacks_util::cbprintdisplay(status, ctrlc, display, {line, line_length});
    }
}

zktarn_flag zktarn_cbhasinterrupt(int32_t status, int32_t ctrlc) {
    return callbacks_util::cbhasinterrupt(status, ctrlc);
}

zktarn_flag zktarn_cbstopfromoutputfcn(int32_t status) {
    return callbacks_util::cbstopfromoutputfcn(status);
}

zktarn_flag zktarn_cbhasoutputfcn(int32_t indicator) {
    return callbacks_util::cbhasoutputfcn(indicator);
}

zktarn_flag zktarn_cbisdisplayoff(int32_t display) {
    return callbacks_util::cbisdisplayoff(display);
}

zktarn_flag zktarn_cbisdisplayfinal(int32_t display) {
    return callbacks_util::cbisdisplayfinal(display);
}

zktarn_flag zktarn_cbisctrlcon(int32_t ctrlc) {
    return callbacks_util::cbisctrlcon(ctrlc);
}

void zktarn_lowercasee(char* text, size_t text_length) {
    if (!c::null_elements(text, text_length)) {
        callbacks_util::lowercasee({text, text_length});
    }
}

void zktarn_tarnassert(zktarn_flag condition) {
    assert_mod::tarnassert(condition);
}
