#include "run/run.hpp"

#include <algorithm>
#include <cmath>
#include <cstdio>

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

std::string run_result::fault() const {
    if (reason == ending::numeric_error) {
        return "the relaxation with the cuts of the last round could not be decided: the result of "
               "the simplex method could not be proved; the bound is that of the round before";
    }
    if (!is_optimum_wrong()) {
        return "";
    }
    char sentence[160];
    if (reason == ending::no_integer_point) {
        std::snprintf(sentence, sizeof sentence,
                      "the given optimum %.12g is wrong: there is no integer point", *optimum);
    } else {
        std::snprintf(sentence, sizeof sentence,
                      "the given optimum %.12g is wrong: no point has a value %s the bound %.12g",
                      *optimum, is_maximised ? "above" : "below", *bound);
    }
    return sentence;
}

} // namespace zero_half
