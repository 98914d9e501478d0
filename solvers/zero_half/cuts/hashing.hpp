#pragma once

#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

namespace zero_half {

/// The finaliser of SplitMix64 (Steele, Lea, Flood 2014). Consecutive integers become numbers that
/// look independent, so the exclusive or of several identifies a set of integers.
constexpr std::uint64_t mixed(std::uint64_t x) {
    x += 0x9e3779b97f4a7c15u;
    x = (x ^ (x >> 30)) * 0xbf58476d1ce4e5b9u;
    x = (x ^ (x >> 27)) * 0x94d049bb133111ebu;
    return x ^ (x >> 31);
}

/// A map from numbers that look random to indices, with open addressing: nothing is allocated for
/// a single entry.
class signature_map {
public:
    /// Removes all entries and reserves room for `entries` new ones.
    void reset(std::size_t entries) {
        std::size_t slots = 16;
        while (slots < 2 * entries) {
            slots *= 2;
        }
        slots_.assign(slots, {0, free_slot});
        size_ = 0;
    }

    /// The index of the signature, and whether it is new; a new one gets `index`.
    std::pair<std::size_t, bool> insert(std::uint64_t signature, std::size_t index) {
        if (2 * size_ >= slots_.size()) {
            grow();
        }
        slot& place = slots_[slot_of(signature)];
        const bool is_new = place.index == free_slot;
        if (is_new) {
            place = {signature, index};
            ++size_;
        }
        return {place.index, is_new};
    }
    bool contains(std::uint64_t signature) const {
        return !slots_.empty() && slots_[slot_of(signature)].index != free_slot;
    }
    /// Replaces the index of a signature that is in the map.
    void set(std::uint64_t signature, std::size_t index) {
        slots_[slot_of(signature)].index = index;
    }

private:
    struct slot {
        std::uint64_t signature;
        std::size_t index;
    };
    static constexpr std::size_t free_slot = ~std::size_t{0};

    /// The position of the signature, or the free one where it can be stored.
    std::size_t slot_of(std::uint64_t signature) const {
        std::size_t at = signature & (slots_.size() - 1);
        while (slots_[at].index != free_slot && slots_[at].signature != signature) {
            at = (at + 1) & (slots_.size() - 1);
        }
        return at;
    }
    void grow() {
        const std::vector<slot> before = std::move(slots_);
        reset(before.size());
        for (const slot& each : before) {
            if (each.index != free_slot) {
                insert(each.signature, each.index);
            }
        }
    }

    std::vector<slot> slots_;
    std::size_t size_ = 0;
};

} // namespace zero_half
