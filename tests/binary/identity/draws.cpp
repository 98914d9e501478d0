#include "binary/identity/draws.hpp"

#include <bit>
#include <limits>

namespace zktarn::identity {

namespace {

constexpr double inf = std::numeric_limits<double>::infinity();
constexpr double nan = std::numeric_limits<double>::quiet_NaN();
constexpr double largest = std::numeric_limits<double>::max();

constexpr double special[] = {
    0.0,          -0.0,         inf,     -inf,   nan,     5e-324,       -5e-324,      1e-310,
    2147483646.5, 2147483647.5, 3e9,     -3e9,   1e17,    1e300,        -1e300,       1e-300,
    largest,      -largest,     4096.25, 0.5,    -0.5,    1.0 / 3.0,    -2.0 / 3.0,   1.0 + 1e-10,
    2.0 - 1e-10,  0x1p52,       -0x1p53, 0x1p63, -0x1p63, 0x1p53 + 2.0, 0x1p51 + 0.5, 0x1p52 - 0.5};

double from_bits(std::uint64_t bits) {
    return std::bit_cast<double>(bits);
}

/// The real that is `steps` representable numbers away from `value`, for steps < 0 toward zero.
double moved(double value, std::int32_t steps) {
    return from_bits(std::bit_cast<std::uint64_t>(value) + static_cast<std::uint64_t>(steps));
}

/// 2^exponent, for an exponent of a normal number: -1022 to 1023.
double power_of_two(std::int32_t exponent) {
    return from_bits(static_cast<std::uint64_t>(exponent + 1023) << 52);
}

} // namespace

draws::draws(std::string_view procedure) : state_(0x5EED) {
    for (const char letter : procedure) {
        state_ = (state_ ^ static_cast<unsigned char>(letter)) * 0x100000001B3;
    }
}

std::uint64_t draws::word() {
    state_ += 0x9E3779B97F4A7C15;
    std::uint64_t mixed = state_;
    mixed = (mixed ^ (mixed >> 30)) * 0xBF58476D1CE4E5B9;
    mixed = (mixed ^ (mixed >> 27)) * 0x94D049BB133111EB;
    return mixed ^ (mixed >> 31);
}

std::int32_t draws::between(std::int32_t low, std::int32_t high) {
    const auto width = static_cast<std::uint64_t>(std::int64_t{high} - low + 1);
    return static_cast<std::int32_t>(low + static_cast<std::int64_t>(below(width)));
}

double draws::uniform() {
    return static_cast<double>(word() >> 11) * 0x1p-53;
}

double draws::signed_at_random(double value) {
    return chance(2) ? value : -value;
}

double draws::near_an_integer() {
    static constexpr double offsets[] = {1e-9, 1e-6, 1e-12, 0.5, 1e-4, 2e-9, 0.0};
    const double whole = between(0, 3000);
    const double offset = signed_at_random(one_of(offsets));
    const std::int32_t steps = whole == 0.0 ? 0 : between(-2, 2);
    return moved(whole + offset, steps);
}

double draws::near_a_power_of_two() {
    // Half of the exponents are near 31, 53 and 63, where conversions to integers lose digits or
    // saturate.
    const std::int32_t exponent = chance(2) ? between(28, 66) : between(-1022, 1023);
    const std::int32_t steps = between(-1, 1);
    return moved(power_of_two(exponent), steps);
}

double draws::large_integer() {
    static constexpr double middles[] = {0x1p31, 0x1p32, 0x1p51, 0x1p52, 0x1p53, 0x1p62};
    const double middle = one_of(middles);
    const double offset = between(-3, 3);
    const double half = chance(3) ? 0.5 : 0.0;
    return middle + offset + half;
}

double draws::real() {
    switch (below(12)) {
    case 0:
        return between(-1000, 1000);
    case 1: {
        const double numerator = between(-400, 400);
        const double denominator = between(1, 20);
        return numerator / denominator;
    }
    case 2: {
        const double numerator = between(-1'000'000, 1'000'000);
        return numerator / (chance(2) ? 100.0 : 1000.0);
    }
    case 3:
        return signed_at_random(near_an_integer());
    case 4:
        return signed_at_random(near_a_power_of_two());
    case 5:
        return signed_at_random(large_integer());
    case 6: {
        const double digits = 1.0 + uniform();
        return signed_at_random(digits * power_of_two(between(-60, 60)));
    }
    case 7:
        return signed_at_random(uniform() * 8.0);
    case 8: { // subnormal or 0.0
        const std::uint64_t zeros = 12 + below(52);
        return signed_at_random(from_bits(word() >> zeros));
    }
    case 9:
        return from_bits(word());
    case 10: {
        const double numerator = between(-5000, 5000);
        const double denominator = between(500, 1000);
        return numerator / denominator;
    }
    default:
        return one_of(special);
    }
}

double draws::coefficient() {
    return chance(3) ? real() : between(-4, 4);
}

double draws::factor() {
    static constexpr double usual[] = {1.0, -1.0, 0.0, 2.0, 0.5, -3.0, 1.0 / 3.0, nan, inf, 1e-12};
    return chance(2) ? real() : one_of(usual);
}

double draws::tolerance() {
    static constexpr double usual[] = {1e-9, 1e-9, 1e-6, 1e-12, 1e-4, 0.0, 0.01};
    static constexpr double strange[] = {0.1,   0.25, 0.5,  1.0, 2.0, 1e9,  1e300,
                                         -1e-9, -0.5, -3.0, nan, inf, -inf, 5e-324};
    return chance(4) ? one_of(strange) : one_of(usual);
}

double draws::denominator_bound() {
    static constexpr double usual[] = {1000.0, 100.0, 1e6, 50.0, 1e4, 1e5};
    static constexpr double strange[] = {0.0,  0.3,  1.0,   -50.0,   1.5, 19.0, 1e7, 1e7 + 1.0,
                                         1e12, 1e18, 1e300, largest, inf, nan,  -inf};
    return chance(6) ? one_of(strange) : one_of(usual);
}

std::int32_t draws::integer() {
    static constexpr std::int32_t ends[] = {
        std::numeric_limits<std::int32_t>::min(),     std::numeric_limits<std::int32_t>::min() + 1,
        std::numeric_limits<std::int32_t>::min() + 2, std::numeric_limits<std::int32_t>::max(),
        std::numeric_limits<std::int32_t>::max() - 1, 0};
    if (chance(20)) {
        return one_of(ends);
    }
    const auto bits = static_cast<std::int32_t>(word() >> 32);
    return bits >> below(31);
}

} // namespace zktarn::identity
