// Greatest common divisors of reals and of integers.
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <numeric>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include <boost/integer/common_factor_rt.hpp>

#include "support/number_pool.hpp"
#include "zktarn/util/gcd.hpp"

namespace zktarn::bench {

namespace {

template <class Number>
struct couple {
    Number a;
    Number b;
};

template <class Number>
std::shared_ptr<number_pool<couple<Number>>> random_couples(std::int32_t most, bool trained) {
    std::mt19937_64 engine(20261121);
    std::uniform_int_distribution<std::int32_t> any(1, most);
    std::vector<couple<Number>> couples(trained ? few_inputs : many_inputs);
    for (auto& each : couples) {
        each = {static_cast<Number>(any(engine)), static_cast<Number>(any(engine))};
    }
    return std::make_shared<number_pool<couple<Number>>>(std::move(couples));
}

/// Euclid's algorithm with the C library's `fmod`.
double by_fmod(double a, double b, double eps) {
    double big = std::fmax(std::fabs(a), std::fabs(b));
    double small = std::fmin(std::fabs(a), std::fabs(b));
    if (small <= eps) {
        return big;
    }
    for (;;) {
        const double rest = std::fmod(big, small);
        if (!(rest > eps)) {
            return small;
        }
        big = small;
        small = rest;
    }
}

void compare_reals(std::int32_t most, double scale, const std::string& name, bool trained) {
    const auto pool = random_couples<double>(most, trained);
    compare("xgcd_r8/" + name + (trained ? "/trained" : ""),
            {on_inputs("library", pool,
                       [=](const couple<double>& c) {
                           return util::xgcd_r8(c.a * scale, c.b * scale, 1e-9);
                       }),
             on_inputs("fmod", pool, [=](const couple<double>& c) {
                 return by_fmod(c.a * scale, c.b * scale, 1e-9);
             })});
}

void compare_integers(std::int32_t most, const std::string& name, bool trained) {
    const auto pool = random_couples<std::int32_t>(most, trained);
    using pair = couple<std::int32_t>;
    compare(
        "xgcd_i4/" + name + (trained ? "/trained" : ""),
        {on_inputs("library", pool, [](const pair& c) { return util::xgcd_i4(c.a, c.b); }),
         on_inputs("std", pool, [](const pair& c) { return std::gcd(c.a, c.b); }),
         on_inputs("Boost", pool, [](const pair& c) { return boost::integer::gcd(c.a, c.b); })});
}

} // namespace

void register_comparisons() {
    constexpr std::int32_t most = 2147483646;
    for (const bool trained : {false, true}) {
        compare_reals(most, 1.0, "31bit", trained);
        compare_reals(100'000, 0.25, "quarters", trained);
        compare_integers(most, "31bit", trained);
        compare_integers(1000, "small", trained);
    }
}

} // namespace zktarn::bench
