#pragma once

#include <bit>
#include <cinttypes>
#include <cstdint>
#include <cstdio>
#include <span>
#include <string>

#include "binary/identity/draws.hpp"
#include "zktarn/zktarn_util.hpp"

/// The procedures whose results must be the same on every platform, with their inputs.
///
/// The sources include the library only by its umbrella header, so that the tests of the bindings
/// can replace that header by one that calls the library through C, Fortran or Python.

namespace zktarn::identity {

/// The 64-bit FNV-1a hash of the added words, lowest byte first.
class digest {
public:
    void word(std::uint64_t value) {
        for (int shift = 0; shift < 64; shift += 8) {
            hash_ ^= (value >> shift) & 0xFF;
            hash_ *= 0x100000001B3;
        }
    }

    void integer(std::int64_t value) { word(static_cast<std::uint64_t>(value)); }

    /// Adds the bits of a real that a procedure copied.
    void copied(double value) { word(std::bit_cast<std::uint64_t>(value)); }

    /// Adds a real that a procedure computed. All NaNs count as equal: sign and payload depend on
    /// the processor (a new NaN is negative on x86-64, positive on Arm) and, for two NaN operands,
    /// on the order in which the compiler puts the operands.
    void computed(double value) { value != value ? word(0x7FF8000000000000) : copied(value); }

    std::uint64_t value() const { return hash_; }

private:
    std::uint64_t hash_ = 0xCBF29CE484222325;
};

/// A procedure's name, module.procedure, and a function that calls it once on random inputs and
/// adds all results to the digest.
struct procedure {
    const char* name;
    void (*call)(draws& draw, digest& results);
    int calls = 20'000;
};

/// The hash of all results of a procedure, 16 hexadecimal digits.
inline std::string hash_of(const procedure& each) {
    draws draw(each.name);
    digest results;
    for (int i = 0; i < each.calls; ++i) {
        each.call(draw, results);
    }
    char text[17];
    std::snprintf(text, sizeof text, "%016" PRIx64, results.value());
    return text;
}

std::span<const procedure> util_procedures();
std::span<const procedure> array_copy_procedures();
std::span<const procedure> vector_procedures();
std::span<const procedure> sorting_procedures();
std::span<const procedure> random_procedures();

} // namespace zktarn::identity
