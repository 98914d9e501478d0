#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace zktarn::identity {

/// The cases of one procedure: numbers that are the same on every platform, with no distribution of
/// a standard library and no rounding but that of single additions, products and quotients.
///
/// Draw one number a statement: the order in which operands and arguments are evaluated is the
/// compiler's.
class draws {
public:
    /// The stream of a procedure, so that no other one changes it.
    explicit draws(std::string_view procedure);

    /// Any word. Source: Steele, Lea and Flood, Fast splittable pseudorandom number generators
    /// (2014).
    std::uint64_t word();

    std::uint64_t below(std::uint64_t n) { return word() % n; }
    bool chance(std::uint64_t one_in) { return below(one_in) == 0; }

    /// From low to high, both included.
    std::int32_t between(std::int32_t low, std::int32_t high);

    template <class T, std::size_t N>
    T one_of(const T (&values)[N]) {
        return values[below(N)];
    }

    /// In [0, 1).
    double uniform();

    /// `value` or its negation.
    double signed_at_random(double value);

    /// Any kind of real: integers, fractions, decimals, next to an integer, one unit off a power of
    /// two, huge, subnormal, infinite, not a number, any bits.
    double real();

    /// What coefficients mostly are: small integers, and now and then any kind.
    double coefficient();

    /// A factor of a combination.
    double factor();

    /// A tolerance, usual or strange.
    double tolerance();

    /// A bound for a denominator, usual or strange.
    double denominator_bound();

    /// Any 32-bit integer, of any magnitude.
    std::int32_t integer();

private:
    double near_an_integer();
    double near_a_power_of_two();
    double large_integer();

    std::uint64_t state_;
};

} // namespace zktarn::identity
