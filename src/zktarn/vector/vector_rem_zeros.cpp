#include "zktarn/vector/vector_mod.hpp"

#include "zktarn/vector/detail/compact.hpp"

namespace zktarn::vector_mod {

namespace {

/// The entries of a vector with marks: what is not marked counts as zero.
struct marked_entries {
    const double* coef;
    std::int32_t* elm;

    [[gnu::always_inline]] bool is_dead(std::int64_t j) const noexcept {
        return elm[j - 1] < 1 || detail::is_zero(coef[j - 1]);
    }
    void unmark(const std::int32_t* block, std::uint64_t word) const noexcept {
        detail::clear_marks(elm, block, word);
    }
};

/// The entries of a vector without marks: all that is listed is found in the list.
struct listed_entries {
    const double* coef;

    [[gnu::always_inline]] bool is_dead(std::int64_t j) const noexcept {
        return detail::is_zero(coef[j - 1]);
    }
    void unmark(const std::int32_t*, std::uint64_t) const noexcept {}
};

/// Every dead entry is removed in the end, so it can lose its mark as soon as it is met.
template <class Entries>
struct zeros_judge {
    Entries entries;

    std::uint64_t dead(const std::int32_t* block, std::int64_t count) const noexcept {
        const std::uint64_t word =
            detail::answers(block, count, [this](std::int64_t j) { return entries.is_dead(j); });
        entries.unmark(block, word);
        return word;
    }
    static void removed(const std::int32_t*, const std::int32_t*) noexcept {}
};

/// Nothing is faster than a branch on each entry as long as zeros are rare, so that the branch is
/// predictable. Where they turn out to be frequent, the rest is dropped in blocks.
template <class Entries>
[[gnu::always_inline]] inline std::int32_t drop(std::int32_t* list, std::int32_t length,
                                                Entries entries) noexcept {
    std::int32_t k = 0;
    std::int32_t left = length;
    std::int32_t patience = 16;
    while (k < left) {
        if (!entries.is_dead(list[k])) {
            k += 1;
            continue;
        }
        entries.unmark(list + k, 1);
        left -= 1;
        list[k] = list[left];
        patience -= 1;
        if (patience + k / 8 < 0) {
            return k + detail::compact(list + k, left - k, detail::to_the_end,
                                       zeros_judge<Entries>{entries});
        }
    }
    return left;
}

} // namespace

void vector_rem_zeros(vector& v) noexcept {
    if (v.nz < 1) {
        return;
    }
    ZKTARN_CHECK(v.coef.present() && detail::has_one_capacity(v) && detail::lists_elements(v, v));
    std::int32_t* const list = v.ind.data;
    v.nz = v.elm.present() ? drop(list, v.nz, marked_entries{v.coef.data, v.elm.data})
                           : drop(list, v.nz, listed_entries{v.coef.data});
}

} // namespace zktarn::vector_mod
