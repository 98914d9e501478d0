#include "zktarn/util/gcd.hpp"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <limits>

#include "zktarn/util/detail/binary_gcd.hpp"

namespace zktarn::util {

namespace detail {

namespace {

// The fields of a double.
constexpr int fraction_bits = 52;
constexpr int exponent_bias = 1023;
constexpr int least_exponent = -1022;

/// A positive normal real as odd * 2^exponent.
struct odd_and_power {
    std::int64_t odd;
    int exponent;
};

odd_and_power split(double value) noexcept {
    constexpr std::int64_t leading_bit = std::int64_t{1} << fraction_bits;
    const auto bits = std::bit_cast<std::int64_t>(value);
    const std::int64_t significand = (bits & (leading_bit - 1)) | leading_bit;
    const int zeros = std::countr_zero(static_cast<std::uint64_t>(significand));
    const int biased = static_cast<int>(bits >> fraction_bits);
    return {significand >> zeros, biased - exponent_bias - fraction_bits + zeros};
}

/// 2^exponent, for the exponent of a normal real.
double power_of_two(int exponent) noexcept {
    return std::bit_cast<double>(static_cast<std::int64_t>(exponent + exponent_bias)
                                 << fraction_bits);
}

/// fmod(big, small) for 0 <= small <= big; faster than the C library's if the quotient is below
/// 2^53.
///
/// No integer lies between a quotient and its rounding, so the truncated rounded quotient is the
/// integral quotient or one more. The remainder is a multiple of the last place of `small` and at
/// most `small`, so it is a real and `fma` computes it without rounding. If the quotient was one
/// too large, the remainder is negative, and adding `small` once is exact again.
double remainder(double big, double small) noexcept {
    constexpr double integers_are_exact_below = 0x1p53;
    const double quotient = big / small;
    if (!(quotient < integers_are_exact_below)) {
        return std::fmod(big, small);
    }
    const double integral = static_cast<double>(static_cast<std::int64_t>(quotient));
    const double rest = std::fma(-integral, small, big);
    return rest < 0.0 ? rest + small : rest;
}

/// Euclid's algorithm for 0 < small <= big.
double euclid(double big, double small, double eps) noexcept {
    for (;;) {
        const double rest = remainder(big, small);
        if (!(rest > eps)) {
            return small;
        }
        big = small;
        small = rest;
    }
}

} // namespace

double real_gcd(double a, double b, double eps) noexcept {
    constexpr double largest = std::numeric_limits<double>::max();
    const double x = std::fabs(a);
    const double y = std::fabs(b);
    if (!(x < largest) || !(y < largest)) {
        return 0.0;
    }
    const double big = std::max(x, y);
    const double small = std::min(x, y);
    if (small <= eps) {
        return big;
    }
    // Both are integral multiples of a power of two, and so is every remainder. If eps is below
    // that power, only the remainder 0 ends Euclid's algorithm: its last divisor is exact.
    if (small >= std::numeric_limits<double>::min() && eps >= 0.0) {
        const odd_and_power p = split(big);
        const odd_and_power q = split(small);
        const int exponent = std::min(p.exponent, q.exponent);
        if (exponent >= least_exponent) {
            const double power = power_of_two(exponent);
            if (eps < power) {
                return static_cast<double>(binary_gcd(p.odd, q.odd)) * power;
            }
        }
    }
    return euclid(big, small, eps);
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
    const std::int64_t u = std::abs(a);
    const std::int64_t v = std::abs(b);
    if (u == 0 || v == 0) {
        return static_cast<std::int32_t>(u | v);
    }
    const int zeros_of_u = std::countr_zero(static_cast<std::uint64_t>(u));
    const int zeros_of_v = std::countr_zero(static_cast<std::uint64_t>(v));
    const std::int64_t odd = detail::binary_gcd(u >> zeros_of_u, v >> zeros_of_v);
    return static_cast<std::int32_t>(odd << std::min(zeros_of_u, zeros_of_v));
}

} // namespace zktarn::util
