// Procedures that call a callable back: the sort, and the search for a scalar that makes a set of
// reals integral.

#include "zktarn/util/scalar_search.hpp"

#include <pybind11/numpy.h>
#include <pybind11/pybind11.h>

#include <exception>

#include "module.hpp"
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

using reals = py::array_t<double, py::array::c_style>;
using flags = py::array_t<bool, py::array::c_style>;

struct tolerances {
    double eps;
    double max_den;
    double max_scalar;
};

py::object search(std::int32_t n, util::element_supplier supply, const tolerances& bounds,
                  bool skip_marked, bool selected_only) {
    flag found = 0;
    double scalar = 0.0;
    util::find_scalar_integral(n, supply, bounds.eps, bounds.max_den, bounds.max_scalar, found,
                               scalar, flag{skip_marked}, flag{selected_only});
    return found != 0 ? py::object(py::float_(scalar)) : py::object(py::none());
}

/// The elements of an array; those that `mask` selects take part.
py::object of_array(const reals& values, const flags& mask, double eps, double max_den,
                    double max_scalar) {
    const double* const data = values.data();
    const bool* const selection = mask.data();
    const auto supply = [=](const std::int32_t& index, double& value, flag&, flag& selected) {
        value = data[index - 1];
        selected = selection[index - 1] ? 1 : 0;
    };
    const py::gil_scoped_release unlocked;
    const auto n = static_cast<std::int32_t>(values.size());
    flag found = 0;
    double scalar = 0.0;
    util::find_scalar_integral(n, supply, eps, max_den, max_scalar, found, scalar, {}, flag{1});
    const py::gil_scoped_acquire locked;
    return found != 0 ? py::object(py::float_(scalar)) : py::object(py::none());
}

/// The elements that a callable returns. After an exception it is not called again; the search then
/// ends with zeros, and the exception goes to the caller.
py::object of_callable(std::int32_t n, const py::object& get_element, const tolerances& bounds,
                       bool skip_marked, bool selected_only) {
    std::exception_ptr raised;
    const auto supply = [&](const std::int32_t& index, double& value, flag& marked,
                            flag& selected) {
        if (raised) {
            return;
        }
        try {
            const py::tuple element = get_element(index);
            value = element[0].cast<double>();
            marked = element[1].cast<bool>() ? 1 : 0;
            selected = element[2].cast<bool>() ? 1 : 0;
        } catch (...) {
            raised = std::current_exception();
        }
    };
    py::object scalar = search(n, supply, bounds, skip_marked, selected_only);
    if (raised) {
        std::rethrow_exception(raised);
    }
    return scalar;
}

} // namespace

void add_callables(PyObject* module) {
    auto scope = py::reinterpret_borrow<py::module_>(module);
    scope.def("sort", sort);
    scope.def("scalar_of_array", of_array);
    scope.def("scalar_of_callable", [](std::int32_t n, const py::object& get_element, double eps,
                                       double max_den, double max_scalar, bool skip_marked,
                                       bool selected_only) {
        return of_callable(n, get_element, {eps, max_den, max_scalar}, skip_marked, selected_only);
    });
}

} // namespace zktarn::python
