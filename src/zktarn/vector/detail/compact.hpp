#pragma once

#include <algorithm>
#include <bit>
#include <cstdint>
#include <limits>

/// Dropping dead entries from an index list, the last entry moving into each hole.
///
/// Entry by entry the rule is: look at position k; where the entry there lives, go on to k + 1;
/// where it is dead, put the last entry into its place, shorten the list by one, and look at k
/// again. A branch per entry makes that slow where life and death alternate at random, and looking
/// at one entry after the other makes it slow beyond the cache.
///
/// But the outcome is simple: dead entries of the front are replaced, in order, by the living
/// entries of the back, in reverse order. So entries are judged up to 64 at once, into a word of
/// bits, and holes in the front block are paired with living entries of the back block, until front
/// and back meet. After each pair, list and length are those of the walk entry by entry.

namespace zktarn::vector_mod::detail {

/// Who decides which entries are dead.
///
/// `uint64 dead(block, count)` judges the `count` entries of a block, the first in the lowest bit;
/// its answer for an index does not depend on what has been removed. `void removed(first, last)` is
/// told of entries in [first, last) that are dropped, before they are overwritten.
template <class Judge>
concept entry_judge = requires(Judge& judge, const std::int32_t* entries, std::int64_t count) {
    { judge.dead(entries, count) }
    noexcept;
    { judge.removed(entries, entries) }
    noexcept;
};

/// No early end to a compaction.
inline constexpr std::int64_t to_the_end = std::numeric_limits<std::int64_t>::max();

inline constexpr std::int64_t block_size = 64;

/// The lowest `count` bits, 0 <= count <= 64.
[[gnu::always_inline]] inline std::uint64_t low_bits(std::int64_t count) noexcept {
    return count == block_size ? ~std::uint64_t{0} : (std::uint64_t{1} << count) - 1;
}

/// A word of the answers, 0 or 1, for the `count` entries of a block. Read from the back, each
/// answer goes in at the low end.
template <class Predicate>
[[gnu::always_inline]] inline std::uint64_t answers(const std::int32_t* block, std::int64_t count,
                                                    Predicate predicate) noexcept {
    std::uint64_t word = 0;
    for (std::int64_t i = count - 1; i >= 0; --i) {
        word = word * 2 + static_cast<std::uint64_t>(predicate(block[i]));
    }
    return word;
}

/// Whether a coefficient is a zero of either sign: all bits but the sign are 0.
[[gnu::always_inline]] inline bool is_zero(double value) noexcept {
    return std::bit_cast<std::uint64_t>(value) << 1 == 0;
}

/// Clears the marks of those entries of a block that have a bit in `word`.
[[gnu::always_inline]] inline void clear_marks(std::int32_t* elm, const std::int32_t* block,
                                               std::uint64_t word) noexcept {
    for (; word != 0; word &= word - 1) {
        elm[block[std::countr_zero(word)] - 1] = 0;
    }
}

template <entry_judge Judge>
class compaction {
public:
    compaction(std::int32_t* list, std::int64_t length, std::int64_t most, Judge& judge) noexcept
        : list_(list), length_(length), most_(most), judge_(judge) {}

    /// Drops the dead entries and returns how many entries are left.
    [[gnu::always_inline]] std::int64_t run() noexcept {
        std::int64_t front_end = 0;
        std::int64_t front = front_end;
        std::int64_t back = length_;
        std::uint64_t holes = 0;
        std::uint64_t living = 0;
        for (;;) {
            while (holes == 0 && front_end < back) {
                const std::int64_t count = std::min(block_size, back - front_end);
                front = front_end;
                front_end += count;
                holes = judge_.dead(list_ + front, count);
            }
            while (holes != 0 && living == 0 && front_end < back) {
                const std::int64_t count = std::min(block_size, back - front_end);
                back -= count;
                living = judge_.dead(list_ + back, count) ^ low_bits(count);
            }
            if (holes == 0 || living == 0) {
                break;
            }
            const std::int64_t last = back + highest(living);
            if (pair(front + std::countr_zero(holes), last)) {
                return length_;
            }
            holes &= holes - 1;
            living ^= std::uint64_t{1} << (last - back);
        }
        // Front and back have met, and one of them has nothing left to pair: what remains is either
        // within the back block, or within the front block and dead behind it.
        if (holes == 0) {
            // Bits beyond the list count as holes that nothing fills.
            return finish(back, ~living, living);
        }
        return finish(front, holes, holes ^ low_bits(front_end - front));
    }

private:
    static std::int64_t highest(std::uint64_t word) noexcept {
        return block_size - 1 - std::countl_zero(word);
    }

    /// Fills a hole with the last living entry. Returns true when the walk would end here, having
    /// found that entry living with as many removed as it may remove.
    [[gnu::always_inline]] bool pair(std::int64_t hole, std::int64_t last) noexcept {
        judge_.removed(list_ + hole, list_ + hole + 1);
        judge_.removed(list_ + last + 1, list_ + length_);
        list_[hole] = list_[last];
        removed_ += length_ - last;
        length_ = last;
        return removed_ == most_;
    }

    /// Pairs holes with living entries of one and the same block; what lies behind it is dead.
    [[gnu::always_inline]] std::int64_t finish(std::int64_t block, std::uint64_t holes,
                                               std::uint64_t living) noexcept {
        while (holes != 0) {
            const std::int64_t hole = std::countr_zero(holes);
            if (living >> hole == 0) {
                judge_.removed(list_ + block + hole, list_ + length_);
                return block + hole;
            }
            const std::int64_t last = highest(living);
            if (pair(block + hole, block + last)) {
                return length_;
            }
            living ^= std::uint64_t{1} << last;
            holes &= (holes - 1) & low_bits(last);
        }
        return length_;
    }

    std::int32_t* list_;
    std::int64_t length_;
    std::int64_t most_;
    std::int64_t removed_ = 0;
    Judge& judge_;
};

/// Drops the dead entries among the first `length` of `list` and returns how many are left.
///
/// @param most  the walk ends at the first living entry that it finds with exactly so many removed.
template <entry_judge Judge> // NOLINTNEXTLINE(readability-non-const-parameter): `run` writes it
[[gnu::always_inline]] inline std::int32_t compact(std::int32_t* list, std::int32_t length,
                                                   std::int64_t most, Judge judge) noexcept {
    return static_cast<std::int32_t>(compaction<Judge>(list, length, most, judge).run());
}

} // namespace zktarn::vector_mod::detail
