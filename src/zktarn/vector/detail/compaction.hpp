#pragma once

#include <algorithm>
#include <bit>
#include <cstdint>
#include <limits>

#include "zktarn/vector/detail/prefetch.hpp"

/// Drops entries from an index list. The last entry moves to the position of each dropped entry,
/// which is called free here.
///
/// The rule, entry by entry: test position k. If the entry is kept, k advances. If it is dropped,
/// the last entry replaces it, the list is shortened by one, and position k is tested again.
/// A loop that follows the rule literally mispredicts a branch at most drops.
///
/// The result has a simple form: the free positions of the front are filled, in order, with the
/// kept entries of the back, in reverse order. So entries are tested in blocks of up to 64, one bit
/// for each, from both ends, until the two blocks meet:
///
///     position  0         front.first  front.end()   back.first            length
///               | all kept | k - k - k | not tested   | k k - k | moved or dropped |
///                              ^ first free position          ^ last kept entry
///
/// The last kept entry of the back block moves to the first free position of the front block, and
/// the list then ends before its old position. After each move the list equals the list of the rule
/// at that point.

namespace zktarn::vector_mod::detail {

/// Decides which entries are dropped.
///
/// - `prefetch(j)` prefetches what the test of index j reads.
/// - `drops(j)` is the test; its result for an index does not depend on what was dropped before.
/// - `tested(block, word)` is called after the tests of a block, with a bit for each drop.
/// - `removed(first, last)` is called for dropped entries, before they are overwritten.
template <class Test>
concept entry_test = requires(Test& test, std::int64_t j, const std::int32_t* entries) {
    { test.prefetch(j) }
    noexcept;
    { test.drops(j) }
    noexcept;
    { test.tested(entries, std::uint64_t{}) }
    noexcept;
    { test.removed(entries, entries) }
    noexcept;
};

inline constexpr std::int64_t block_size = 64;

/// Clears the marks of those entries of a block that have a bit in `word`.
[[gnu::always_inline]] inline void clear_marks(std::int32_t* elm, const std::int32_t* block,
                                               std::uint64_t word) noexcept {
    for (; word != 0; word &= word - 1) {
        elm[block[std::countr_zero(word)] - 1] = 0;
    }
}

/// A word whose lowest `count` bits are 1, 0 <= count <= 64.
[[gnu::always_inline]] inline std::uint64_t low_bits(std::int64_t count) noexcept {
    return count == block_size ? ~std::uint64_t{0} : (std::uint64_t{1} << count) - 1;
}

/// Which part of a list a compaction tests, and when it stops.
struct extent {
    std::int64_t length;
    /// Entries from this position on are known to be kept.
    std::int64_t kept_from;
    /// The compaction stops at the first kept entry after exactly this many drops.
    std::int64_t most_drops = std::numeric_limits<std::int64_t>::max();
};

template <entry_test Test>
class compaction {
public:
    compaction(std::int32_t* list, const extent& part, Test& test) noexcept
        : list_(list), length_(part.length), end_(part.length), kept_from_(part.kept_from),
          most_drops_(part.most_drops), test_(test) {}

    /// Drops entries and returns how many are left.
    [[gnu::always_inline]] std::int64_t run() noexcept {
        block front{0, 0, 0};      // bits: free positions
        block back{length_, 0, 0}; // bits: kept entries
        for (;;) {
            while (front.bits == 0 && front.end() < std::min(back.first, kept_from_)) {
                const std::int64_t untested = std::min(back.first, kept_from_) - front.end();
                front = {front.end(), std::min(block_size, untested), 0};
                front.bits = test(front, block_size);
            }
            while (front.bits != 0 && back.bits == 0 && front.end() < back.first) {
                const std::int64_t count = std::min(block_size, back.first - front.end());
                back = {back.first - count, count, low_bits(count)};
                if (back.first < kept_from_) {
                    back.bits ^= test(back, -block_size);
                }
            }
            if (front.bits == 0 || back.bits == 0) {
                break;
            }
            const std::int64_t last = back.highest();
            if (move(last, front.lowest())) {
                return length_;
            }
            front.bits &= front.bits - 1;
            back.bits ^= std::uint64_t{1} << (last - back.first);
        }
        // Now one block has all free positions and all kept entries that fill them, or none is
        // free.
        if (front.bits == 0) {
            // Bits beyond the last entry count as free positions, which stay unfilled.
            return finish({back.first, back.count, ~back.bits}, back.bits);
        }
        return finish(front, front.bits ^ low_bits(front.count));
    }

private:
    /// `count` entries from position `first` on, and a bit for each.
    struct block {
        std::int64_t first;
        std::int64_t count;
        std::uint64_t bits;

