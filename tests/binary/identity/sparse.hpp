#pragma once

#include <cstdint>
#include <vector>

#include "binary/identity/digest.hpp"
#include "binary/identity/draws.hpp"
#include "zktarn/vector/vector_type.hpp"

namespace zktarn::identity {

/// Which arrays a vector has.
struct form {
    bool coef;
    bool ind;
    bool elm;
};

/// A vector of 3 n elements that uses the indices 1 to n, so that there is room for whatever an
/// operation appends.
class sparse {
public:
    /// Contents at random: stale coefficients everywhere, and in one of three vectors what breaks
    /// the promises of the marks mode: listed indices without a mark, marks of other values than 0
    /// and 1.
    sparse(draws& draw, std::int32_t n, form arrays);

    sparse(const sparse& other);
    sparse& operator=(const sparse&) = delete;

    /// Count, list, coefficients and marks.
    void add_to(digest& results) const;

    vector_type::vector record;

private:
    void attach(form arrays);

    std::vector<double> coef_;
    std::vector<std::int32_t> ind_;
    std::vector<std::int32_t> elm_;
};

/// A number of indices in use: short, or long enough for several blocks of a list.
std::int32_t drawn_size(draws& draw);

/// A list with or without marks, or, where it may be, neither; with or without coefficients.
form drawn_form(draws& draw);

constexpr form with_marks{true, true, true};
constexpr form with_list{true, true, false};
constexpr form support_only{false, true, true};

} // namespace zktarn::identity
