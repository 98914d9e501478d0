#include "binary/identity/procedures.hpp"
#include "zktarn/util/integrality.hpp"

namespace zktarn::identity {

namespace {

using namespace util;

// The value of `nearest` that shows that a procedure wrote nothing.
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

constexpr procedure procedures[] = {
    {"util.fractional", call_fractional},
    {"util.epsilon_is_int", call_is_int},
    {"util.epsilon_is_int_scalar", call_is_int_scalar},
    {"util.epsilon_fractionality", call_with_tolerance<epsilon_fractionality>},
    {"util.epsilon_floor", call_with_tolerance<epsilon_floor>},
    {"util.epsilon_ceiling", call_with_tolerance<epsilon_ceiling>},
    {"util.is_even_real", call_is_even_real},
    {"util.is_even_int", call_is_even_int},
};

} // namespace

std::span<const procedure> integrality_procedures() {
    return procedures;
}

} // namespace zktarn::identity
