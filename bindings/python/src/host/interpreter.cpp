#define ZKTARN_NUMPY_TABLE_HERE
#include "interpreter.hpp"

#include <chrono>
#include <utility>

#include "python_host.hpp"
#include "zktarn/host/libut.hpp"
#include "zktarn/host/libzkoptimutil.hpp"

/// The interpreter's lock; the exceptions that are stored until the library returns; interrupts and
/// assertions, which raise them.

namespace zktarn::python_host {

interpreter_lock::interpreter_lock() noexcept : runs_(Py_IsInitialized() != 0) {
    if (!runs_) {
        return;
    }
    is_python_thread_ = PyGILState_GetThisThreadState() != nullptr;
    state_ = PyGILState_Ensure();
    PyErr_Fetch(&type_, &value_, &traceback_);
}

interpreter_lock::~interpreter_lock() {
    if (!runs_) {
        return;
    }
    PyErr_Restore(type_, value_, traceback_);
    PyGILState_Release(state_);
}

void interpreter_lock::fail() const noexcept {
    if (PyErr_ExceptionMatches(PyExc_MemoryError) != 0) {
        PyErr_Clear();
    } else {
        store_exception(*this);
    }
}

namespace {

/// The key under which a thread of Python keeps its exception. Created once, so that a look-up
/// needs no memory.
PyObject* key() noexcept {
    static PyObject* const name = PyUnicode_InternFromString("zktarn.stored_exception");
    return name;
}

/// Upper bound of the number of exceptions stored and not yet raised; a thread may end with one.
/// While it is 0, no look-up is needed.
Py_ssize_t stored = 0;

/// The exception that all threads made by C++ share.
PyObject* shared = nullptr;

/// Takes the exception that is set, complete with its traceback; null when none is set.
reference take_current() noexcept {
    PyObject* type = nullptr;
    PyObject* value = nullptr;
    PyObject* traceback = nullptr;
    PyErr_Fetch(&type, &value, &traceback);
    if (type != nullptr) {
        PyErr_NormalizeException(&type, &value, &traceback);
        if (traceback != nullptr) {
            PyException_SetTraceback(value, traceback);
        }
    }
    Py_XDECREF(type);
    Py_XDECREF(traceback);
    return reference(value);
}

/// The exception of this thread of Python, borrowed; null without one.
PyObject* own() noexcept {
    PyObject* const values = PyThreadState_GetDict();
    return values == nullptr ? nullptr : PyDict_GetItem(values, key());
}

/// Sets or, by null, removes the exception of this thread of Python. Returns false when memory is
/// missing.
bool set_own(PyObject* exception) noexcept {
    PyObject* const values = PyThreadState_GetDict();
    if (values == nullptr) {
        return false;
    }
    const int status = exception == nullptr ? PyDict_DelItem(values, key())
                                            : PyDict_SetItem(values, key(), exception);
    if (status != 0) {
        PyErr_Clear();
    }
    return status == 0;
}

/// Whether `next` takes the place of `first`: an interrupt must not be lost behind an error.
bool prevails(PyObject* next, PyObject* first) noexcept {
    return next != first && PyObject_IsInstance(next, PyExc_Exception) == 0 &&
           PyObject_IsInstance(first, PyExc_Exception) == 1;
}

} // namespace

bool prepare_exceptions() noexcept {
    return key() != nullptr;
}

void store_exception(const interpreter_lock& lock) noexcept {
    reference exception = take_current();
    if (!exception) {
        return;
    }
    PyObject* const first = lock.is_python_thread() ? own() : shared;
    if (first != nullptr) {
        if (!prevails(exception.get(), first)) {
            return;
        }
        PyException_SetContext(exception.get(), reference::share(first).release());
        --stored;
    }
    ++stored;
    if (lock.is_python_thread() && set_own(exception.get())) {
        return;
    }
    Py_XDECREF(std::exchange(shared, exception.release()));
}

bool has_stored_exception(const interpreter_lock& lock) noexcept {
    return stored > 0 && (shared != nullptr || (lock.is_python_thread() && own() != nullptr));
}

} // namespace zktarn::python_host

int zktarn_python_start() {
    static bool started = false;
    if (!started) {
        started = _import_array() == 0 && zktarn::python_host::prepare_exceptions() &&
                  zktarn::python_host::prepare_functions();
    }
    return started ? 0 : -1;
}

int zktarn_python_raise() {
    using namespace zktarn::python_host;
    if (stored == 0) {
        return 0;
    }
    reference exception = reference::share(own());
    if (exception) {
        set_own(nullptr);
    } else {
        exception = reference(std::exchange(shared, nullptr));
    }
    if (!exception) {
        return 0;
    }
    --stored;
    PyErr_Restore(reference::share(reinterpret_cast<PyObject*>(Py_TYPE(exception.get()))).release(),
                  reference::share(exception.get()).release(),
                  PyException_GetTraceback(exception.get()));
    return -1;
}

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

extern "C" void assertOptim(bool condition) noexcept {
    if (condition) {
        return;
    }
    const interpreter_lock lock;
    if (lock) {
        PyErr_SetString(PyExc_AssertionError, "the solver asserted a condition that is false");
        lock.fail();
    }
}

} // namespace zktarn::host
