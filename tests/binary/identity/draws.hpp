#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace zktarn::identity {

/// The random inputs of one procedure. They are the same on every platform: they do not depend on a
/// distribution of the standard library, and each is the result of single additions,
/// multiplications and divisions, which IEEE 754 defines to the last bit.
///
/// A statement must draw at most one number, because the compiler chooses the order in which it
/// evaluates operands and arguments.
class draws {
public:
    /// Each procedure has its own stream, so that a change of the calls of one procedure leaves the
    /// hashes of the others unchanged.
    explicit draws(std::string_view procedure);

    /// Uniform 64 bits, by SplitMix64. Source: Steele, Lea and Flood, Fast splittable pseudorandom
    /// number generators (2014).
    std::uint64_t word();

    /// In [0, n).
    std::uint64_t below(std::uint64_t n) { return word() % n; }

    /// True with probability 1 / one_in.
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

    /// A factor alpha or beta of `vectors_combine`.
    double factor();

    /// A tolerance, sometimes a negative, huge or NaN one.
    double tolerance();

    /// A bound for a denominator, sometimes a negative, huge or NaN one.
    double denominator_bound();

    /// A 32-bit integer. Small and large magnitudes are about equally frequent.
    std::int32_t integer();

private:
    double near_an_integer();
    double near_a_power_of_two();
    double large_integer();

    std::uint64_t state_;
};

} // namespace zktarn::identity
