#pragma once

#include <bit>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <iterator>
#include <limits>
#include <random>
#include <string>

/// Random numbers of the kinds that numeric procedures treat differently.

namespace zktarn::testing {

inline constexpr double inf = std::numeric_limits<double>::infinity();
inline constexpr double nan = std::numeric_limits<double>::quiet_NaN();

inline bool same_bits(double a, double b) {
    return std::bit_cast<std::uint64_t>(a) == std::bit_cast<std::uint64_t>(b) || (a != a && b != b);
}

class number_draws {
public:
    explicit number_draws(std::uint64_t seed) : engine_(seed) {}

    std::uint64_t below(std::uint64_t n) { return engine_() % n; }
    bool chance(std::uint64_t one_in) { return below(one_in) == 0; }
    double uniform() { return static_cast<double>(engine_() >> 11) * 0x1p-53; }
    double sign() { return chance(2) ? 1.0 : -1.0; }
    double whole(std::uint64_t n) { return static_cast<double>(below(n)); }

    /// Typical coefficients of a constraint matrix, and some unusual ones.
    double value() {
        switch (below(9)) {
        case 0:
            return sign() * whole(400) / (1.0 + whole(20));
        case 1:
            return sign() * whole(100'000) / 100.0;
        case 2:
            return sign() * whole(1'000'000) / 1000.0;
        case 3:
            return sign() * whole(5000) / (500.0 + whole(501));
        case 4:
            return sign() * uniform() * std::ldexp(1.0, static_cast<int>(below(12)));
        case 5:
            return sign() * std::ldexp(1.0 + uniform(), static_cast<int>(below(120)) - 60);
        case 6:
            return std::nextafter(whole(1000) / (1.0 + whole(100)), chance(2) ? inf : -inf);
        case 7:
            return sign() * whole(1000);
        default:
            return odd();
        }
    }

    double odd() {
        static constexpr double values[] = {0.0,
                                            -0.0,
                                            nan,
                                            inf,
                                            -inf,
                                            5e-324,
                                            1e-310,
                                            2147483646.5,
                                            2147483647.0,
                                            2147483647.5,
                                            -2147483647.0,
                                            -3e9,
                                            0x1p52,
                                            -0x1p53,
                                            0x1p53 + 2.0,
                                            -0x1p53 - 2.0,
                                            1e17,
                                            1e300,
                                            -1.7e308,
                                            1.7976931348623157e308,
                                            -1.7976931348623157e308};
        return values[below(std::size(values))];
    }

    double tolerance() {
        static constexpr double usual[] = {1e-9, 1e-9, 1e-6, 1e-12, 1e-4, 0.0, 0.01};
        static constexpr double strange[] = {0.1,   0.3,  0.5,  1.0, 2.0, 1e9,  1e300,
                                             -1e-9, -0.5, -3.0, nan, inf, -inf, 5e-324};
        return chance(8) ? strange[below(std::size(strange))] : usual[below(std::size(usual))];
    }

    double bound() {
        static constexpr double usual[] = {1000.0, 100.0, 1e6, 50.0, 1e4, 1e5};
        static constexpr double strange[] = {0.0,  0.3,  1.0,   -50.0,
                                             1.5,  19.0, 1e7,   1e7 + 1.0,
                                             1e12, 1e18, 1e300, 1.7976931348623157e308,
                                             inf,  nan,  -inf};
        return chance(6) ? strange[below(std::size(strange))] : usual[below(std::size(usual))];
    }

    std::uint64_t word() { return engine_(); }

private:
    std::mt19937_64 engine_;
};

/// Formats three arguments exactly.
inline std::string shown(double a, double b, double c) {
    char text[128];
    std::snprintf(text, sizeof text, "%a, %a, %a", a, b, c);
    return text;
}

} // namespace zktarn::testing
