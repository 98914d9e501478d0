#include "run/result.hpp"

#include <algorithm>
#include <cmath>

namespace zero_half {

namespace {

/// Differences up to this are rounding errors of the simplex method.
double tolerance_at(double optimum) {
    return 1e-6 * (1.0 + std::fabs(optimum));
}

} // namespace

bool run_result::is_optimum_wrong() const {
    const double sign = is_maximised ? -1.0 : 1.0;
    return optimum && (reason == ending::no_integer_point ||
                       (bound && sign * (*bound - *optimum) > tolerance_at(*optimum)));
}

std::optional<double> run_result::gap_closed(std::optional<double> reached) const {
    if (!optimum || !first_bound || !reached || is_optimum_wrong()) {
        return std::nullopt;
    }
    const double gap = std::fabs(*optimum - *first_bound);
    const double negligible = 1e-9 * (1.0 + std::fabs(*optimum));
    return gap <= negligible ? 100.0
                             : std::min(100.0, 100.0 * std::fabs(*reached - *first_bound) / gap);
}

} // namespace zero_half
