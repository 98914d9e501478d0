// Sorting by a callable.

#include <pybind11/pybind11.h>

#include "subjects.hpp"
#include "zktarn/sorting/sorting_mod.hpp"

namespace zktarn::python {

namespace {

namespace py = pybind11;

/// An exception of `exchange` ends the sort.
void sort(std::int32_t first, std::int32_t last, const py::object& exchange) {
    sorting_mod::sort(first, last, [&](std::int32_t a, std::int32_t b) -> flag {
        const int exchanged = PyObject_IsTrue(exchange(a, b).ptr());
        if (exchanged < 0) {
            throw py::error_already_set();
        }
        return exchanged;
    });
}

} // namespace

void add_sort(PyObject* module) {
    py::reinterpret_borrow<py::module_>(module).def("sort", sort);
}

} // namespace zktarn::python
