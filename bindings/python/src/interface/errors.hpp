#pragma once

#include <Python.h>

#include <cstdarg>
#include <exception>
#include <new>

#include "host/python_host.hpp"

/// Python exceptions in C++: `raise` sets one and leaves by a C++ exception, `protect` is the
/// boundary where that one ends.

namespace zktarn::python {

/// Thrown while the interpreter holds the exception that describes the error.
struct python_error {};

/// Raises a Python exception with one sentence, formatted as by `PyErr_Format`.
[[noreturn]] [[gnu::cold]] inline void raise(PyObject* type, const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    PyErr_FormatV(type, format, arguments);
    va_end(arguments);
    throw python_error{};
}

/// Passes on the failure of a call of the C API that returns null and sets an exception.
template <class T>
T* require(T* result) {
    if (result == nullptr) {
        throw python_error{};
    }
    return result;
}

/// Raises what the host stored while the library ran: the exception of an output function, of the
/// console, of Ctrl-C, of an assertion.
inline void raise_pending() {
    if (zktarn_python_raise() != 0) {
        throw python_error{};
    }
}

/// Sets the Python exception for the C++ exception in flight.
[[gnu::cold]] void set_python_error() noexcept;

/// Runs `body`, a procedure of the interpreter's C interface. Returns its result, or `failure` with
/// a Python exception set when it threw.
template <class Result, class Body>
Result protect(Result failure, Body&& body) noexcept {
    try {
        return body();
    } catch (...) {
        set_python_error();
        return failure;
    }
}

} // namespace zktarn::python
