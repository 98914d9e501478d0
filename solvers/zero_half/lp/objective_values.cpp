#include "lp/objective_values.hpp"

#include <cmath>
#include <cstddef>
#include <optional>
#include <vector>

#include "cuts/exact_limits.hpp"
#include "cuts/rounding.hpp"
#include "zktarn/zktarn_util.hpp"

namespace zero_half {

namespace {

/// The costs that are not 0; nothing when a continuous column has one.
std::optional<std::vector<double>> integer_costs(const model& program) {
    std::vector<double> costs;
    for (std::size_t j = 0; j < program.objective.size(); ++j) {
        if (program.objective[j] != 0.0 && program.is_integer[j] == 0) {
            return std::nullopt;
        }
        if (program.objective[j] != 0.0) {
            costs.push_back(program.objective[j]);
        }
    }
    return costs;
}

} // namespace

objective_values::objective_values(const model& program) : constant_(program.constant) {
    constexpr double less_than_one = 0.5;
    const std::optional<std::vector<double>> costs = integer_costs(program);
    const std::optional<double> scale = costs ? integral_scale(*costs) : std::nullopt;
    if (!scale) {
        return;
    }
    double divisor = 0.0;
    for (const double cost : *costs) {
        const double whole = nearest_integer(cost * *scale);
        // The tolerance of the scale does not suffice: the quotient has to be the cost itself, up
        // to the rounding of its decimals to a double.
        if (whole / *scale != cost || std::fabs(whole) > largest_exact) {
            return;
        }
        divisor = zktarn::util::xgcd_r8(divisor, whole, less_than_one);
    }
    divisor_ = divisor;
    scale_ = *scale;
}

double objective_values::round_up(double bound) const {
    constexpr double tolerance = 1e-6;
    constexpr double relative_tolerance = 1e-9;
    constexpr double largest_error = 0.1;
    if (divisor_ == 0.0) {
        return bound;
    }
    const double steps = (bound - constant_) / step();
    const double error =
        tolerance + relative_tolerance * (std::fabs(bound) + std::fabs(constant_)) / step();
    if (!(error <= largest_error)) {
        return bound;
    }
    const double value = constant_ + std::ceil(steps - error) * divisor_ / scale_;
    return std::fmax(bound, value);
}

} // namespace zero_half
