#include "run/result.hpp"

#include <cmath>

namespace zero_half {

std::optional<double> run_result::gap_closed(std::optional<double> reached) const {
    if (!optimum || !first_bound || !reached) {
        return std::nullopt;
    }
    const double gap = *optimum - *first_bound;
    const double negligible = 1e-9 * (1.0 + std::fabs(*optimum));
    if (gap < -negligible) {
        return std::nullopt;
    }
    return gap <= negligible ? 100.0 : 100.0 * (*reached - *first_bound) / gap;
}

} // namespace zero_half
