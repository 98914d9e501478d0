#pragma once

#include <cmath>

#include "zktarn/vector/detail/combine_in_blocks.hpp"
#include "zktarn/vector/detail/combine_marked.hpp"
#include "zktarn/vector/vector_mod.hpp"

/// Calls each implementation of `vectors_combine` at any size. The procedure itself picks one
/// factors the sizes of the vectors, and some only at sizes too large for random scripts.

namespace zktarn::testing {

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
    } else if (marked && how == way::in_blocks && detail::suits_blocks(x, y, {1, 1})) {
        detail::combine_in_blocks(x, y, scaled);
    } else {
        vector_mod::vectors_combine(x, y, alpha, beta, tol);
    }
}

} // namespace zktarn::testing