        std::int64_t end() const noexcept { return first + count; }
        std::int64_t lowest() const noexcept { return first + std::countr_zero(bits); }
        std::int64_t highest() const noexcept {
            return first + block_size - 1 - std::countl_zero(bits);
        }
    };

    /// A bit for each entry of a block that is dropped. Prefetches the block that lies `ahead`
    /// positions on, which is tested next from this end.
    [[gnu::always_inline]] std::uint64_t test(const block& tested, std::int64_t ahead) noexcept {
        const std::int32_t* const entries = list_ + tested.first;
        // Not negative: an entry of the back is tested only behind a whole block of the front.
        const std::int64_t next = tested.first + ahead;
        std::uint64_t word = 0;
        // From the last entry to the first, so that each result enters at the low end.
        if (next + tested.count <= end_) {
            for (std::int64_t i = tested.count - 1; i >= 0; --i) {
                test_.prefetch(std::int64_t{list_[next + i]});
                word = word * 2 + static_cast<std::uint64_t>(test_.drops(std::int64_t{entries[i]}));
            }
        } else {
            for (std::int64_t i = tested.count - 1; i >= 0; --i) {
                word = word * 2 + static_cast<std::uint64_t>(test_.drops(std::int64_t{entries[i]}));
            }
        }
        test_.tested(entries, word);
        return word;
    }

    /// Moves the last kept entry to a free position. Returns true if the rule stops here, because
    /// it has made `most_drops` drops.
    [[gnu::always_inline]] bool move(std::int64_t last, std::int64_t free) noexcept {
        test_.removed(list_ + free, list_ + free + 1);
        test_.removed(list_ + last + 1, list_ + length_);
        list_[free] = list_[last];
        drops_ += length_ - last;
        length_ = last;
        return drops_ == most_drops_;
    }

    /// Fills the free positions of a block with kept entries of the same block. All entries after
    /// the block are dropped.
    [[gnu::always_inline]] std::int64_t finish(block unfilled, std::uint64_t kept) noexcept {
        while (unfilled.bits != 0) {
            const std::int64_t free = unfilled.lowest();
            if (kept >> (free - unfilled.first) == 0) {
                test_.removed(list_ + free, list_ + length_);
                return free;
            }
            const std::int64_t last = block{unfilled.first, unfilled.count, kept}.highest();
            if (move(last, free)) {
                return length_;
            }
            kept ^= std::uint64_t{1} << (last - unfilled.first);
            unfilled.bits &= (unfilled.bits - 1) & low_bits(last - unfilled.first);
        }
        return length_;
    }

    std::int32_t* list_;
    std::int64_t length_;
    std::int64_t end_;
    std::int64_t kept_from_;
    std::int64_t most_drops_;
    std::int64_t drops_ = 0;
    Test& test_;
};

/// Drops entries of `list` and returns how many are left.
template <entry_test Test>
[[gnu::noinline]] std::int64_t compact(std::int32_t* list, const extent& part, Test test) noexcept {
    return compaction<Test>(list, part, test).run();
}

/// Writes the positions of the entries that are dropped, among the first `tested`, to `dropped`,
/// which has room for all of them, and returns their number. No branch depends on a test.
template <entry_test Test>
[[gnu::always_inline]] inline std::int64_t
collect_dropped(const std::int32_t* list, std::int64_t tested, std::int32_t* dropped,
                Test& test) noexcept {
    std::int64_t count = 0;
    std::int32_t position = 0;
    walk(
        list, tested, [&](std::int64_t j) __attribute__((always_inline)) { test.prefetch(j); },
        [&](std::int64_t j) __attribute__((always_inline)) {
            dropped[count] = position;
            ++position;
            count += static_cast<std::int64_t>(test.drops(j));
        });
    return count;
}

/// Replaces the entries at `count` ascending positions as the rule does: each by the last entry
/// that is kept. Returns how many entries are left.
inline std::int64_t fill_positions(std::int32_t* list, std::int64_t length,
                                   const std::int32_t* dropped, std::int64_t count) noexcept {
    for (std::int64_t i = 0; i < count;) {
        --length;
        if (length == dropped[count - 1]) {
            --count;
        } else {
            list[dropped[i]] = list[length];
            ++i;
        }
    }
    return length;
}

} // namespace zktarn::vector_mod::detail
