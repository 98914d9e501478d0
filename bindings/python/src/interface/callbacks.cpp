// Procedures that call functions of Python: the sort, the search for a scalar that makes reals
// integral, and the bridge between a solver and its host (output function, console, interrupts).

#include "zktarn/callbacks/callbacks_util.hpp"

#include <pybind11/numpy.h>
#include <pybind11/pybind11.h>

#include <exception>
#include <memory>
#include <string>
#include <string_view>

#include "errors.hpp"
#include "module.hpp"
#include "zktarn/assert/assert_mod.hpp"
#include "zktarn/owners.hpp"
#include "zktarn/sorting/sorting_mod.hpp"
#include "zktarn/util/scalar_search.hpp"

namespace zktarn::python {

namespace {

namespace py = pybind11;
using namespace callbacks_util;

using reals = py::array_t<double, py::array::c_style>;

// Sort and scalar search

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

/// The search over the elements of an array; those that `mask` selects take part.
py::object scalar_of_array(const reals& values, const flags& mask, double eps, double max_den,
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

/// The search over the elements that a callable returns. After an exception it is not called again;
/// the search then ends with zeros, and the exception goes to the caller.
py::object scalar_of_callable(std::int32_t n, const py::object& get_element,
                              const tolerances& bounds, bool skip_marked, bool selected_only) {
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

// Solver and host

/// Registers an output function on this thread until the end of the scope.
class registered_function {
public:
    explicit registered_function(const py::object& function)
        : before_(py::reinterpret_steal<py::object>(
              require(zktarn_python_set_function(name, function.ptr())))) {}
    registered_function(const registered_function&) = delete;
    registered_function& operator=(const registered_function&) = delete;
    ~registered_function() { Py_XDECREF(zktarn_python_set_function(name, before_.ptr())); }

private:
    static constexpr const char* name = "tarnCallback";
    py::object before_;
};

void add_field(host::array_handle structure, std::string_view name, const reals& value) {
    if (value.ndim() == 0) {
        addrealscalartoqvstruct(structure, name, *value.data());
    } else {
        addrealvectoqvstruct(structure, name, value.data(), value.size());
    }
}

/// Makes a struct of the fields, name to array of no or one dimension, calls the output function
/// with it, and returns whether to stop.
bool report(const py::object& function, const std::string& phase, const py::dict& fields,
            std::int32_t status, std::int32_t ctrlc) {
    const owned_struct structure(phase);
    for (const auto& [name, value] : fields) {
        add_field(*structure, name.cast<std::string>(), value.cast<reals>());
    }
    raise_pending();
    if (!structure) {
        raise(PyExc_MemoryError, "no memory for a report");
    }
    const registered_function registered(function);
    flag stop = 0;
    qvcalloutputfcn(*structure, stop, status, ctrlc);
    return stop != 0;
}

std::unique_ptr<cbdata> begin() {
    cbdata* made = nullptr;
    cbinit(made);
    if (made == nullptr) {
        raise(PyExc_MemoryError, "no memory for the data of a solve");
    }
    return std::unique_ptr<cbdata>(made);
}

void display(std::int32_t status, std::int32_t ctrlc, std::int32_t level, const std::string& line) {
    cbprintdisplay(status, ctrlc, level, line);
    raise_pending();
}

bool has_interrupt(std::int32_t status, std::int32_t ctrlc) {
    const bool ends = cbhasinterrupt(status, ctrlc) != 0;
    raise_pending();
    return ends;
}

bool stopped_by_output_function(std::int32_t status) {
    return cbstopfromoutputfcn(status) != 0;
}

bool has_output_function(std::int32_t indicator) {
    return cbhasoutputfcn(indicator) != 0;
}

bool is_display_off(std::int32_t level) {
    return cbisdisplayoff(level) != 0;
}

bool is_display_final(std::int32_t level) {
    return cbisdisplayfinal(level) != 0;
}

bool polls(std::int32_t ctrlc) {
    return cbisctrlcon(ctrlc) != 0;
}

void assert_condition(bool condition) {
    assert_mod::tarnassert(condition ? 1 : 0);
    raise_pending();
}

/// The counters of a solve, as attributes.
void add_data(py::module_& scope) {
    py::class_<cbdata>(scope, "SolveData")
        .def_readwrite("nodes_explored", &cbdata::nodes_explored)
        .def_readwrite("feasible_points", &cbdata::feasible_points)
        .def_readwrite("node", &cbdata::node)
        .def_readwrite("parent_node", &cbdata::parent_node)
        .def_readwrite("depth", &cbdata::depth)
        .def_readwrite("branching_variable", &cbdata::branching_variable)
        .def_readwrite("lower_bound", &cbdata::lower_bound)
        .def_readwrite("upper_bound", &cbdata::upper_bound)
        .def_readwrite("gap", &cbdata::gap)
        .def_readwrite("incumbent_node", &cbdata::incumbent_node)
        .def_readwrite("cuts", &cbdata::cuts)
        .def_readwrite("restarts", &cbdata::restarts);
}

} // namespace

void add_callbacks(PyObject* module) {
    auto scope = py::reinterpret_borrow<py::module_>(module);
    scope.def("sort", sort);
    scope.def("scalar_of_array", scalar_of_array);
    scope.def("scalar_of_callable",
              [](std::int32_t n, const py::object& get_element, double eps, double max_den,
                 double max_scalar, bool skip_marked, bool selected_only) {
                  return scalar_of_callable(n, get_element, {eps, max_den, max_scalar}, skip_marked,
                                            selected_only);
              });
    add_data(scope);
    define(scope, "begin", begin);
    define(scope, "report", report);
    define(scope, "raise_pending", raise_pending);
    define(scope, "display", display);
    define(scope, "has_interrupt", has_interrupt);
    define(scope, "stopped_by_output_function", stopped_by_output_function);
    define(scope, "has_output_function", has_output_function);
    define(scope, "is_display_off", is_display_off);
    define(scope, "is_display_final", is_display_final);
    define(scope, "polls", polls);
    define(scope, "assert_condition", assert_condition);
}

} // namespace zktarn::python
