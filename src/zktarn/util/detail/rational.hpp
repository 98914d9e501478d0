#pragma once

namespace zktarn::util::detail {

/// A fraction, or none. Two reals, so that it is returned in registers.
struct fraction {
    double num = 0.0;
    /// Positive; 0.0 in place of a fraction.
    double den = 0.0;

    [[nodiscard]] bool found() const noexcept { return den != 0.0; }
};

/// `get_rational_rep` with arguments in registers.
fraction rational_rep(double x, double eps, double max_den) noexcept;

} // namespace zktarn::util::detail
