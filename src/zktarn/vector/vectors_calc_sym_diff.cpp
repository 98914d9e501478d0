#include "zktarn/vector/vector_mod.hpp"

#include <algorithm>

#include "zktarn/vector/detail/append_if_new.hpp"
#include "zktarn/vector/detail/compaction.hpp"

namespace zktarn::vector_mod {

namespace {

/// Drops the entries without a mark. The mark of a dropped entry becomes 0; it differs only if the
/// caller wrote a negative mark.
struct unmarked_entries {
    std::int32_t* elm = nullptr;
    std::int32_t all_marks = 0;

    [[gnu::always_inline]] void prefetch(std::int64_t j) const noexcept {
        detail::prefetch_read(elm, j);
    }
    [[gnu::always_inline]] bool drops(std::int64_t j) noexcept {
        const std::int32_t mark = elm[j - 1];
        all_marks |= mark;
        return mark <= 0;
    }
    [[gnu::always_inline]] static void tested(const std::int32_t*, std::uint64_t) noexcept {}
    [[gnu::always_inline]] void removed(const std::int32_t* first,
                                        const std::int32_t* last) const noexcept {
        if (all_marks < 0) [[unlikely]] {
            std::for_each(first, last, [this](std::int64_t j) { elm[j - 1] = 0; });
        }
    }
};

/// Drops entries without a mark from the list of x in the order that compaction.hpp defines, and
/// stops after `common` drops. Entries from list position `kept_from`, counted from 0, on are known
/// to be kept.
void drop_common(vector& x, std::int64_t kept_from, std::int64_t common) noexcept {
    std::int32_t* const list = x.ind.data;
    const std::int64_t nz = x.nz;
    unmarked_entries unmarked{x.elm.data};
    if (nz + kept_from <= x.ind.extent[0]) {
        std::int32_t* const dropped = list + nz;
        const std::int64_t count = detail::collect_dropped(list, kept_from, dropped, unmarked);
        // The counts differ if a vector listed an index twice, or x listed one without a mark.
        if (count == common && unmarked.all_marks >= 0) [[likely]] {
            x.nz = static_cast<std::int32_t>(detail::fill_positions(list, nz, dropped, count));
            return;
        }
    }
    x.nz = static_cast<std::int32_t>(detail::compact(list, {nz, kept_from, common}, unmarked));
}

} // namespace

void vectors_calc_sym_diff(vector& x, const vector& y) noexcept {
    if (y.nz < 1) {
        return;
    }
    ZKTARN_CHECK(x.elm.present() && detail::is_sound(x));
    ZKTARN_CHECK(detail::lists_elements(y, x));
    ZKTARN_CHECK(detail::has_room_for(x, y));
    std::int32_t* const elm = x.elm.data;
    const std::int64_t old_nz = x.nz;
    // Appending to x changes y.nz if x and y are one record.
    const std::int64_t y_nz = y.nz;
    std::int64_t previous = 0;
    bool ascending = true;
    // Indices of both vectors lose their mark and stay listed until the compaction. The other
    // indices of y are marked and listed.
    detail::append_if_new(
        x, y.ind.data, y_nz,
        [=](std::int64_t j) __attribute__((always_inline)) { detail::prefetch_write(elm, j); },
        [&](std::int64_t j) __attribute__((always_inline)) {
            const std::int32_t is_new = elm[j - 1] < 1;
            elm[j - 1] = is_new;
            ascending &= j > previous;
            previous = j;
            return is_new;
        });
    const std::int64_t common = y_nz - (x.nz - old_nz);
    if (common < 1) {
        return;
    }
    // Ascending indices are distinct, so every appended index still has its mark.
    const std::int64_t kept_from = ascending ? old_nz : x.nz;
    drop_common(x, kept_from, common);
}

} // namespace zktarn::vector_mod
