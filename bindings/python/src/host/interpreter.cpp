#define ZKTARN_NUMPY_TABLE_HERE
#include "numpy_api.hpp"

#include "interpreter.hpp"
#include "python_host.hpp"

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

int zktarn_python_start() {
    static bool started = false;
    if (!started) {
        started = _import_array() == 0 && zktarn::python_host::prepare_exceptions() &&
                  zktarn::python_host::prepare_functions();
    }
    return started ? 0 : -1;
}
