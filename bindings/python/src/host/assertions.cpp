#include "interpreter.hpp"
#include "zktarn/host/libzkoptimutil.hpp"

namespace zktarn::host {

extern "C" void assertOptim(bool condition) noexcept {
    if (condition) {
        return;
    }
    const python_host::interpreter_lock lock;
    if (lock) {
        PyErr_SetString(PyExc_AssertionError, "the solver asserted a condition that is false");
        lock.fail();
    }
}

} // namespace zktarn::host
