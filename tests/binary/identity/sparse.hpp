#pragma once

#include <cstdint>
#include <vector>

#include "binary/identity/procedures.hpp"

namespace zktarn::identity {

/// Which arrays a vector has.
struct form {
    bool coef;
    bool ind;
    bool elm;
};

/// A vector of capacity 3 n that uses the indices 1 to n, so that every operation has room to
/// append.
class sparse {
public:
    /// Random contents with stale coefficients. One of three vectors breaks the invariants of the
    /// marks mode: listed indices without a mark, and marks other than 0 and 1.
    sparse(draws& draw, std::int32_t n, form arrays);

    sparse(const sparse& other);
    sparse& operator=(const sparse&) = delete;

    /// Adds count, list, coefficients and marks.
    void add_to(digest& results) const;

    vector_type::vector record;

private:
    void attach(form arrays);

    std::vector<double> coef_;
    std::vector<std::int32_t> ind_;
    std::vector<std::int32_t> elm_;
};

/// A random n: small, or large enough for several blocks of a list.
std::int32_t drawn_size(draws& draw);

/// A random mode: marks, list or dense, with or without coefficients.
form drawn_form(draws& draw);

constexpr form with_marks{true, true, true};
constexpr form with_list{true, true, false};
constexpr form support_only{false, true, true};

} // namespace zktarn::identity
