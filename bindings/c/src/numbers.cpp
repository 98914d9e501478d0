/// Modules `util`, `sorting_mod` and `random` in C.

#include "arguments.hpp"
#include "zktarn/random/random.hpp"
#include "zktarn/sorting/sorting_mod.hpp"
#include "zktarn/util/detail/to_integer.hpp"
#include "zktarn/util/util.hpp"

using namespace zktarn;
using c::cpp;
// The integrality procedures are inlined: a further call, to the C++ library, would be a large part
// of their cost.
namespace inlined = util::detail;

double zktarn_fractional(double x) {
    return inlined::distance_to_integer(x);
}

void zktarn_epsilon_is_int_scalar(double x, double scalar, double eps, zktarn_flag* is_int,
                                  double* nearest) {
    if (!c::any_null(is_int)) {
        inlined::report(inlined::decide_scaled(x, scalar, eps), *is_int, c::optional(nearest));
    }
}

void zktarn_epsilon_is_int(double x, double eps, zktarn_flag* is_int, double* nearest) {
    if (!c::any_null(is_int)) {
        inlined::report(inlined::decide_integer(x, eps), *is_int, c::optional(nearest));
    }
}

double zktarn_epsilon_fractionality(double x, double eps) {
    return inlined::fractionality(x, eps);
}

double zktarn_epsilon_floor(double x, double eps) {
    return inlined::guarded_floor(x, eps);
}

double zktarn_epsilon_ceiling(double x, double eps) {
    return inlined::guarded_ceiling(x, eps);
}

zktarn_flag zktarn_is_even_real(double x, double eps) {
    return 1 - inlined::modulo_2(x, eps);
}

zktarn_flag zktarn_is_even_int(int32_t n) {
    return util::is_even_int(n);
}

void zktarn_xcopy_i1(const int8_t* source, int8_t* destination, int32_t n) {
    if (!c::null_elements(source, n) && !c::null_elements(destination, n)) {
        util::xcopy_i1(source, destination, n);
    }
}

void zktarn_xcopy_i4(const int32_t* source, int32_t* destination, int32_t n) {
    if (!c::null_elements(source, n) && !c::null_elements(destination, n)) {
        util::xcopy_i4(source, destination, n);
    }
}

void zktarn_xcopy_r8(const double* source, double* destination, int32_t n) {
    if (!c::null_elements(source, n) && !c::null_elements(destination, n)) {
        util::xcopy_r8(source, destination, n);
    }
}

void zktarn_xzero_i4(int32_t* array, int32_t n) {
    if (!c::null_elements(array, n)) {
        util::xzero_i4(array, n);
    }
}

void zktarn_xzero_r8(double* array, int32_t n) {
    if (!c::null_elements(array, n)) {
        util::xzero_r8(array, n);
    }
}

void zktarn_get_rational_rep(double x, double eps, double max_den, zktarn_flag* found, double* num,
                             double* den) {
    if (!c::any_null(found, num, den)) {
        util::get_rational_rep(x, eps, max_den, *found, *num, *den);
    }
}

double zktarn_xgcd_r8(double a, double b, double eps) {
    return util::xgcd_r8(a, b, eps);
}

int32_t zktarn_xgcd_i4(int32_t a, int32_t b) {
    return util::xgcd_i4(a, b);
}

void zktarn_find_scalar_integral(int32_t n, zktarn_element_supplier get_element, void* context,
                                 double eps, double max_den, double max_scalar, zktarn_flag* found,
                                 double* scalar, const zktarn_flag* skip_marked,
                                 const zktarn_flag* selected_only) {
    if (c::any_null(get_element, found, scalar)) {
        return;
    }
    const auto supply = [get_element, context](const std::int32_t& index, double& value,
                                               flag& marked, flag& selected) {
        get_element(index, &value, &marked, &selected, context);
    };
    util::find_scalar_integral(n, supply, eps, max_den, max_scalar, *found, *scalar,
                               c::optional(skip_marked), c::optional(selected_only));
}

void zktarn_sort(int32_t first, int32_t last, zktarn_exchange_procedure exchange, void* context) {
    if (c::any_null(exchange)) {
        return;
    }
    sorting_mod::sort(first, last, [exchange, context](std::int32_t a, std::int32_t b) {
        return exchange(a, b, context);
    });
}

zktarn_flag zktarn_instantiaterng(zktarn_rng_state* rng, int32_t seed) {
    return c::any_null(rng) ? 0 : random::instantiaterng(cpp(rng), seed);
}

void zktarn_deleterng(zktarn_rng_state* rng) {
    if (!c::any_null(rng)) {
        random::deleterng(cpp(rng));
    }
}

double zktarn_rand_number(const zktarn_rng_state* rng) {
    return c::any_null(rng) ? 0.0 : random::rand_number(cpp(rng));
}

zktarn_flag zktarn_getrngstate(const zktarn_rng_state* rng, zktarn_saved_state* state) {
    return c::any_null(rng, state) ? 0 : random::getrngstate(cpp(rng), *state);
}

void zktarn_setrngstate(const zktarn_rng_state* rng, zktarn_saved_state state) {
    if (!c::any_null(rng)) {
        random::setrngstate(cpp(rng), state);
    }
}

void zktarn_deleterngstate(zktarn_saved_state state) {
    random::deleterngstate(state);
}

void zktarn_rng_stateinitialise(zktarn_rng_state* first, int32_t count) {
    if (c::has_records(first, count)) {
        random::_rng_stateinitialise(cpp(first), count);
    }
}
