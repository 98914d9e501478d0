#pragma once

#include <string>
#include <vector>

#include <CoinPackedMatrix.hpp>

namespace zero_half {

/// Bounds and sides of rows beyond +-no_bound are infinite.
inline constexpr double no_bound = 1e30;

/// A mixed-integer program:
///
///     minimise    objective * x + constant
///     subject to  row_lower <= rows * x <= row_upper
///                 lower <= x <= upper
///                 x[j] integer where is_integer[j]
///
/// Integer columns have integer bounds. Rows and columns are counted from 0.
struct model {
    std::string file;
    std::string name;
    CoinPackedMatrix rows;
    std::vector<double> row_lower;
    std::vector<double> row_upper;
    std::vector<double> lower;
    std::vector<double> upper;
    std::vector<double> objective;
    std::vector<char> is_integer;
    std::vector<std::string> row_names;
    std::vector<std::string> column_names;
    double constant = 0.0;

    int row_count() const { return static_cast<int>(row_lower.size()); }
    int column_count() const { return static_cast<int>(lower.size()); }
};

} // namespace zero_half
