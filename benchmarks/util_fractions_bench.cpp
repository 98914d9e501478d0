// Greatest common divisors of reals and of integers, and fractions with a bounded denominator.
#include <cmath>
#include <cstdint>
#include <functional>
#include <memory>
#include <numeric>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include <boost/integer/common_factor_rt.hpp>

#include "property/reference/rational_reference.hpp"
#include "support/number_pool.hpp"
#include "zktarn/util/gcd.hpp"
#include "zktarn/util/rational.hpp"

#ifdef ZKTARN_BENCH_COINUTILS
#include <CoinRational.hpp>
#endif

namespace zktarn::bench {

namespace {

constexpr double tolerance = 1e-9;

// Divisors

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

void compare_real_divisors(std::int32_t most, double scale, const std::string& name, bool trained) {
    const auto pool = random_couples<double>(most, trained);
    compare("xgcd_r8/" + name + (trained ? "/trained" : ""),
            {on_inputs("library", pool,
                       [=](const couple<double>& c) {
                           return util::xgcd_r8(c.a * scale, c.b * scale, tolerance);
                       }),
             on_inputs("fmod", pool, [=](const couple<double>& c) {
                 return by_fmod(c.a * scale, c.b * scale, tolerance);
             })});
}

void compare_integer_divisors(std::int32_t most, const std::string& name, bool trained) {
    const auto pool = random_couples<std::int32_t>(most, trained);
    using pair = couple<std::int32_t>;
    compare(
        "xgcd_i4/" + name + (trained ? "/trained" : ""),
        {on_inputs("library", pool, [](const pair& c) { return util::xgcd_i4(c.a, c.b); }),
         on_inputs("std", pool, [](const pair& c) { return std::gcd(c.a, c.b); }),
         on_inputs("Boost", pool, [](const pair& c) { return boost::integer::gcd(c.a, c.b); })});
}

void compare_divisors() {
    constexpr std::int32_t most = 2147483646;
    for (const bool trained : {false, true}) {
        compare_real_divisors(most, 1.0, "31bit", trained);
        compare_real_divisors(100'000, 0.25, "quarters", trained);
        compare_integer_divisors(most, "31bit", trained);
        compare_integer_divisors(1000, "small", trained);
    }
}

// Fractions

class numbers {
public:
    double over(std::uint64_t least, std::uint64_t most) {
        const double den = whole(least, most);
        return whole(1, 20 * most) / den;
    }
    double decimal(double unit) { return whole(1, 100'000) / unit; }
    double irrational() { return std::uniform_real_distribution(0.0, 100.0)(engine_); }
    std::uint64_t below(std::uint64_t n) { return engine_() % n; }

private:
    double whole(std::uint64_t least, std::uint64_t most) {
        return static_cast<double>(least + below(most - least + 1));
    }
    std::mt19937_64 engine_{20261121};
};

struct kind {
    std::string name;
    std::function<double(numbers&)> make;
};

const std::vector<kind>& plain_kinds() {
    static const std::vector<kind> kinds = {
        {"den<=20", [](numbers& n) { return n.over(1, 20); }},
        {"decimal2", [](numbers& n) { return n.decimal(100.0); }},
        {"decimal3", [](numbers& n) { return n.decimal(1000.0); }},
        {"den500..1000", [](numbers& n) { return n.over(500, 1000); }},
        {"irrational", [](numbers& n) { return n.irrational(); }},
    };
    return kinds;
}

double mixed(numbers& n) {
    const auto& kinds = plain_kinds();
    return kinds[n.below(kinds.size())].make(n);
}

/// Only the continued fraction, the minimum cost of a search.
double bare_continued_fraction(double x, double max_den) {
    double a = std::floor(x);
    double r = x;
    double p = a;
    double q = 1.0;
    double p_before = 1.0;
    double q_before = 0.0;
    while (std::fabs(x - p / q) > tolerance) {
        r = 1.0 / (r - a);
        // r is positive and small, so the conversion is its floor.
        a = static_cast<double>(static_cast<std::int64_t>(r));
        const double q_next = a * q + q_before;
        if (!(q_next <= max_den)) {
            return 0.0;
        }
        const double p_next = a * p + p_before;
        p_before = p;
        q_before = q;
        p = p_next;
        q = q_next;
    }
    return p + q;
}

double library(double x, double max_den) {
    flag found = 0;
    double num = 0.0;
    double den = 0.0;
    util::get_rational_rep(x, tolerance, max_den, found, num, den);
    return num + den;
}

[[gnu::noinline]] double literal(double x, double max_den) {
    const reference::fraction result = reference::get_rational_rep(x, tolerance, max_den);
    return result.num + result.den;
}

#ifdef ZKTARN_BENCH_COINUTILS
double coin(double x, double max_den) {
    CoinRational result(x, tolerance, static_cast<long>(max_den));
    return static_cast<double>(result.getNumerator() + result.getDenominator());
}
#endif

void compare_kind(const kind& inputs_kind, double max_den, bool trained) {
    numbers source;
    std::vector<double> inputs(trained ? few_inputs : many_inputs);
    for (double& each : inputs) {
        each = inputs_kind.make(source);
    }
    const auto pool = std::make_shared<number_pool<double>>(std::move(inputs));
    const auto contend = [&](const char* name, double (*search)(double, double)) {
        return on_inputs(name, pool, [=](double x) { return search(x, max_den); });
    };
    std::vector<contender> contenders = {contend("library", library),
                                         contend("continued_fraction", bare_continued_fraction),
                                         contend("literal", literal)};
#ifdef ZKTARN_BENCH_COINUTILS
    // Too slow for bounds above 1000.
    if (max_den <= 1000.0) {
        contenders.push_back(contend("CoinRational", coin));
    }
#endif
    compare("rational/" + inputs_kind.name + "/" + std::to_string(static_cast<long>(max_den)) +
                (trained ? "/trained" : ""),
            std::move(contenders), 4096);
}

void compare_fractions() {
    std::vector<kind> kinds = plain_kinds();
    kinds.push_back({"mix", mixed});
    for (const double max_den : {1000.0, 1e6}) {
        for (const kind& each : kinds) {
            compare_kind(each, max_den, false);
            compare_kind(each, max_den, true);
        }
    }
}

} // namespace

void register_comparisons() {
    compare_divisors();
    compare_fractions();
}

} // namespace zktarn::bench
