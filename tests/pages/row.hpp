#pragma once

#include <cstdint>
#include <cstdio>
#include <span>

#include "zktarn/util/util.hpp"

/// Shared by the programs of docs/numerics.md: scaling and printing of rows and fractions.

namespace zktarn::docs {

struct scaling {
    bool found;
    double scalar;
};

/// Scales a row to integers.
inline scaling integral_scalar(std::span<const double> row, double eps, double max_den,
                               double max_scalar) {
    flag found = 0;
    double scalar = 0.0;
    const auto supply = [row](const std::int32_t& index, double& value, flag& marked,
                              flag& selected) {
        value = row[static_cast<std::size_t>(index - 1)];
        marked = 0;
        selected = 1;
    };
    util::find_scalar_integral(static_cast<std::int32_t>(row.size()), supply, eps, max_den,
                               max_scalar, found, scalar);
    return {found != 0, scalar};
}

inline void print_row(std::span<const double> row, double factor = 1.0) {
    for (std::size_t i = 0; i < row.size(); ++i) {
        const double value = row[i] * factor;
        std::printf("%s%.6g x%d",
                    i == 0        ? ""
                    : value < 0.0 ? " - "
                                  : " + ",
                    i == 0 || value >= 0.0 ? value : -value, static_cast<int>(i) + 1);
    }
}

/// Prints the fraction that represents x, or `none`.
inline void print_fraction(double x, double eps, double max_den) {
    flag found = 0;
    double num = 0.0;
    double den = 0.0;
    util::get_rational_rep(x, eps, max_den, found, num, den);
    std::printf("%-9.6g  eps %-6g  denominator at most %-8g  ", x, eps, max_den);
    if (found != 0) {
        std::printf("%g/%g\n", num, den);
    } else {
        std::printf("none\n");
    }
}

} // namespace zktarn::docs
