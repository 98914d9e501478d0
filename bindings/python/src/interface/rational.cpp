// Fractions near reals, and greatest common divisors, as universal functions.

#include "zktarn/util/rational.hpp"
#include "module.hpp"
#include "ufuncs.hpp"
#include "zktarn/util/gcd.hpp"

namespace zktarn::python {

namespace {

void rational_parts(const double& x, const double& eps, const double& max_den, double& num,
                    double& den, npy_bool& found) noexcept {
    flag is_found = 0;
    util::get_rational_rep(x, eps, max_den, is_found, num, den);
    found = is_found != 0;
}

void gcd_real(const double& a, const double& b, const double& eps, double& result) noexcept {
    result = util::xgcd_r8(a, b, eps);
}

void gcd_int(const npy_int& a, const npy_int& b, npy_int& result) noexcept {
    result = util::xgcd_i4(a, b);
}

PyUFuncGenericFunction rational_parts_loop[] = {
    elementwise<rational_parts, void(double, double, double),
                void(double, double, npy_bool)>::loop};
PyUFuncGenericFunction gcd_real_loop[] = {
    elementwise<gcd_real, void(double, double, double), void(double)>::loop};
PyUFuncGenericFunction gcd_int_loop[] = {
    elementwise<gcd_int, void(npy_int, npy_int), void(npy_int)>::loop};

char rational_parts_types[] = {NPY_DOUBLE, NPY_DOUBLE, NPY_DOUBLE,
                               NPY_DOUBLE, NPY_DOUBLE, NPY_BOOL};
char reals[] = {NPY_DOUBLE, NPY_DOUBLE, NPY_DOUBLE, NPY_DOUBLE};
char integers[] = {NPY_INT, NPY_INT, NPY_INT};

} // namespace

void add_rational(PyObject* module) {
    add_ufunc(module, {"rational_parts",
                       "Numerators, denominators and flags for zktarn.rational.\n\n"
                       "C++: util::get_rational_rep.",
                       3, 3, 1, rational_parts_loop, rational_parts_types});
    add_ufunc(module, {"gcd_real", "Divisors for zktarn.gcd.\n\nC++: util::xgcd_r8.", 3, 1, 1,
                       gcd_real_loop, reals});
    add_ufunc(module, {"gcd_int", "Divisors for zktarn.gcd.\n\nC++: util::xgcd_i4.", 2, 1, 1,
                       gcd_int_loop, integers});
}

} // namespace zktarn::python
