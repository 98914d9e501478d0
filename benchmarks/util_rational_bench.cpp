// Fractions with a bounded denominator.
#include <cmath>
#include <cstdint>
#include <functional>
#include <random>
#include <string>
#include <vector>

#include "property/reference/rational_reference.hpp"
#include "support/number_pool.hpp"
#include "zktarn/util/rational.hpp"

#ifdef ZKTARN_BENCH_COINUTILS
#include <CoinRational.hpp>
#endif

namespace zktarn::bench {

namespace {

constexpr double tolerance = 1e-9;

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

void compare_fractions(const kind& inputs_kind, double max_den, bool trained) {
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

} // namespace

void register_comparisons() {
    std::vector<kind> kinds = plain_kinds();
    kinds.push_back({"mix", mixed});
    for (const double max_den : {1000.0, 1e6}) {
        for (const kind& each : kinds) {
            compare_fractions(each, max_den, false);
            compare_fractions(each, max_den, true);
        }
    }
}

} // namespace zktarn::bench
