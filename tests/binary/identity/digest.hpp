#pragma once

#include <bit>
#include <cstdint>

namespace zktarn::identity {

/// The 64-bit FNV-1a hash of all that it was given, the lowest byte of a word first.
class digest {
public:
    void word(std::uint64_t value) {
        for (int shift = 0; shift < 64; shift += 8) {
            hash_ ^= (value >> shift) & 0xFF;
            hash_ *= 0x100000001B3;
        }
    }

    void integer(std::int64_t value) { word(static_cast<std::uint64_t>(value)); }

    /// A real that was copied, bit for bit, whatever it is.
    void copied(double value) { word(std::bit_cast<std::uint64_t>(value)); }

    /// A real that was computed. Every not-a-number counts as the same one: its sign and payload
    /// are the processor's (a new one is negative on x86-64 and positive on Arm), and where both
    /// operands are none, the compiler's, who may turn a sum or a product round.
    void computed(double value) { value != value ? word(0x7FF8000000000000) : copied(value); }

    std::uint64_t value() const { return hash_; }

private:
    std::uint64_t hash_ = 0xCBF29CE484222325;
};

} // namespace zktarn::identity
