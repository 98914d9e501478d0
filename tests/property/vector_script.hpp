#pragma once

#include <bit>
#include <cmath>
#include <cstdint>
#include <iterator>
#include <limits>
#include <utility>
#include <vector>

#include "property/mirrored_vector.hpp"
#include "zktarn/vector/detail/combine_in_blocks.hpp"
#include "zktarn/vector/detail/combine_marked.hpp"
#include "zktarn/vector/vector_mod.hpp"

/// Operations on two vectors, chosen one after the other and done on the library's records and on
/// the reference alike. The source of the choices is a parameter: a random generator, or the bytes
/// of a file.

namespace zktarn::testing {

/// The implementations of `vectors_combine`. The procedure itself picks one by the sizes of the
/// vectors, and some only at sizes too large for random scripts.
enum class way { chosen, in_cache, in_list_order, in_blocks };
inline constexpr int ways = 4;

/// Calls the given implementation if it supports these vectors, else `vectors_combine`.
inline void combine(way how, vector_type::vector& x, const vector_type::vector& y, double alpha,
                    double beta, double tol) {
    namespace detail = vector_mod::detail;
    const detail::factors scaled{alpha, beta, std::fabs(alpha - 1.0) > tol};
    const bool sums = std::fabs(beta) > tol && x.coef.present() && y.coef.present();
    const bool marked = sums && x.elm.present() && x.ind.present() && &x != &y;
    if (marked && how == way::in_cache) {
        detail::combine_in_cache(x, y, scaled);
    } else if (marked && how == way::in_list_order) {
        detail::combine_in_list_order(x, y, scaled);
    } else if (marked && how == way::in_blocks && detail::has_room_for_blocks(x, y)) {
        detail::combine_in_blocks(x, y, scaled);
    } else {
        vector_mod::vectors_combine(x, y, alpha, beta, tol);
    }
}

class choices {
public:
    virtual ~choices() = default;

    /// The next choice, any of the 64-bit words.
    virtual std::uint64_t word() = 0;

    std::int32_t below(std::int32_t n) {
        return static_cast<std::int32_t>(word() % static_cast<std::uint64_t>(n));
    }
    std::int32_t between(std::int32_t low, std::int32_t high) {
        return low + below(high - low + 1);
    }
    bool chance(std::int32_t one_in) { return below(one_in) == 0; }

    double value() {
        static constexpr double special[] = {
            0.0,          -0.0,         nan,          inf,   -inf,        5e-324,
            -5e-324,      2.5,          0.5,          1e300, 1e-300,      4096.0,
            2147483646.0, 2147483647.0, 2147483648.0, -3e9,  1.0 + 1e-10, 2.0 - 1e-10};
        return chance(6) ? one_of(special) : between(-4, 4);
    }

    double factor() {
        static constexpr double usual[] = {1.0,  -1.0,      0.0, 2.0, 0.5,
                                           -3.0, 1.0 / 3.0, nan, inf, 1e-12};
        return chance(3) ? value() : one_of(usual);
    }

    double tolerance() {
        static constexpr double usual[] = {0.0, 1e-9, 1e-6};
        static constexpr double odd[] = {0.25, 0.5, 1.0, 2.0, 1e300, -1e-9, nan, inf};
        return chance(2) ? one_of(usual) : one_of(odd);
    }

    template <class T>
    void shuffle(std::vector<T>& items) {
        for (std::size_t left = items.size(); left > 1; --left) {
            std::swap(items[left - 1], items[word() % left]);
        }
    }

private:
    static constexpr double inf = std::numeric_limits<double>::infinity();
    static constexpr double nan = std::numeric_limits<double>::quiet_NaN();

