#include "binary/identity/sparse.hpp"

#include <cstddef>
#include <utility>

namespace zktarn::identity {

namespace {

/// A random permutation of 1 to n.
std::vector<std::int32_t> shuffled(draws& draw, std::int32_t n) {
    std::vector<std::int32_t> numbers(static_cast<std::size_t>(n));
    for (std::size_t i = 0; i < numbers.size(); ++i) {
        numbers[i] = static_cast<std::int32_t>(i + 1);
    }
    for (std::size_t left = numbers.size(); left > 1; --left) {
        std::swap(numbers[left - 1], numbers[draw.below(left)]);
    }
    return numbers;
}

template <class T>
array_1d<T> over(std::vector<T>& elements, bool present) {
    if (!present) {
        return {};
    }
    return {elements.data(), {static_cast<std::int64_t>(elements.size())}, {1}};
}

} // namespace

void sparse::attach(form arrays) {
    record.coef = over(coef_, arrays.coef);
    record.ind = over(ind_, arrays.ind);
    record.elm = over(elm_, arrays.elm);
}

sparse::sparse(draws& draw, std::int32_t n, form arrays)
    : coef_(static_cast<std::size_t>(3 * n)), ind_(coef_.size()), elm_(coef_.size()) {
    attach(arrays);
    for (double& each : coef_) {
        each = draw.coefficient();
    }
    if (!arrays.ind) {
        return;
    }
    const bool odd = draw.chance(3);
    for (std::int32_t& mark : elm_) {
        mark = odd && draw.chance(20) ? draw.between(-3, 0) : 0;
    }
    const std::vector<std::int32_t> indices = shuffled(draw, n);
    record.nz = draw.between(0, n);
    for (std::int32_t k = 1; k <= record.nz; ++k) {
        const std::int32_t j = indices[static_cast<std::size_t>(k - 1)];
        record.ind(k) = j;
        elm_[static_cast<std::size_t>(j - 1)] = odd && draw.chance(10) ? draw.between(-2, 3) : 1;
    }
}

sparse::sparse(const sparse& other) : coef_(other.coef_), ind_(other.ind_), elm_(other.elm_) {
    const vector_type::vector& theirs = other.record;
    attach({theirs.coef.present(), theirs.ind.present(), theirs.elm.present()});
    record.nz = theirs.nz;
}

void sparse::add_to(digest& results) const {
    results.integer(record.nz);
    for (std::int32_t k = 1; record.ind.present() && k <= record.nz; ++k) {
        results.integer(record.ind(k));
    }
    for (std::int64_t j = 1; record.coef.present() && j <= record.coef.extent[0]; ++j) {
        results.computed(record.coef(j));
    }
    for (std::int64_t j = 1; record.elm.present() && j <= record.elm.extent[0]; ++j) {
        results.integer(record.elm(j));
    }
}

std::int32_t drawn_size(draws& draw) {
    return draw.chance(4) ? draw.between(100, 300) : draw.between(1, 20);
}

form drawn_form(draws& draw) {
    static constexpr form forms[] = {
        with_marks,           with_marks,           with_list, support_only, {false, true, false},
        {true, false, false}, {false, false, false}};
    return draw.one_of(forms);
}

} // namespace zktarn::identity
