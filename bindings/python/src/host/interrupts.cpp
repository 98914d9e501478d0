#include <chrono>

#include "exceptions.hpp"
#include "interpreter.hpp"
#include "zktarn/host/libut.hpp"

namespace zktarn::host {

namespace {

using python_host::interpreter_lock;

/// A thread without the interpreter's lock takes it for a poll at most once in this time, so that a
/// solver that polls in its inner loop does not compete for it with other threads.
constexpr auto interval = std::chrono::milliseconds(10);

bool is_too_early() noexcept {
    using clock = std::chrono::steady_clock;
    thread_local clock::time_point last;
    const clock::time_point now = clock::now();
    if (now - last < interval) {
        return true;
    }
    last = now;
    return false;
}

} // namespace

/// Runs the signal handlers of Python that are due: by default Ctrl-C raises KeyboardInterrupt,
/// which is stored. Python runs them on its main thread only.
extern "C" bool utIsInterruptPending() noexcept {
    if (Py_IsInitialized() == 0 || (PyGILState_Check() == 0 && is_too_early())) {
        return false;
    }
    const interpreter_lock lock;
    if (PyErr_CheckSignals() != 0) {
        python_host::store_exception(lock);
    }
    return python_host::has_stored_exception(lock);
}

} // namespace zktarn::host
