// The extension module zktarn._core: its start and its exceptions.

#define ZKTARN_PYTHON_IMPORTS_NUMPY
#include "ufuncs.hpp"

#include <pybind11/pybind11.h>

#include "errors.hpp"
#include "host/python_host.hpp"
#include "module.hpp"

namespace zktarn::python {

namespace {

/// Fills the tables of NumPy's functions and starts the host.
void start() {
    if (_import_array() < 0 || _import_umath() < 0 || zktarn_python_start() < 0) {
        throw python_error{};
    }
}

} // namespace

void set_python_error() noexcept {
    try {
        throw;
    } catch (const python_error&) {
        // The interpreter holds the exception already.
    } catch (pybind11::error_already_set& error) {
        error.restore();
    } catch (const pybind11::builtin_exception& error) {
        error.set_error();
    } catch (const std::bad_alloc&) {
        PyErr_NoMemory();
    } catch (const std::exception& error) {
        PyErr_SetString(PyExc_RuntimeError, error.what());
    } catch (...) {
        PyErr_SetString(PyExc_SystemError, "an exception of unknown type left zktarn");
    }
}

} // namespace zktarn::python

PYBIND11_MODULE(_core, module) {
    using namespace zktarn::python;
    module.doc() = "The procedures of libzktarn_util for Python. Use them through package zktarn.";
    try {
        start();
        add_vector_type(module.ptr());
        add_ufuncs(module.ptr());
        add_random(module.ptr());
        add_callbacks(module.ptr());
    } catch (const python_error&) {
        throw pybind11::error_already_set();
    }
}
