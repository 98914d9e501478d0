// The universal functions: integrality, fractions near reals, greatest common divisors.

#include <limits>

#include "module.hpp"
#include "ordinary_numbers.hpp"
#include "ufuncs.hpp"
#include "zktarn/util/gcd.hpp"
#include "zktarn/util/integrality.hpp"
#include "zktarn/util/rational.hpp"

namespace zktarn::python {

namespace {

constexpr double nan = std::numeric_limits<double>::quiet_NaN();

void fractional(const double& x, double& result) noexcept {
    result = util::fractional(x);
}

void is_int(const double& x, const double& eps, npy_bool& result) noexcept {
    flag integral = 0;
    util::epsilon_is_int(x, eps, integral);
    result = integral != 0;
}

void nearest(const double& x, const double& eps, double& result) noexcept {
    flag integral = 0;
    double integer = nan;
    util::epsilon_is_int(x, eps, integral, integer);
    result = integer;
}

void is_int_scalar(const double& x, const double& scalar, const double& eps,
                   npy_bool& result) noexcept {
    flag integral = 0;
    util::epsilon_is_int_scalar(x, scalar, eps, integral);
    result = integral != 0;
}

void nearest_scalar(const double& x, const double& scalar, const double& eps,
                    double& result) noexcept {
    flag integral = 0;
    double integer = nan;
    util::epsilon_is_int_scalar(x, scalar, eps, integral, integer);
    result = integer;
}

void fractionality(const double& x, const double& eps, double& result) noexcept {
    result = util::epsilon_fractionality(x, eps);
}

void floor(const double& x, const double& eps, double& result) noexcept {
    result = util::epsilon_floor(x, eps);
}

void ceil(const double& x, const double& eps, double& result) noexcept {
    result = util::epsilon_ceiling(x, eps);
}

void is_even(const double& x, const double& eps, npy_bool& result) noexcept {
    result = util::is_even_real(x, eps) != 0;
}

/// Parity is that of the lowest byte, whatever the width.
template <class Integer>
void is_even_int(const Integer& n, npy_bool& result) noexcept {
    result = util::is_even_int(static_cast<std::int32_t>(n & 0xFF)) != 0;
}

template <class Integer>
using parity = elementwise<is_even_int<Integer>, void(Integer), void(npy_bool)>;

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

char reals[] = {NPY_DOUBLE, NPY_DOUBLE, NPY_DOUBLE, NPY_DOUBLE};
char two_to_flag[] = {NPY_DOUBLE, NPY_DOUBLE, NPY_BOOL};
char three_to_flag[] = {NPY_DOUBLE, NPY_DOUBLE, NPY_DOUBLE, NPY_BOOL};

PyUFuncGenericFunction fractional_loop[] = {
    ordinary::loop<fractional, ordinary::distance_formula, double, 0>};
PyUFuncGenericFunction is_int_loop[] = {
    ordinary::loop<is_int, ordinary::is_int_formula<1>, npy_bool, 1>};
PyUFuncGenericFunction nearest_loop[] = {
    ordinary::loop<nearest, ordinary::nearest_formula<1>, double, 1>};
PyUFuncGenericFunction is_int_scalar_loop[] = {
    ordinary::loop<is_int_scalar, ordinary::is_int_formula<0>, npy_bool, 2>};
PyUFuncGenericFunction nearest_scalar_loop[] = {
    ordinary::loop<nearest_scalar, ordinary::nearest_formula<0>, double, 2>};
PyUFuncGenericFunction fractionality_loop[] = {
    ordinary::loop<fractionality, ordinary::fractionality_formula, double, 1>};
PyUFuncGenericFunction floor_loop[] = {ordinary::loop<floor, ordinary::floor_formula, double, 1>};
PyUFuncGenericFunction ceil_loop[] = {ordinary::loop<ceil, ordinary::ceil_formula, double, 1>};
PyUFuncGenericFunction is_even_loop[] = {
    ordinary::loop<is_even, ordinary::is_even_formula, npy_bool, 1>};

PyUFuncGenericFunction is_even_int_loops[] = {
    parity<npy_byte>::loop,     parity<npy_ubyte>::loop, parity<npy_short>::loop,
    parity<npy_ushort>::loop,   parity<npy_int>::loop,   parity<npy_uint>::loop,
    parity<npy_long>::loop,     parity<npy_ulong>::loop, parity<npy_longlong>::loop,
    parity<npy_ulonglong>::loop};
char integer_to_flag[] = {NPY_BYTE, NPY_BOOL,     NPY_UBYTE, NPY_BOOL,      NPY_SHORT,
                          NPY_BOOL, NPY_USHORT,   NPY_BOOL,  NPY_INT,       NPY_BOOL,
                          NPY_UINT, NPY_BOOL,     NPY_LONG,  NPY_BOOL,      NPY_ULONG,
                          NPY_BOOL, NPY_LONGLONG, NPY_BOOL,  NPY_ULONGLONG, NPY_BOOL};

PyUFuncGenericFunction rational_parts_loop[] = {
    elementwise<rational_parts, void(double, double, double),
                void(double, double, npy_bool)>::loop};
PyUFuncGenericFunction gcd_real_loop[] = {
    elementwise<gcd_real, void(double, double, double), void(double)>::loop};
PyUFuncGenericFunction gcd_int_loop[] = {
    elementwise<gcd_int, void(npy_int, npy_int), void(npy_int)>::loop};

char rational_parts_types[] = {NPY_DOUBLE, NPY_DOUBLE, NPY_DOUBLE,
                               NPY_DOUBLE, NPY_DOUBLE, NPY_BOOL};
char integers[] = {NPY_INT, NPY_INT, NPY_INT};

const ufunc_description descriptions[] = {
    {"fractional", R"(The distance of x to its nearest integer.

x      array of reals.
out    array, optional: receives the result.

Returns float64 in [0, 0.5], with the shape of x. For abs(x) > 2**52: 0. For infinities and
NaN: NaN.

C++: util::fractional.)",
     1, 1, 1, fractional_loop, reals},
    {"is_int", R"(Whether x is integral within eps.

x1     array of reals, the numbers x.
x2     array of reals, the tolerances eps: distances, inclusive.
out    array, optional: receives the result.

Returns bool, with the common shape of the inputs. NaN is not integral, and nothing is integral
within a tolerance that is negative or NaN. `nearest` has the integer.

C++: util::epsilon_is_int.)",
     2, 1, 1, is_int_loop, two_to_flag},
    {"nearest", R"(The integer within eps of x.

x1     array of reals, the numbers x.
x2     array of reals, the tolerances eps: distances, inclusive.
out    array, optional: receives the result.

Returns float64, with the common shape of the inputs: the guarded floor of x + eps if it is within
eps, else the guarded ceiling of x - eps if that is, else NaN. If eps >= 1, an integral x gives
x + floor(eps).

C++: util::epsilon_is_int, argument nearest.)",
     2, 1, 1, nearest_loop, reals},
    {"is_int_scalar", R"(Whether x * scalar is integral within eps.

x1     array of reals, the numbers x.
x2     array of reals, the scalars.
x3     array of reals, the tolerances eps: distances, inclusive.
out    array, optional: receives the result.

Returns bool, with the common shape of the inputs. Like `is_int` for p = x * scalar, but tests
floor(p) and ceil(p) instead of floor(p + eps) and ceil(p - eps).

C++: util::epsilon_is_int_scalar.)",
     3, 1, 1, is_int_scalar_loop, three_to_flag},
    {"nearest_scalar", R"(The integer within eps of x * scalar.

x1     array of reals, the numbers x.
x2     array of reals, the scalars.
x3     array of reals, the tolerances eps: distances, inclusive.
out    array, optional: receives the result.

Returns float64, with the common shape of the inputs: the integer that `is_int_scalar` accepts, NaN
where it accepts none.

C++: util::epsilon_is_int_scalar, argument nearest.)",
     3, 1, 1, nearest_scalar_loop, reals},
    {"fractionality", R"(x less the floor of x with tolerance eps.

x1     array of reals, the numbers x.
x2     array of reals, the tolerances eps.
out    array, optional: receives the result.

Returns float64, with the common shape of the inputs: x - floor(x, eps), which is in [-eps, 1 - eps)
for abs(x) < 2147483647. Slightly below an integer it is small and negative, not close to 1.

C++: util::epsilon_fractionality.)",
     2, 1, 1, fractionality_loop, reals},
    {"floor",
     R"(The floor of x with tolerance eps: an x within eps below an integer gives that integer.

x1     array of reals, the numbers x.
x2     array of reals, the tolerances eps.
out    array, optional: receives the result.

Returns float64, with the common shape of the inputs: the guarded floor of x + eps, whose values
beyond 2147483647 and whose limits are stated in the C++ header zktarn/util/integrality.hpp. A sum
that is NaN gives 0.

C++: util::epsilon_floor.)",
     2, 1, 1, floor_loop, reals},
    {"ceil",
     R"(The ceiling of x with tolerance eps: an x within eps above an integer gives that integer.

x1     array of reals, the numbers x.
x2     array of reals, the tolerances eps.
out    array, optional: receives the result.

Returns float64, with the common shape of the inputs: the guarded ceiling of x - eps. A zero may be
a negative zero.

C++: util::epsilon_ceiling.)",
     2, 1, 1, ceil_loop, reals},
    {"is_even", R"(Whether x is within eps of an even integer.

x1     array of reals, the numbers x.
x2     array of reals, the tolerances eps: distances, inclusive.
out    array, optional: receives the result.

Returns bool, with the common shape of the inputs. An integer of magnitude 2147483647 or more counts
as odd.

C++: util::is_even_real.)",
     2, 1, 1, is_even_loop, two_to_flag},
    {"is_even_int", R"(Whether x is an even integer.

x      array of integers.
out    array, optional: receives the result.

Returns bool, with the shape of x.

C++: util::is_even_int.)",
     1, 1, 10, is_even_int_loops, integer_to_flag},
    {"rational_parts", R"(Numerators, denominators and flags for zktarn.rational.

C++: util::get_rational_rep.)",
     3, 3, 1, rational_parts_loop, rational_parts_types},
    {"gcd_real", R"(Divisors for zktarn.gcd.

C++: util::xgcd_r8.)",
     3, 1, 1, gcd_real_loop, reals},
    {"gcd_int", R"(Divisors for zktarn.gcd.

C++: util::xgcd_i4.)",
     2, 1, 1, gcd_int_loop, integers},
};

/// Adds a universal function to the module.
void add_ufunc(PyObject* module, const ufunc_description& description) {
    PyObject* const made = require(PyUFunc_FromFuncAndData(
        description.loops, nullptr, description.type_codes, description.types, description.inputs,
        description.outputs, PyUFunc_None, description.name, description.documentation, 0));
    const int added = PyModule_AddObjectRef(module, description.name, made);
    Py_DECREF(made);
    if (added < 0) {
        throw python_error{};
    }
}

} // namespace

void add_ufuncs(PyObject* module) {
    for (const ufunc_description& each : descriptions) {
        add_ufunc(module, each);
    }
}

} // namespace zktarn::python
