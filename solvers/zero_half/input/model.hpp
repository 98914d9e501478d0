#pragma once

#include <stdexcept>
#include <string>
#include <vector>

#include <CoinPackedMatrix.hpp>

/// Mixed-integer programs as they come from a file.

namespace zero_half {

/// What is wrong with a file or a program, in one sentence for its user.
class trouble : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// minimise objective * x + constant, row_lower <= rows * x <= row_upper, lower <= x <= upper, some
/// columns integer, and then with integer bounds. A bound beyond +-1e30 is none.
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

inline constexpr double no_bound = 1e30;

/// Reads an MPS file, fixed or free, plain or compressed. Throws `trouble` when there is none in
/// it, or one that has no integer column.
model read_model(const std::string& file);

} // namespace zero_half
