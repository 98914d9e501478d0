#pragma once

#include <cmath>

#include "zktarn/vector/detail/combine_in_blocks.hpp"
#include "zktarn/vector/detail/combine_marked.hpp"
#include "zktarn/vector/vector_mod.hpp"

/// The ways of `vectors_combine`, each at every size. The procedure itself picks one by the sizes
/// of the vectors, far beyond those at which random scripts are fast.

namespace zktarn::testing {

enum class way { chosen, in_cache, in_list_order, in_blocks };
inline constexpr int ways = 4;

/// `vectors_combine`, in the given way where the vectors allow it, else as chosen by the procedure.
inline void combine(way how, vector_type::vector& x, const vector_type::vector& y, double alpha,
                    double beta, double tol) {
    namespace detail = vector_mod::detail;
    const detail::factors by{alpha, beta, std::fabs(alpha - 1.0) > tol};
    const bool sums = std::fabs(beta) > tol && x.coef.present() && y.coef.present();
    const bool marked = sums && x.elm.present() && x.ind.present() && &x != &y;
    if (marked && how == way::in_cache) {
        detail::combine_in_cache(x, y, by);
    } else if (marked && how == way::in_list_order) {
        detail::combine_in_list_order(x, y, by);
    } else if (marked && how == way::in_blocks && detail::suits_blocks(x, y, {1, 1})) {
        detail::combine_in_blocks(x, y, by);
    } else {
        vector_mod::vectors_combine(x, y, alpha, beta, tol);
    }
}

} // namespace zktarn::testing
