#pragma once

#include <string>
#include <vector>

#include <CoinPackedMatrix.hpp>

#include "cuts/mixed_integer_rows.hpp"

namespace zero_half {

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
    /// Whether the file maximises: then the objective here is the negated one of the file.
    bool is_maximised = false;

    /// A value of the objective in the sense of the file.
    double in_sense_of_file(double value) const { return is_maximised ? 0.0 - value : value; }

    int row_count() const { return static_cast<int>(row_lower.size()); }
    int column_count() const { return static_cast<int>(lower.size()); }
    /// What separation reads of the model. `rows` has to be ordered by rows, without gaps.
    mixed_integer_rows rows_and_bounds() const {
        const auto entries = static_cast<std::size_t>(rows.getNumElements());
        return {{rows.getVectorStarts(), row_lower.size() + 1},
                {rows.getIndices(), entries},
                {rows.getElements(), entries},
                row_lower,
                row_upper,
                lower,
                upper,
                is_integer};
    }
};

} // namespace zero_half
