#include "zktarn/util/gcd.hpp"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>

#include "zktarn/util/detail/binary_gcd.hpp"

namespace zktarn::util {

namespace detail {

namespace {

// Below this every integer is a real and every integral quotient fits one.
constexpr double exact_below = 9007199254740992.0; // 2^53

/// A real in [0, 2^53) that is an integer.
bool is_integer(double value) noexcept {
    return static_cast<double>(static_cast<std::int64_t>(value)) == value;
}

/// The remainder of big by small, 0 <= small <= big: what fmod returns, which is slow.
///
/// A rounded quotient below 2^53 truncates to the integral quotient or to one more, never to less,
/// since no integer lies between a quotient and its rounding. The remainder is a multiple of the
/// last place of `small` and at most as large as `small`, so it is a real, and one rounding of big
/// - quotient * small is none. One too many shows in its sign and is put right, again exactly.
double remainder(double big, double small) noexcept {
    const double quotient = big / small;
    if (!(quotient < exact_below)) {
        return std::fmod(big, small);
    }
    const double integral = static_cast<double>(static_cast<std::int64_t>(quotient));
    const double rest = std::fma(-integral, small, big);
    return rest < 0.0 ? rest + small : rest;
}

} // namespace

double real_gcd(double a, double b, double eps) noexcept {
    constexpr double largest = std::numeric_limits<double>::max();
    const double x = std::fabs(a);
    const double y = std::fabs(b);
    if (!(x < largest) || !(y < largest)) {
        return 0.0;
    }
    double big = std::max(x, y);
    double small = std::min(x, y);
    if (small <= eps) {
        return big;
    }
    // Remainders of integers are integers, of which only 0 is within such a tolerance: this is the
    // divisor of the integers, however it is found.
    if (big < exact_below && eps >= 0.0 && eps < 1.0 && is_integer(big) && is_integer(small)) {
        return static_cast<double>(
            binary_gcd(static_cast<std::uint64_t>(big), static_cast<std::uint64_t>(small)));
    }
    for (;;) {
        const double rest = remainder(big, small);
        if (!(rest > eps)) {
            return small;
        }
        big = small;
        small = rest;
    }
}

} // namespace detail

double xgcd_r8(const double& a, const double& b, const double& eps) noexcept {
    return detail::real_gcd(a, b, eps);
}

std::int32_t xgcd_i4(const std::int32_t& a, const std::int32_t& b) noexcept {
    constexpr std::int32_t largest = 2147483646;
    if (a < -largest || a > largest || b < -largest || b > largest) {
        return 0;
    }
    const auto u = static_cast<std::uint32_t>(std::abs(a));
    const auto v = static_cast<std::uint32_t>(std::abs(b));
    if (u == 0 || v == 0) {
        return static_cast<std::int32_t>(u | v);
    }
    return static_cast<std::int32_t>(detail::binary_gcd(u, v));
}

} // namespace zktarn::util
