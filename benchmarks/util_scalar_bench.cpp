// The scalar that makes a row integral.
#include <algorithm>
#include <cmath>
#include <cstdint>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "support/number_pool.hpp"
#include "zktarn/util/gcd.hpp"
#include "zktarn/util/rational.hpp"
#include "zktarn/util/scalar_search.hpp"

namespace zktarn::bench {

namespace {

using row = std::vector<double>;

constexpr double tolerance = 1e-9;

struct bounds {
    double max_den;
    double max_scalar;
};

auto supplier_of(const row& values) {
    return [&values](const std::int32_t& index, double& value, flag& marked, flag& selected) {
        value = values[static_cast<std::size_t>(index - 1)];
        marked = 0;
        selected = 1;
    };
}

double library(const row& values, const bounds& within) {
    flag found = 0;
    double scalar = 0.0;
    util::find_scalar_integral(static_cast<std::int32_t>(values.size()), supplier_of(values),
                               tolerance, within.max_den, within.max_scalar, found, scalar);
    return scalar;
}

// The same trials and passes for finite products below 2^31, without filters. Elements come from an
// array (`plain`) or from a procedure that the compiler cannot inline (`plain_supplied`).

struct from_array {
    const row& values;
    std::size_t size() const { return values.size(); }
    double operator[](std::size_t i) const { return values[i]; }
};

struct from_supplier {
    std::size_t count;
    util::element_supplier supply;
    std::size_t size() const { return count; }
    double operator[](std::size_t i) const {
        double value = 0.0;
        flag marked = 0;
        flag selected = 0;
        supply(static_cast<std::int32_t>(i) + 1, value, marked, selected);
        return value;
    }
};

[[gnu::always_inline]] inline bool near_integer(double value) {
    const double below = static_cast<double>(static_cast<std::int64_t>(value));
    return std::fabs(value - below) <= tolerance || std::fabs(value - below) >= 1.0 - tolerance;
}

template <class Elements>
double plain_trial(const Elements& values, double scalar, double max_scalar) {
    if (scalar > max_scalar) {
        return 0.0;
    }
    for (std::size_t i = 0; i < values.size(); ++i) {
        const double value = values[i];
        while (!(std::fabs(value) * scalar >= 0.5 && near_integer(value * scalar))) {
            double next = scalar + scalar;
            for (double factor = 3.0; factor <= 19.0; factor += 2.0) {
                if (near_integer(value * (scalar * factor))) {
                    next = scalar * factor;
                    break;
                }
            }
            if (next > max_scalar) {
                return 0.0;
            }
            scalar = next;
        }
    }
    return scalar;
}

template <class Elements>
double plain_construction(const Elements& values, const bounds& within) {
    double divisor = 0.0;
    double multiple = 1.0;
    for (std::size_t i = 0; i < values.size(); ++i) {
        const double value = values[i];
        flag found = 0;
        double num = 0.0;
        double den = 0.0;
        util::get_rational_rep(value, tolerance, within.max_den, found, num, den);
        if (found == 0) {
            return 0.0;
        }
        divisor = util::xgcd_r8(divisor, num, tolerance);
        multiple *= den / util::xgcd_r8(multiple, den, tolerance);
        if (multiple / divisor > within.max_scalar) {
            return 0.0;
        }
    }
    return multiple / divisor;
}

template <class Elements>
[[gnu::noinline]] double plain(const Elements& values, const bounds& within) {
    double smallest = 1e300;
    for (std::size_t i = 0; i < values.size(); ++i) {
        const double value = values[i];
        if (std::fabs(value) > tolerance) {
            smallest = std::min(smallest, std::fabs(value));
        }
    }
    for (const double start : {1.0 / smallest, 1.0}) {
        if (const double scalar = plain_trial(values, start, within.max_scalar); scalar != 0.0) {
            return scalar;
        }
    }
    return plain_construction(values, within);
}

template <class Make>
void compare_searches(const std::string& name, std::size_t n, const bounds& within, bool trained,
                      Make make) {
    std::mt19937_64 engine(20261121);
    const std::size_t count = trained ? 1
                                      : std::size_t{1} << 17 >> (n == 10    ? 3
                                                                 : n == 100 ? 6
                                                                            : 9);
    std::vector<row> rows(count, row(n));
    for (row& each : rows) {
        for (double& value : each) {
            value = make(engine);
        }
    }
    const auto pool = std::make_shared<number_pool<row>>(std::move(rows));
    compare("scalar/" + name + "/" + std::to_string(n) + (trained ? "/trained" : ""),
            {on_inputs("library", pool, [=](const row& r) { return library(r, within); }),
             on_inputs("plain", pool, [=](const row& r) { return plain(from_array{r}, within); }),
             on_inputs("plain_supplied", pool,
                       [=](const row& r) {
                           const auto supply = supplier_of(r);
                           return plain(from_supplier{r.size(), supply}, within);
                       })},
            4096);
}

double small_integer(std::mt19937_64& engine) {
    return static_cast<double>(1 + engine() % 1000);
}

} // namespace

void register_comparisons() {
    for (const std::size_t n : {std::size_t{10}, std::size_t{100}, std::size_t{1000}}) {
        for (const bool trained : {false, true}) {
            compare_searches("halves_and_thirds", n, {1000.0, 1e6}, trained, [](auto& engine) {
                return small_integer(engine) / (engine() % 2 == 0 ? 2.0 : 3.0);
            });
            compare_searches("decimals", n, {1000.0, 1e6}, trained,
                             [](auto& engine) { return small_integer(engine) / 100.0; });
            compare_searches("failing", n, {100.0, 100.0}, trained, [](auto& engine) {
                return std::uniform_real_distribution(0.0, 10.0)(engine);
            });
        }
    }
}

} // namespace zktarn::bench
