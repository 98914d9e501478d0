// The extension module zktarn._core.

#define ZKTARN_PYTHON_IMPORTS_NUMPY
#include "numpy_api.hpp"

#include <pybind11/pybind11.h>

#include "errors.hpp"
#include "host/python_host.hpp"
#include "subjects.hpp"

namespace zktarn::python {

namespace {

/// Fills the tables of NumPy's functions and starts the host.
void start() {
    if (_import_array() < 0 || _import_umath() < 0 || zktarn_python_start() < 0) {
        throw python_error{};
    }
}

} // namespace

} // namespace zktarn::python

PYBIND11_MODULE(_core, module) {
    using namespace zktarn::python;
    module.doc() = "The procedures of libzktarn_util for Python. Use them through package zktarn.";
    try {
        start();
        add_vector_type(module.ptr());
        add_integrality(module.ptr());
        add_rational(module.ptr());
        add_scalar_search(module.ptr());
        add_sort(module.ptr());
        add_random(module.ptr());
        add_callbacks(module.ptr());
    } catch (const python_error&) {
        throw pybind11::error_already_set();
    }
}
