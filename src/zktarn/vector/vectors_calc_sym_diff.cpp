#include "zktarn/vector/vector_mod.hpp"

#include <algorithm>

#include "zktarn/vector/detail/append.hpp"
#include "zktarn/vector/detail/compact.hpp"

namespace zktarn::vector_mod {

namespace {

/// An entry is dead when it is not marked, and a dead one that is removed ends with mark 0. It has
/// that already, unless somebody else wrote a negative one.
struct support_judge {
    std::int32_t* elm = nullptr;
    std::int32_t marks_seen = 0;

    std::uint64_t dead(const std::int32_t* block, std::int64_t count) noexcept {
        return detail::answers(block, count, [this](std::int64_t j) {
            const std::int32_t mark = elm[j - 1];
            marks_seen |= mark;
            return mark <= 0;
        });
    }
    void removed(const std::int32_t* first, const std::int32_t* last) const noexcept {
        if (marks_seen < 0) [[unlikely]] {
            std::for_each(first, last, [this](std::int64_t j) { elm[j - 1] = 0; });
        }
    }
};

} // namespace

void vectors_calc_sym_diff(vector& x, const vector& y) noexcept {
    if (y.nz < 1) {
        return;
    }
    ZKTARN_CHECK(x.elm.present() && detail::is_sound(x));
    ZKTARN_CHECK(detail::lists_elements(y, x));
    ZKTARN_CHECK(detail::has_room_for(x, y));
    std::int32_t* const elm = x.elm.data;
    std::int64_t common = 0;
    // Indices of both vectors lose their mark and stay listed until the compaction; the others of y
    // are marked and listed.
    detail::append_where(
        x, y.ind.data, y.nz,
        [&](std::int64_t j) {
            const std::int32_t fresh = elm[j - 1] < 1;
            elm[j - 1] = fresh;
            common += 1 - fresh;
            return fresh;
        },
        [=](std::int64_t j) { __builtin_prefetch(elm + j - 1, 1); });
    if (common < 1) {
        return;
    }
    x.nz = detail::compact(x.ind.data, x.nz, common, support_judge{elm});
}

} // namespace zktarn::vector_mod
