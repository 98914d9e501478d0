#include <cstdint>
#include <utility>

#include "interpreter.hpp"
#include "python_host.hpp"
#include "zktarn/host/libqvx.hpp"

/// Functions of the host's language: callables of Python, by name.

namespace zktarn::python_host {

namespace {

/// The key under which a thread of Python keeps its functions.
PyObject* key() noexcept {
    static PyObject* const name = PyUnicode_InternFromString("zktarn.functions");
    return name;
}

/// The functions that this thread of Python registered, borrowed; null without any.
PyObject* own_functions() noexcept {
    PyObject* const values = PyThreadState_GetDict();
    return values == nullptr ? nullptr : PyDict_GetItem(values, key());
}

/// The same, made when there is none yet; null with an exception set.
PyObject* own_functions_made() noexcept {
    if (PyObject* const found = own_functions()) {
        return found;
    }
    PyObject* const values = PyThreadState_GetDict();
    const reference made(PyDict_New());
    if (values == nullptr || !made || PyDict_SetItem(values, key(), made.get()) != 0) {
        return nullptr;
    }
    return made.get();
}

/// The callable of that name for this thread; null with an exception set.
reference function(const interpreter_lock& lock, PyObject* name) noexcept {
    for (PyObject* const table :
         {lock.is_python_thread() ? own_functions() : nullptr, zktarn_python_functions()}) {
        PyObject* const found = table == nullptr ? nullptr : PyDict_GetItem(table, name);
        if (found != nullptr) {
            return reference::share(found);
        }
    }
    PyErr_Format(PyExc_LookupError, "there is no function '%U' for the solver to call", name);
    return {};
}

/// The argument of a callable for an array: a struct is copied, so that the solver's stays
/// unchanged; everything else is the object itself.
reference argument(host::array_handle handle) noexcept {
    PyObject* const object = handle == 0 ? Py_None : object_of(handle);
    if (PyDict_Check(object) != 0) {
        return reference(PyDict_Copy(object));
    }
    return reference::share(object);
}

/// The arguments of a call; null with an exception set.
reference arguments(std::int32_t count, const host::array_handle* handles) noexcept {
    reference all(PyTuple_New(count));
    for (std::int32_t i = 0; all && i < count; ++i) {
        reference each = argument(handles[i]);
        if (!each) {
            return {};
        }
        PyTuple_SET_ITEM(all.get(), i, each.release());
    }
    return all;
}

/// Replaces the exception that is set by a TypeError about the answer, whose cause it becomes.
void refuse(PyObject* answer) noexcept {
    PyObject* type = nullptr;
    PyObject* cause = nullptr;
    PyObject* traceback = nullptr;
    PyErr_Fetch(&type, &cause, &traceback);
    PyErr_NormalizeException(&type, &cause, &traceback);
    Py_XDECREF(type);
    Py_XDECREF(traceback);
    PyErr_Format(PyExc_TypeError,
                 "an output function has to return a real number, an array of at least one, or "
                 "None, not %.200R",
                 answer);
    PyObject* value = nullptr;
    PyErr_Fetch(&type, &value, &traceback);
    PyErr_NormalizeException(&type, &value, &traceback);
    if (value != nullptr && cause != nullptr) {
        PyException_SetCause(value, cause);
    } else {
        Py_XDECREF(cause);
    }
    PyErr_Restore(type, value, traceback);
}

/// An answer as an array of reals; null with an exception set.
reference real_array(PyObject* answer) noexcept {
    if (PyUnicode_Check(answer) == 0 && PyBytes_Check(answer) == 0) {
        reference made(PyArray_FromAny(answer, PyArray_DescrFromType(NPY_DOUBLE), 0, 0,
                                       NPY_ARRAY_F_CONTIGUOUS | NPY_ARRAY_ALIGNED |
                                           NPY_ARRAY_NOTSWAPPED | NPY_ARRAY_ENSUREARRAY,
                                       nullptr));
        if (made && PyArray_SIZE(reinterpret_cast<PyArrayObject*>(made.get())) > 0) {
            return made;
        }
        if (!made && PyErr_ExceptionMatches(PyExc_TypeError) == 0 &&
            PyErr_ExceptionMatches(PyExc_ValueError) == 0) {
            return {};
        }
    }
    refuse(answer);
    return {};
}

/// An answer as the array that the solver gets; null with an exception set.
reference converted(PyObject* answer) noexcept {
    if (answer == Py_None) {
        return reference(PyFloat_FromDouble(0.0));
    }
    return PyFloat_CheckExact(answer) != 0 ? reference::share(answer) : real_array(answer);
}

/// Fills the outputs from what the callable returned: one value, or a tuple of several. Returns
/// false with an exception set.
bool fill(std::int32_t count, host::array_handle* outputs, PyObject* returned) noexcept {
    if (count == 1) {
        outputs[0] = handle_of(converted(returned));
        return outputs[0] != 0;
    }
    if (count > 1 && (PyTuple_Check(returned) == 0 || PyTuple_GET_SIZE(returned) != count)) {
        PyErr_Format(PyExc_TypeError, "a function with %d results has to return a tuple of as many",
                     static_cast<int>(count));
        return false;
    }
    for (std::int32_t i = 0; i < count; ++i) {
        outputs[i] = handle_of(converted(PyTuple_GET_ITEM(returned, i)));
        if (outputs[i] == 0) {
            return false;
        }
    }
    return true;
}

/// Calls the function and fills the outputs. Returns false with an exception set.
bool call(const interpreter_lock& lock, PyObject* name, std::int32_t noutputs,
          host::array_handle* outputs, std::int32_t ninputs,
          const host::array_handle* inputs) noexcept {
    const reference callable = function(lock, name);
    const reference given = callable ? arguments(ninputs, inputs) : reference();
    const reference returned(given ? PyObject_CallObject(callable.get(), given.get()) : nullptr);
    return returned && fill(noutputs, outputs, returned.get());
}

/// The answer that ends a solve. Made once, because it must be at hand when memory is not.
PyObject* stop() noexcept {
    static PyObject* const one = PyFloat_FromDouble(1.0);
    return one;
}

/// Stores the exception of a call, and answers for the function, so that the solver stops.
void end_solve(const interpreter_lock& lock, std::int32_t noutputs,
               host::array_handle* outputs) noexcept {
    store_exception(lock);
    for (std::int32_t i = 0; i < noutputs; ++i) {
        Py_XDECREF(object_of(std::exchange(outputs[i], 0)));
    }
    if (noutputs > 0) {
        outputs[0] = handle_of(reference::share(stop()));
    }
}

} // namespace

bool prepare_functions() noexcept {
    return key() != nullptr && stop() != nullptr && zktarn_python_functions() != nullptr;
}

} // namespace zktarn::python_host

