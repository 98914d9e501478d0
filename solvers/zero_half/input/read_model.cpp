#include "input/read_model.hpp"

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <fstream>

#include "input/error.hpp"
#include "input/mps_reader.hpp"
#include "input/rounding.hpp"

namespace zero_half {

namespace {

/// Beyond this the tolerances of the simplex method have no meaning, and Clp's own checks end the
/// process.
constexpr double largest_number = 1e15;

void check_file(const std::string& file) {
    std::error_code ignored;
    if (!std::filesystem::exists(file, ignored)) {
        throw error(file + ": there is no such file");
    }
    if (!std::filesystem::is_regular_file(file, ignored)) {
        throw error(file + ": this is a folder or a device, not a file");
    }
    if (!std::ifstream(file)) {
        throw error(file + ": the file cannot be read");
    }
    if (std::filesystem::file_size(file, ignored) == 0) {
        throw error(file + ": the file is empty");
    }
}

template <class T>
std::vector<T> copied(const T* values, int n) {
    return std::vector<T>(values, values + n);
}

/// Clamps to +-no_bound, whatever the reader uses for infinity.
std::vector<double> clamped_bounds(const double* values, int n) {
    std::vector<double> bounds = copied(values, n);
    for (double& bound : bounds) {
        bound = std::clamp(bound, -no_bound, no_bound);
    }
    return bounds;
}

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

model converted(const CoinMpsIO& reader, const std::string& file) {
    const int m = reader.getNumRows();
    const int n = reader.getNumCols();
    model program;
    program.file = file;
    program.name = reader.getProblemName();
    program.rows = *reader.getMatrixByRow();
    program.row_lower = clamped_bounds(reader.getRowLower(), m);
    program.row_upper = clamped_bounds(reader.getRowUpper(), m);
    program.lower = clamped_bounds(reader.getColLower(), n);
    program.upper = clamped_bounds(reader.getColUpper(), n);
    program.objective = copied(reader.getObjCoefficients(), n);
    program.constant = -reader.objectiveOffset();
    for (int j = 0; j < n; ++j) {
        program.is_integer.push_back(reader.isInteger(j) ? 1 : 0);
        program.column_names.emplace_back(reader.columnName(j));
    }
    for (int i = 0; i < m; ++i) {
        program.row_names.emplace_back(reader.rowName(i));
    }
    round_bounds(program);
    return program;
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

void check(const model& program) {
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

model read_model(const std::string& file) {
    check_file(file);
    // CoinMpsIO's infinity marks bounds that a file leaves out; no file contains this number.
    constexpr double not_given = 1.2345678987654321e300;
    std::string complaint;
    int least_errors = 0;
    for (const bool is_free : {false, true}) {
        complaint_keeper complaints;
        mps_reader reader;
        reader.passInMessageHandler(&complaints);
        reader.setInfinity(not_given);
        std::string refusal;
        const int errors = reader.read(file, is_free, refusal);
        if (!refusal.empty()) {
            throw error(file + ": " + refusal);
        }
        if (errors == 0 && reader.getNumCols() > 0) {
            model program = converted(reader, file);
            check(program);
            return program;
        }
        // The format with fewer errors is the one that the file was written in.
        if (!is_free || errors <= least_errors) {
            complaint = complaints.first();
            least_errors = errors;
        }
    }
    throw error(file + ": this is not an MPS file" +
                (complaint.empty() ? "" : "; the reader says: " + complaint));
}

} // namespace zero_half
