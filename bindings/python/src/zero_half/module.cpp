/// The extension module `zktarn._zero_half`, which the package `zktarn.zero_half` calls. Its
/// functions check no arguments: that package does.

#include <pybind11/pybind11.h>

#include "host/python_host.hpp"
#include "input/error.hpp"
#include "input/read_model.hpp"
#include "run/run.hpp"
#include "zero_half.hpp"

namespace py = pybind11;

namespace {

constexpr const char* model_error_manual =
    "A model that cannot be tightened, and why, in one sentence.\n\n"
    "The file is in no format that the solver reads, its numbers are too large, no column is\n"
    "integer, bounds cross, or the relaxation is infeasible, unbounded or cannot be decided.";

PyObject* model_error = nullptr;

void raise_model_error(std::exception_ptr thrown) {
    try {
        if (thrown) {
            std::rethrow_exception(thrown);
        }
    } catch (const zero_half::error& found) {
        const py::str sentence = zktarn::python::decoded(found.what());
        PyErr_SetObject(model_error, sentence.ptr());
    }
}

py::object known_optimum(const py::bytes& file) {
    const std::optional<double> optimum = zero_half::known_optimum(file);
    return optimum ? py::object(py::float_(*optimum)) : py::object(py::none());
}

py::dict endings() {
    py::dict texts;
    for (const zero_half::ending_text& each : zero_half::ending_texts) {
        texts[each.name] = each.description;
    }
    return texts;
}

} // namespace

PYBIND11_MODULE(_zero_half, module) {
    if (zktarn_python_start() != 0) {
        throw py::error_already_set();
    }
    module.doc() = "The engine of zktarn.zero_half; call that package instead.";
    model_error = PyErr_NewExceptionWithDoc("zktarn.zero_half.ModelError", model_error_manual,
                                            PyExc_ValueError, nullptr);
    if (model_error == nullptr) {
        throw py::error_already_set();
    }
    module.add_object("ModelError", model_error);
    py::register_local_exception_translator(raise_model_error);
    module.def("read_model", &zktarn::python::read_model);
    module.def("tighten", &zktarn::python::tighten);
    module.def("write_mps", &zktarn::python::write_mps);
    module.def("known_optimum", &known_optimum);
    module.def("endings", &endings);
}
