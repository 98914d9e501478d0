// The extension module zktarn._core.

#include <pybind11/pybind11.h>

#include "host/python_host.hpp"
#include "zktarn/util/gcd.hpp"

namespace py = pybind11;

PYBIND11_MODULE(_core, module) {
    if (zktarn_python_start() != 0) {
        throw py::error_already_set();
    }
    module.def("gcd", [](std::int32_t a, std::int32_t b) { return zktarn::util::xgcd_i4(a, b); });
}
