// The extension module zktarn._host: what Python code asks the host itself.

#include <dlfcn.h>

#include <string>

#include <pybind11/pybind11.h>

#include "host/python_host.hpp"
#include "zktarn/memory/memory_mod.hpp"
#include "zktarn/version.hpp"
#include "zktarn_conformance/check_host.hpp"

namespace py = pybind11;

namespace {

/// The file of the library that has this function.
std::string file_of(const void* function) {
    Dl_info found{};
    return ::dladdr(function, &found) != 0 && found.dli_fname != nullptr ? found.dli_fname : "?";
}

const void* library_function() {
    return reinterpret_cast<const void*>(&zktarn::memory_mod::mallocate);
}

/// Throws ImportError when libzktarn_util runs on another host: a library of the same name that was
/// in the process before, or that a loader variable puts first.
void require_this_host() {
    void* const address = zktarn::memory_mod::mallocate(1);
    const auto block = py::reinterpret_steal<py::object>(zktarn_python_block(address));
    zktarn::memory_mod::mdeallocate(address);
    if (!block) {
        throw py::import_error(
            "libzktarn_util (" + file_of(library_function()) +
            ") runs on another host in this process; import zktarn before anything that loads "
            "another host, and without LD_PRELOAD of one");
    }
}

bool conformance(const std::string& function, double answer, bool console_is_fd1) {
    static bool has_run = false;
    if (has_run) {
        throw std::runtime_error("the checks of the host run once in a process");
    }
    has_run = true;
    const py::gil_scoped_release unlocked;
    zktarn::host_conformance::report_signals();
    zktarn::host_conformance::check_host({function, answer, console_is_fd1});
    return zktarn::host_conformance::summary();
}

py::dict functions() {
    return py::reinterpret_borrow<py::dict>(zktarn_python_functions());
}

void set_bit_generator(const py::object& factory) {
    if (zktarn_python_set_bit_generator(factory.ptr()) != 0) {
        throw py::error_already_set();
    }
}

} // namespace

PYBIND11_MODULE(_host, module) {
    if (zktarn_python_start() != 0) {
        throw py::error_already_set();
    }
    require_this_host();
    module.doc() = "The host of libzktarn_util, made of CPython and NumPy.";
    module.attr("version") = ZKTARN_VERSION_STRING;
    module.attr("library") = file_of(library_function());
    module.attr("functions") = functions();
    module.def("set_bit_generator", &set_bit_generator, py::arg("factory"),
               "Sets what makes the bit generator of a seed: a callable that returns one for an "
               "integer from 0 to 2**32 - 1, for instance numpy.random.Philox. None restores "
               "numpy.random.PCG64. Generators that exist keep theirs. Raises TypeError when it is "
               "not callable.");
    module.def("block_count", &zktarn_python_block_count,
               "Returns the number of blocks that the library has obtained and not released.");
    module.def("conformance", &conformance, py::arg("function"), py::arg("answer"),
               py::arg("console_is_standard_output"),
               "Checks every operation of the host and prints a line a check to file descriptor 1; "
               "returns whether all passed. Calls the function of that name, which must return "
               "`answer`. Runs once in a process, and replaces handlers of fatal signals. See "
               "python -m zktarn --conformance.");
}
