#include "input/read_model.hpp"

#include <algorithm>
#include <cmath>
#include <string>
#include <vector>

#include "cuts/integers.hpp"
#include "input/error.hpp"
#include "input/readers.hpp"

namespace zero_half {

namespace {

/// Beyond this the tolerances of the simplex method have no meaning, and Clp's own checks end the
/// process.
constexpr double largest_number = 1e15;

/// Rounds the bounds of integer columns inwards to integers.
void round_bounds(model& program) {
    for (std::size_t j = 0; j < program.lower.size(); ++j) {
        if (program.is_integer[j] == 0) {
            continue;
        }
        if (program.lower[j] > -no_bound) {
            program.lower[j] = ceiling_of(program.lower[j], 0.0);
        }
        if (program.upper[j] < no_bound) {
            program.upper[j] = floor_of(program.upper[j], 0.0);
        }
    }
}

void check_bounds(const model& program) {
    for (std::size_t j = 0; j < program.lower.size(); ++j) {
        if (program.lower[j] > program.upper[j]) {
            throw error(program.file + ": there is no " +
                        (program.is_integer[j] != 0 ? "integer" : "number") +
                        " between the bounds of column " + printable(program.column_names[j]));
        }
    }
    for (std::size_t i = 0; i < program.row_lower.size(); ++i) {
        if (program.row_lower[i] > program.row_upper[i]) {
            throw error(program.file + ": the left-hand side of row " +
                        printable(program.row_names[i]) + " is above its right-hand side");
        }
    }
}

/// A name that occurs twice, or an empty text. The MPS reader makes two columns of a column whose
/// lines are not adjacent.
std::string repeated(std::vector<std::string> names) {
    std::sort(names.begin(), names.end());
    const auto place = std::adjacent_find(names.begin(), names.end());
    return place == names.end() ? "" : *place;
}

bool are_moderate(const double* values, std::size_t n) {
    return std::all_of(values, values + n,
                       [](double value) { return std::fabs(value) <= largest_number; });
}

/// Whether each bound is moderate or infinite on its own side.
bool are_bounds(const std::vector<double>& lower, const std::vector<double>& upper) {
    return std::all_of(lower.begin(), lower.end(),
                       [](double bound) {
                           return bound <= -no_bound || std::fabs(bound) <= largest_number;
                       }) &&
           std::all_of(upper.begin(), upper.end(), [](double bound) {
               return bound >= no_bound || std::fabs(bound) <= largest_number;
           });
}

/// Throws `error` for repeated names, numbers that are too large, or no integer column.
void check_entries(const model& program) {
    for (const auto* names : {&program.row_names, &program.column_names}) {
        if (const std::string name = repeated(*names); !name.empty()) {
            throw error(program.file + ": the name " + printable(name) + " occurs twice");
        }
    }
    const auto elements = static_cast<std::size_t>(program.rows.getNumElements());
    if (!are_moderate(program.rows.getElements(), elements) ||
        !are_moderate(program.objective.data(), program.objective.size()) ||
        !are_moderate(&program.constant, 1)) {
        throw error(program.file + ": a coefficient is beyond 1e15, too large to compute with");
    }
    if (!are_bounds(program.lower, program.upper) ||
        !are_bounds(program.row_lower, program.row_upper)) {
        throw error(program.file + ": a bound or a right-hand side is beyond 1e15, too large to "
                                   "compute with; leave it out if it means that there is none");
    }
    if (std::count(program.is_integer.begin(), program.is_integer.end(), 1) == 0) {
        throw error(program.file + ": no column is integer, so there is nothing to tighten");
    }
}

} // namespace

void complete(model& program) {
    check_entries(program);
    round_bounds(program);
    check_bounds(program);
}

} // namespace zero_half
