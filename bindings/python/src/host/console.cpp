#include <cstdint>

#include "interpreter.hpp"
#include "zktarn/host/libqvx.hpp"
#include "zktarn/host/libzkoptimutil.hpp"

/// The console: the `sys.stdout` of the moment when text is printed, so that redirection and
/// notebooks show it. Without one (None) the text is dropped, as `print` does.

namespace zktarn::host {

using python_host::interpreter_lock;
using python_host::reference;

namespace {

/// `sys.stdout`, or null when there is none.
reference standard_output() noexcept {
    PyObject* const output = PySys_GetObject("stdout");
    return output == Py_None ? reference() : reference::share(output);
}

/// Calls a method of the console, with `argument` or, if that is null, without. Returns whether it
/// succeeded.
bool call(const interpreter_lock& lock, const reference& output, const char* method,
          PyObject* argument) noexcept {
    const reference result(
        PyObject_CallMethod(output.get(), method, argument == nullptr ? nullptr : "O", argument));
    if (!result) {
        lock.fail();
    }
    return static_cast<bool>(result);
}

} // namespace

extern "C" {

/// Bytes that are not UTF-8 are printed as escapes, \xe4. Returns 0, or 1 after a failure.
std::int32_t qvxprintf800_(const char* text, std::int64_t text_length) noexcept {
    const interpreter_lock lock;
    if (!lock || text_length < 1) {
        return 0;
    }
    const reference output = standard_output();
    if (!output) {
        return 0;
    }
    const reference characters(PyUnicode_DecodeUTF8(text, text_length, "backslashreplace"));
    if (!characters) {
        lock.fail();
        return 1;
    }
    return call(lock, output, "write", characters.get()) ? 0 : 1;
}

void ioFlushOptim() noexcept {
    const interpreter_lock lock;
    if (!lock) {
        return;
    }
    if (const reference output = standard_output()) {
        call(lock, output, "flush", nullptr);
    }
}
}

} // namespace zktarn::host
