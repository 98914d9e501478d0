#pragma once

#include <bit>
#include <cstdint>

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

} // namespace zktarn::identity
