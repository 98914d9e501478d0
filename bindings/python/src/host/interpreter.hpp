#pragma once

#include <Python.h>

#include <utility>

/// What every operation of the host begins with, the interpreter's lock, and what it leaves behind:
/// exceptions that wait for the library to return (python_host.hpp says which, and which thread
/// gets them).

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

    /// A further reference to an object that somebody else owns.
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

/// Makes what the procedures below need. Returns false with an exception set when memory is
/// missing.
[[nodiscard]] bool prepare_exceptions() noexcept;

/// Stores the exception that is set, and clears it. Does nothing when none is set.
void store_exception(const interpreter_lock& lock) noexcept;

/// Whether an exception is stored that `zktarn_python_raise` would raise on this thread.
[[nodiscard]] bool has_stored_exception(const interpreter_lock& lock) noexcept;

/// Makes what a call of a function needs even when memory is missing. Returns false with an
/// exception set when memory is missing.
[[nodiscard]] bool prepare_functions() noexcept;

} // namespace zktarn::python_host
