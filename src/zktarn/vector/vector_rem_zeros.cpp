#include "zktarn/vector/vector_mod.hpp"

#include "zktarn/vector/compact_internal.hpp"

namespace zktarn::vector_mod {

namespace {

/// Every dead entry is removed in the end, so it can lose its mark as soon as it is met.
struct marks_judge {
    const double* coef;
    std::int32_t* elm;

    std::uint64_t dead(const std::int32_t* block, std::int64_t count) const noexcept {
        const std::uint64_t word = detail::answers(block, count, [this](std::int32_t j) {
            return (elm[j - 1] < 1) | detail::is_zero(coef[j - 1]);
        });
        detail::clear_marks(elm, block, word);
        return word;
    }
    static void removed(const std::int32_t*, const std::int32_t*) noexcept {}
};

/// Without marks every listed index is found in the list, so its coefficient decides.
struct list_judge {
    const double* coef;

    std::uint64_t dead(const std::int32_t* block, std::int64_t count) const noexcept {
        return detail::answers(block, count,
                               [this](std::int32_t j) { return detail::is_zero(coef[j - 1]); });
    }
    static void removed(const std::int32_t*, const std::int32_t*) noexcept {}
};

} // namespace

void vector_rem_zeros(vector& v) noexcept {
    if (v.nz < 1) {
        return;
    }
    if (v.elm.present()) {
        v.nz = detail::compact(v.ind.data, v.nz, detail::to_the_end,
                               marks_judge{v.coef.data, v.elm.data});
    } else {
        v.nz = detail::compact(v.ind.data, v.nz, detail::to_the_end, list_judge{v.coef.data});
    }
}

} // namespace zktarn::vector_mod
