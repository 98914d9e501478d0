// The formulas of ordinary_numbers.hpp by vectors of 16 and of 32 bytes.

#include <pybind11/pybind11.h>

#include <cstddef>
#include <cstdint>
#include <limits>

#include "ordinary_numbers.hpp"
#include "zktarn/util/detail/to_integer.hpp"

namespace {

namespace py = pybind11;
namespace ordinary = zktarn::python::ordinary;
namespace rules = zktarn::util::detail;

constexpr double nan = std::numeric_limits<double>::quiet_NaN();

/// The procedures that the formulas stand for.
namespace procedures {

void fractional(const double& x, double& result) noexcept {
    result = rules::distance_to_integer(x);
}
void floor(const double& x, const double& eps, double& result) noexcept {
    result = rules::guarded_floor(x, eps);
}
void ceil(const double& x, const double& eps, double& result) noexcept {
    result = rules::guarded_ceiling(x, eps);
}
void fractionality(const double& x, const double& eps, double& result) noexcept {
    result = rules::fractionality(x, eps);
}
void is_int(const double& x, const double& eps, npy_bool& result) noexcept {
    result = rules::decide_integer(x, eps).is_integer;
}
void nearest(const double& x, const double& eps, double& result) noexcept {
    const rules::integer_decision decision = rules::decide_integer(x, eps);
    result = decision.is_integer ? decision.nearest : nan;
}
void is_int_scalar(const double& x, const double& scalar, const double& eps,
                   npy_bool& result) noexcept {
    result = rules::decide_scaled(x, scalar, eps).is_integer;
}
void nearest_scalar(const double& x, const double& scalar, const double& eps,
                    double& result) noexcept {
    const rules::integer_decision decision = rules::decide_scaled(x, scalar, eps);
    result = decision.is_integer ? decision.nearest : nan;
}
void is_even(const double& x, const double& eps, npy_bool& result) noexcept {
    result = rules::modulo_2_by_rule(x, eps) == 0;
}

} // namespace procedures

/// Fills `results` with what the procedure, or the formula of a width in bytes, makes of `numbers`.
template <auto procedure, class Formula, class Result, std::size_t scalars>
void apply(int width, const py::buffer_info& numbers, const py::buffer_info& results,
           const ordinary::scalar_operands<scalars>& given) {
    const auto* const x = static_cast<const double*>(numbers.ptr);
    auto* const out = static_cast<Result*>(results.ptr);
    const auto count = static_cast<std::size_t>(numbers.size);
    if (width == 16) {
        ordinary::run<16, procedure, Formula>(x, out, count, given);
#ifdef __x86_64__
    } else if (width == 32) {
        ordinary::run_with_avx2<procedure, Formula>(x, out, count, given);
#endif
    } else {
        for (std::size_t i = 0; i < count; ++i) {
            given.template call<procedure>(x[i], out[i]);
        }
    }
}

template <auto procedure, class Formula, class Result, std::size_t scalars>
void define(py::module_& module, const char* name) {
    module.def(name, [](int width, const py::buffer& x, const py::buffer& out, double scalar,
                        double eps) {
        ordinary::scalar_operands<scalars> given{};
        if constexpr (scalars == 2) {
            given.values = {scalar, eps};
        } else if constexpr (scalars == 1) {
            given.values = {eps};
        }
        apply<procedure, Formula, Result, scalars>(width, x.request(), out.request(true), given);
    });
}

} // namespace

PYBIND11_MODULE(formulas_by_width, module) {
    module.def("widths", [] {
        py::list known;
        known.append(16);
#ifdef __x86_64__
        if (__builtin_cpu_supports("avx2")) {
            known.append(32);
        }
#endif
        return known;
    });
    define<procedures::fractional, ordinary::distance_formula, double, 0>(module, "fractional");
    define<procedures::floor, ordinary::floor_formula, double, 1>(module, "floor");
    define<procedures::ceil, ordinary::ceil_formula, double, 1>(module, "ceil");
    define<procedures::fractionality, ordinary::fractionality_formula, double, 1>(module,
                                                                                  "fractionality");
    define<procedures::is_int, ordinary::is_int_formula<1>, npy_bool, 1>(module, "is_int");
    define<procedures::nearest, ordinary::nearest_formula<1>, double, 1>(module, "nearest");
    define<procedures::is_int_scalar, ordinary::is_int_formula<0>, npy_bool, 2>(module,
                                                                                "is_int_scalar");
    define<procedures::nearest_scalar, ordinary::nearest_formula<0>, double, 2>(module,
                                                                                "nearest_scalar");
    define<procedures::is_even, ordinary::is_even_formula, npy_bool, 1>(module, "is_even");
}
