#pragma once

#include <cstdint>

namespace zero_half {

/// The finaliser of SplitMix64 (Steele, Lea, Flood 2014). Consecutive integers become numbers that
/// look independent, so the exclusive or of several identifies a set of integers.
constexpr std::uint64_t mixed(std::uint64_t x) {
    x += 0x9e3779b97f4a7c15u;
    x = (x ^ (x >> 30)) * 0xbf58476d1ce4e5b9u;
    x = (x ^ (x >> 27)) * 0x94d049bb133111ebu;
    return x ^ (x >> 31);
}

} // namespace zero_half
