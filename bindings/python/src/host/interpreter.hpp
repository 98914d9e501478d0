#pragma once

#include <Python.h>

#include <cstdint>
#include <utility>

#include "zktarn/host/libqv.hpp"

// All sources share one table of NumPy's functions, which interpreter.cpp fills.
#define NPY_NO_DEPRECATED_API NPY_1_21_API_VERSION
#define PY_ARRAY_UNIQUE_SYMBOL numpy_functions_of_the_host
#ifndef ZKTARN_NUMPY_TABLE_HERE
#define NO_IMPORT_ARRAY
#endif
#include <numpy/arrayobject.h>

/// The interpreter as the operations of the host use it: its lock, references to its objects,
/// NumPy's functions, and exceptions, which are stored until the library returns (python_host.hpp
/// states which exceptions, and which thread raises them).

namespace zktarn::python_host {

/// Holds the interpreter's lock while it exists, on any thread, whether the thread held it already
/// or not. An exception that was set before is set aside, and set again at the end.
class interpreter_lock {
public:
    interpreter_lock() noexcept;
    ~interpreter_lock();
    interpreter_lock(const interpreter_lock&) = delete;
    interpreter_lock& operator=(const interpreter_lock&) = delete;

    /// False when there is no interpreter: before it starts, and once it has ended. Nothing of
    /// Python may be called then.
    explicit operator bool() const noexcept { return runs_; }

    /// Whether this thread is one of Python's. Others exist for Python only during an operation.
    [[nodiscard]] bool is_python_thread() const noexcept { return is_python_thread_; }

    /// Ends an operation that has failed with an exception set: forgets a MemoryError and stores
    /// any other for the caller of the library.
    void fail() const noexcept;

private:
    bool runs_;
    bool is_python_thread_ = false;
    PyGILState_STATE state_ = PyGILState_UNLOCKED;
    PyObject* type_ = nullptr;
    PyObject* value_ = nullptr;
    PyObject* traceback_ = nullptr;
};

/// A reference that this object owns; may be null. The lock is held whenever one is destroyed.
class reference {
public:
    reference() noexcept = default;
    explicit reference(PyObject* owned) noexcept : object_(owned) {}
    ~reference() { Py_XDECREF(object_); }
    reference(reference&& other) noexcept : object_(other.release()) {}
    reference& operator=(reference&& other) noexcept {
        std::swap(object_, other.object_);
        return *this;
    }
    reference(const reference&) = delete;
    reference& operator=(const reference&) = delete;

    /// A further reference to an object with another owner.
    static reference share(PyObject* borrowed) noexcept {
        Py_XINCREF(borrowed);
        return reference(borrowed);
    }

    explicit operator bool() const noexcept { return object_ != nullptr; }
    [[nodiscard]] PyObject* get() const noexcept { return object_; }
    [[nodiscard]] PyObject* release() noexcept { return std::exchange(object_, nullptr); }

private:
    PyObject* object_ = nullptr;
};

/// Arrays of the host are objects of Python; a handle is the address of one, with a reference:
///
///     struct, 1-by-1          dict, name to value; an empty field is None
///     struct, other extents   numpy.ndarray of such dicts
///     column, n-by-1          numpy.ndarray of float64, one dimension
///     other real matrix       numpy.ndarray of float64, two dimensions, column by column
///     real scalar             float
///     text                    str
///
/// Returns the object behind a handle; null for handle 0.
inline PyObject* object_of(host::array_handle handle) noexcept {
    return reinterpret_cast<PyObject*>(handle);
}

/// The handle of an object, which owns the reference from now on; 0 for null.
inline host::array_handle handle_of(reference object) noexcept {
    return reinterpret_cast<host::array_handle>(object.release());
}

/// Allocates what the procedures below need. Returns false with an exception set when memory is
/// missing.
[[nodiscard]] bool prepare_exceptions() noexcept;

/// Stores the exception that is set, and clears it. Does nothing when none is set.
void store_exception(const interpreter_lock& lock) noexcept;

/// Whether an exception is stored that `zktarn_python_raise` would raise on this thread.
[[nodiscard]] bool has_stored_exception(const interpreter_lock& lock) noexcept;

/// Allocates what a call of a function needs, so that the call itself succeeds without memory.
/// Returns false with an exception set when memory is missing.
[[nodiscard]] bool prepare_functions() noexcept;

} // namespace zktarn::python_host