    template <std::size_t N>
    double one_of(const double (&values)[N]) {
        return values[word() % N];
    }
};

/// The outcome of a step.
struct outcome {
    const char* operation;
    /// Whether library and reference returned the same result; true if the operation has none.
    bool results_agree = true;
};

/// Whether a vector keeps its invariants.
enum class state { consistent, inconsistent };

/// A mark from -2 to 2, 2^30 or 2^31 - 1; the library itself writes only 0 and 1.
inline std::int32_t odd_mark(choices& draw) {
    const std::int32_t mark = draw.between(-2, 4);
    return mark < 3 ? mark : mark == 3 ? (1 << 30) : std::numeric_limits<std::int32_t>::max();
}

/// Fills a vector with `count` listed entries. An inconsistent one may list an index without a mark
/// or twice, and may have marks of any value.
inline void fill(choices& draw, mirrored_vector& v, std::int32_t count, state how) {
    const std::int32_t n = v.capacity;
    if (v.record.coef.present()) {
        for (std::int32_t j = 1; j <= n; ++j) {
            v.set_coef(j, draw.value());
        }
    }
    const bool marks = v.record.elm.present();
    if (marks) {
        for (std::int32_t j = 1; j <= n; ++j) {
            v.set_elm(j, how == state::inconsistent && draw.chance(20) ? odd_mark(draw) : 0);
        }
    }
    if (!v.record.ind.present()) {
        return;
    }
    std::vector<std::int32_t> indices(static_cast<std::size_t>(n));
    for (std::int32_t j = 1; j <= n; ++j) {
        indices[static_cast<std::size_t>(j - 1)] = j;
    }
    draw.shuffle(indices);
    for (std::int32_t k = 1; k <= count; ++k) {
        std::int32_t j = indices[static_cast<std::size_t>(k - 1)];
        if (how == state::inconsistent && draw.chance(12)) {
            j = draw.between(1, n);
        }
        v.set_ind(k, j);
        if (marks) {
            const bool odd = how == state::inconsistent && draw.chance(10);
            v.set_elm(j, odd ? odd_mark(draw) : 1);
        }
    }
    v.set_nz(count);
}

/// The maximum number of indices of y that would be appended to x.
inline std::int32_t appended(const mirrored_vector& x, const mirrored_vector& y) {
    std::int32_t count = 0;
    for (std::int32_t k = 1; k <= y.mirror.nz; ++k) {
        const std::int32_t j = y.mirror.i(k);
        const bool member =
            x.mirror.marks_mode() ? x.mirror.m(j) >= 1 : reference::search(x.mirror, j) != 0;
        count += member ? 0 : 1;
    }
    return count;
}

/// Whether the list of x has room for the indices that a combination with y appends.
inline bool has_room(const mirrored_vector& x, const mirrored_vector& y) {
    return !x.mirror.ind || x.mirror.nz + appended(x, y) <= x.capacity;
}

/// Whether no index is listed twice.
inline bool distinct(const mirrored_vector& v) {
    for (std::int32_t k = 1; k <= v.mirror.nz; ++k) {
        if (reference::search(v.mirror, v.mirror.i(k)) != k) {
            return false;
        }
    }
    return true;
}

/// Whether the list of x has room for a symmetric difference with y. An index that y lists several
/// times may be appended several times.
inline bool has_room_for_difference(const mirrored_vector& x, const mirrored_vector& y) {
    return x.mirror.nz + y.mirror.nz <= x.capacity || (distinct(y) && has_room(x, y));
}

/// Whether every member is listed. Otherwise the compaction of a symmetric difference may start
/// with an empty list, for which its steps are undefined.
inline bool lists_its_members(const mirrored_vector& v) {
    for (std::int32_t j = 1; j <= v.capacity; ++j) {
        if (v.mirror.m(j) >= 1 && reference::search(v.mirror, j) == 0) {
            return false;
        }
    }
    return true;
}

/// Chooses an operation that the contents of the vectors allow, and runs it in the library and in
/// the reference.
inline outcome step(choices& draw, mirrored_vector& x, mirrored_vector& y, state how) {
    using namespace vector_mod;
    const std::int32_t j = draw.between(1, x.capacity);
    const double value = draw.value();
    const double tol = draw.tolerance();
    const bool listed = x.mirror.ind.has_value();
    const bool marks = x.mirror.elm.has_value() && listed;
    const bool coef = x.mirror.coef.has_value();
    const bool room = !listed || x.mirror.nz < x.capacity;
    switch (draw.below(11)) {
    case 0:
        if (room) {
            vector_add_nz(x.record, j);
            reference::vector_add_nz(x.mirror, j);
        }
        return {"vector_add_nz without a value"};
    case 1:
        if (room && coef) {
            vector_add_nz(x.record, j, value);
            reference::vector_add_nz(x.mirror, j, value);
        }
        return {"vector_add_nz"};
    case 2:
        if (marks && x.mirror.nz >= 1) {
            const std::int32_t k = draw.between(1, x.mirror.nz);
            vector_rem_nz(x.record, k);
            reference::vector_rem_nz(x.mirror, k);
        }
        return {"vector_rem_nz"};
    case 3:
        if (coef && listed) {
            vector_rem_zeros(x.record);
            reference::vector_rem_zeros(x.mirror);
        }
        return {"vector_rem_zeros"};
    case 4:
        if (how == state::inconsistent && marks) {
            vector_clean_index(x.record);
            reference::vector_clean_index(x.mirror);
        }
        return {"vector_clean_index"};
    case 5:
        if (marks && draw.chance(4)) {
            vector_clear(x.record);
            reference::vector_clear(x.mirror);
        }
        return {"vector_clear"};
    case 6:
        if (coef && listed) {
            vector_mod2(x.record, tol);
            reference::vector_mod2(x.mirror, tol);
        }
        return {"vector_mod2"};
    case 7:
        if (marks && has_room_for_difference(x, y) && lists_its_members(x)) {
            vectors_calc_sym_diff(x.record, y.record);
            reference::vectors_calc_sym_diff(x.mirror, y.mirror);
        }
        return {"vectors_calc_sym_diff"};
    case 8:
        if (y.mirror.elm && coef && y.mirror.coef && listed) {
            const bool ours = vectors_are_identical(x.record, y.record, tol) != 0;
            return {"vectors_are_identical",
                    ours == reference::vectors_are_identical(x.mirror, y.mirror, tol)};
        }
        return {"vectors_are_identical"};
    case 9:
        if (coef) {
            const double ours = vector_get_coef(x.record, j);
            const double theirs = reference::vector_get_coef(x.mirror, j);
            return {"vector_get_coef", same_bits(ours, theirs)};
        }
        return {"vector_get_coef"};
    default:
        if (has_room(x, y)) {
            const double alpha = draw.factor();
            const double beta = draw.factor();
            combine(static_cast<way>(draw.below(ways)), x.record, y.record, alpha, beta, tol);
            reference::vectors_combine(x.mirror, y.mirror, alpha, beta, tol);
        }
        return {"vectors_combine"};
    }
}

inline form form_of(std::int32_t bits) {
    // Marks with a list, a list, neither; with and without coefficients.
    const std::int32_t mode = bits % 3;
    return {.coef = bits < 3, .ind = mode != 2, .elm = mode == 0};
}

} // namespace zktarn::testing
