#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace zktarn::identity {

/// The random inputs of one procedure, the same on every platform: without a distribution of the
/// standard library, and rounded only by single additions, multiplications and divisions.
///
/// Draw one number in each statement, because the compiler chooses the order in which operands and
/// arguments are evaluated.
class draws {
public:
    /// Each procedure has its own stream, so that a change of one leaves the others unchanged.
    explicit draws(std::string_view procedure);

    /// A random word. Source: Steele, Lea and Flood, Fast splittable pseudorandom number generators
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

    /// Any kind of real: integers, fractions, decimals, neighbours of integers and of powers of
    /// two, huge, subnormal, infinite, NaN, random bits.
    double real();

    /// Mostly a small integer, sometimes any kind of real.
    double coefficient();

    /// alpha or beta of a combination.
    double factor();

    /// A tolerance, sometimes a negative, huge or NaN one.
    double tolerance();

    /// A bound for a denominator, sometimes a negative, huge or NaN one.
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
