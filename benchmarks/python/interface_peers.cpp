// What interface_bench.py compares the Python interface with: the procedures called in a loop in
// C++, and pybind11 functions of the same signatures that do nothing.

#include <pybind11/numpy.h>
#include <pybind11/pybind11.h>

#include <cstdint>

#include "zktarn/util/util.hpp"

namespace {

namespace py = pybind11;
using namespace zktarn::util;
using zktarn::flag;

template <class T>
using array = py::array_t<T, py::array::c_style>;

/// Calls f(x[i], out[i]) for each element.
template <class X, class Out, class F>
void each(const array<X>& x, array<Out>& out, F f) {
    const X* const inputs = x.data();
    Out* const outputs = out.mutable_data();
    for (py::ssize_t i = 0, count = x.size(); i < count; ++i) {
        f(inputs[i], outputs[i]);
    }
}

using reals = array<double>;
using flags = array<bool>;

void loops(py::module_& scope) {
    scope.def("fractional", [](const reals& x, reals& out) {
        each(x, out, [](const double& a, double& r) { r = fractional(a); });
    });
    scope.def("floor", [](const reals& x, double eps, reals& out) {
        each(x, out, [=](const double& a, double& r) { r = epsilon_floor(a, eps); });
    });
    scope.def("ceil", [](const reals& x, double eps, reals& out) {
        each(x, out, [=](const double& a, double& r) { r = epsilon_ceiling(a, eps); });
    });
    scope.def("fractionality", [](const reals& x, double eps, reals& out) {
        each(x, out, [=](const double& a, double& r) { r = epsilon_fractionality(a, eps); });
    });
    scope.def("is_int", [](const reals& x, double eps, flags& out) {
        each(x, out, [=](const double& a, bool& r) {
            flag is_int = 0;
            epsilon_is_int(a, eps, is_int);
            r = is_int != 0;
        });
    });
    scope.def("nearest", [](const reals& x, double eps, reals& out) {
        each(x, out, [=](const double& a, double& r) {
            flag is_int = 0;
            r = 0.0;
            epsilon_is_int(a, eps, is_int, r);
        });
    });
    scope.def("is_int_scalar", [](const reals& x, double scalar, double eps, flags& out) {
        each(x, out, [=](const double& a, bool& r) {
            flag is_int = 0;
            epsilon_is_int_scalar(a, scalar, eps, is_int);
            r = is_int != 0;
        });
    });
    scope.def("is_even", [](const reals& x, double eps, flags& out) {
        each(x, out, [=](const double& a, bool& r) { r = is_even_real(a, eps) != 0; });
    });
    scope.def("is_even_int", [](const array<std::int32_t>& n, flags& out) {
        each(n, out, [](const std::int32_t& a, bool& r) { r = is_even_int(a) != 0; });
    });
    scope.def("gcd_int",
              [](const array<std::int32_t>& a, std::int32_t b, array<std::int32_t>& out) {
                  each(a, out, [=](const std::int32_t& n, std::int32_t& r) { r = xgcd_i4(n, b); });
              });
    scope.def("gcd_real", [](const reals& a, double b, double eps, reals& out) {
        each(a, out, [=](const double& n, double& r) { r = xgcd_r8(n, b, eps); });
    });
    scope.def("rational",
              [](const reals& x, double eps, double max_den, reals& num, reals& den, flags& found) {
                  for (py::ssize_t i = 0, count = x.size(); i < count; ++i) {
                      flag is_found = 0;
                      get_rational_rep(x.data()[i], eps, max_den, is_found, num.mutable_data()[i],
                                       den.mutable_data()[i]);
                      found.mutable_data()[i] = is_found != 0;
                  }
              });
}

/// A class of pybind11 with the signatures of Vector and empty bodies.
struct bare_vector {};

void bare_calls(py::module_& scope) {
    using index = std::int32_t;
    py::class_<bare_vector>(scope, "BareVector")
        .def(py::init<>())
        .def("get_coef", [](const bare_vector&, index) { return 0.0; })
        .def("set_coef", [](bare_vector&, index, double) {})
        .def("get_ind", [](const bare_vector&, index) { return index{1}; })
        .def("set_ind", [](bare_vector&, index, index) {})
        .def("is_elm", [](const bare_vector&, index) { return true; })
        .def("set_elm", [](bare_vector&, index) {})
        .def("rem_elm", [](bare_vector&, index) {})
        .def("add_nz", [](bare_vector&, index, double) {})
        .def("clean_index", [](bare_vector&) {})
        .def("clear", [](bare_vector&) {})
        .def("rem_zeros", [](bare_vector&) {})
        .def("combine", [](bare_vector&, const bare_vector&, double, double, double) {})
        .def("sym_diff", [](bare_vector&, const bare_vector&) {})
        .def("mod2", [](bare_vector&, double) {})
        .def("is_identical", [](const bare_vector&, const bare_vector&, double) { return true; })
        .def("__getitem__", [](const bare_vector&, index) { return 0.0; })
        .def("__setitem__", [](bare_vector&, index, double) {})
        .def("__contains__", [](const bare_vector&, index) { return true; })
        .def("__len__", [](const bare_vector&) { return std::size_t{0}; });
}

} // namespace

PYBIND11_MODULE(interface_peers, module) {
    loops(module);
    bare_calls(module);
}
