#include "interpreter.hpp"

#include "exceptions.hpp"

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

} // namespace zktarn::python_host