namespace zktarn::host {

/// An exception of any type is stored, and the first output is 1.0. Returns 0, or 1 after an
/// exception.
extern "C" std::int32_t qvxcallquarn800_(const std::int32_t& noutputs, array_handle* outputs,
                                         const std::int32_t& ninputs, const array_handle* inputs,
                                         const char* name, std::int64_t name_length) noexcept {
    const python_host::interpreter_lock lock;
    if (!lock) {
        return 1;
    }
    for (std::int32_t i = 0; i < noutputs; ++i) {
        outputs[i] = 0;
    }
    const python_host::reference text(PyUnicode_DecodeUTF8(name, name_length, "backslashreplace"));
    if (text && python_host::call(lock, text.get(), noutputs, outputs, ninputs, inputs)) {
        return 0;
    }
    python_host::end_solve(lock, noutputs, outputs);
    return 1;
}

} // namespace zktarn::host

PyObject* zktarn_python_functions() {
    static PyObject* const functions = PyDict_New();
    return functions;
}

PyObject* zktarn_python_set_function(const char* name, PyObject* callable) {
    using namespace zktarn::python_host;
    const bool removes = callable == nullptr || callable == Py_None;
    if (!removes && PyCallable_Check(callable) == 0) {
        PyErr_Format(PyExc_TypeError, "an output function has to be callable, and '%.200s' is not",
                     Py_TYPE(callable)->tp_name);
        return nullptr;
    }
    PyObject* const table = own_functions_made();
    if (table == nullptr) {
        return nullptr;
    }
    PyObject* const found = PyDict_GetItemString(table, name);
    reference previous = reference::share(found == nullptr ? Py_None : found);
    const int status = !removes           ? PyDict_SetItemString(table, name, callable)
                       : found != nullptr ? PyDict_DelItemString(table, name)
                                          : 0;
    return status == 0 ? previous.release() : nullptr;
}
