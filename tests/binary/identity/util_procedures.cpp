#include <vector>

#include "binary/identity/procedures.hpp"
#include "support/recorded_set.hpp"

namespace zktarn::identity {

namespace {

using namespace util;

// The initial value of `nearest`, which remains when the procedure does not write it.
constexpr double untouched = -12345.5;

void call_fractional(draws& draw, digest& results) {
    const double x = draw.real();
    results.computed(fractional(x));
}

void call_is_int(draws& draw, digest& results) {
    const double x = draw.real();
    const double eps = draw.tolerance();
    flag is_int = -1;
    double nearest = untouched;
    epsilon_is_int(x, eps, is_int, nearest);
    results.integer(is_int);
    results.computed(nearest);
}

void call_is_int_scalar(draws& draw, digest& results) {
    const double x = draw.real();
    const double scalar = draw.factor();
    const double eps = draw.tolerance();
    flag is_int = -1;
    double nearest = untouched;
    epsilon_is_int_scalar(x, scalar, eps, is_int, nearest);
    results.integer(is_int);
    results.computed(nearest);
}

template <auto function>
void call_with_tolerance(draws& draw, digest& results) {
    const double x = draw.real();
    const double eps = draw.tolerance();
    results.computed(function(x, eps));
}

void call_is_even_real(draws& draw, digest& results) {
    const double x = draw.real();
    const double eps = draw.tolerance();
    results.integer(is_even_real(x, eps));
}

void call_is_even_int(draws& draw, digest& results) {
    const std::int32_t n = draw.integer();
    results.integer(is_even_int(n));
}

void call_rational(draws& draw, digest& results) {
    const double x = draw.real();
    const double eps = draw.tolerance();
    const double max_den = draw.denominator_bound();
    flag found = -1;
    double num = -1.0;
    double den = -1.0;
    get_rational_rep(x, eps, max_den, found, num, den);
    results.integer(found);
    results.computed(num);
    results.computed(den);
}

double dividend(draws& draw) {
    if (draw.chance(2)) {
        return draw.real();
    }
    const std::uint64_t digits = 11 + draw.below(53);
    return static_cast<double>(draw.word() >> digits);
}

void call_real_gcd(draws& draw, digest& results) {
    const double a = dividend(draw);
    const double b = dividend(draw);
    const double eps = draw.tolerance();
    results.computed(xgcd_r8(a, b, eps));
}

void call_integer_gcd(draws& draw, digest& results) {
    const std::int32_t a = draw.integer();
    const std::int32_t b = draw.integer();
    results.integer(xgcd_i4(a, b));
}

/// Elements that usually have an integral scalar in common, and sometimes have none.
testing::recorded_set drawn_set(draws& draw) {
    testing::recorded_set set{std::vector<testing::element>(draw.below(8))};
    const std::uint64_t kind = draw.below(4);
    for (testing::element& each : set.elements) {
        const double whole = draw.between(-1000, 1000);
        each.value = kind == 0 ? whole / 6.0 : kind == 1 ? whole / 100.0 : draw.real();
        each.marked = draw.between(-1, 1);
        each.selected = draw.between(-1, 1);
    }
    return set;
}

void call_scalar_search(draws& draw, digest& results) {
    static constexpr double scalar_bounds[] = {1000.0, 1e6, 0.9, 0.0, 1.0, 30.0, 1e300, -1.0};
    testing::recorded_set set = drawn_set(draw);
    const double eps = draw.tolerance();
    const double max_den = draw.denominator_bound();
    const double max_scalar = draw.chance(8) ? draw.real() : draw.one_of(scalar_bounds);
    const flag skip_marked = draw.between(0, 1);
    const flag selected_only = draw.between(0, 1);
    flag found = -1;
    double scalar = -1.0;
    find_scalar_integral(set.size(), set, eps, max_den, max_scalar, found, scalar, skip_marked,
                         selected_only);
    results.integer(found);
    results.computed(scalar);
    for (const std::int32_t index : set.calls) {
        results.integer(index);
    }
}

constexpr procedure procedures[] = {
    {"util.fractional", call_fractional},
    {"util.epsilon_is_int", call_is_int},
    {"util.epsilon_is_int_scalar", call_is_int_scalar},
    {"util.epsilon_fractionality", call_with_tolerance<epsilon_fractionality>},
    {"util.epsilon_floor", call_with_tolerance<epsilon_floor>},
    {"util.epsilon_ceiling", call_with_tolerance<epsilon_ceiling>},
    {"util.is_even_real", call_is_even_real},
    {"util.is_even_int", call_is_even_int},
    {"util.get_rational_rep", call_rational},
    {"util.xgcd_r8", call_real_gcd},
    {"util.xgcd_i4", call_integer_gcd},
    {"util.find_scalar_integral", call_scalar_search, 10'000},
};

} // namespace

std::span<const procedure> util_procedures() {
    return procedures;
}

} // namespace zktarn::identity
