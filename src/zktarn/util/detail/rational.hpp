#pragma once

namespace zktarn::util::detail {

/// A fraction, or none.
struct fraction {
    bool found = false;
    double num = 0.0;
    double den = 0.0;
};

/// `get_rational_rep` for arguments that are passed on in registers.
fraction rational_rep(double x, double eps, double max_den) noexcept;

} // namespace zktarn::util::detail
