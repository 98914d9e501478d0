#include "input/read_model.hpp"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>

#include <fcntl.h>
#include <unistd.h>

#include <CoinError.hpp>
#include <CoinLpIO.hpp>

#include "input/error.hpp"
#include "input/mps_reader.hpp"
#include "input/rounding.hpp"

namespace zero_half {

namespace {

/// Beyond this the tolerances of the simplex method have no meaning, and Clp's own checks end the
/// process.
constexpr double largest_number = 1e15;

/// Deletes its file at the end.
class temporary_file {
public:
    /// A copy of the stream's content.
    explicit temporary_file(std::istream& stream) {
        const int descriptor = ::mkstemp(name_.data());
        if (descriptor < 0) {
            throw error("no temporary file can be written for the standard input");
        }
        ::close(descriptor);
        std::ofstream copy(name_, std::ios::binary);
        copy << stream.rdbuf();
    }
    ~temporary_file() { ::unlink(name_.c_str()); }
    temporary_file(const temporary_file&) = delete;
    temporary_file& operator=(const temporary_file&) = delete;

    const std::string& name() const { return name_; }

private:
    std::string name_ = (std::filesystem::temp_directory_path() / "zero_half_XXXXXX").string();
};

/// Discards what the readers of CoinUtils print to the standard output.
class silenced_output {
public:
    silenced_output() {
        std::fflush(stdout);
        saved_ = ::dup(STDOUT_FILENO);
        const int sink = ::open("/dev/null", O_WRONLY | O_CLOEXEC);
        if (saved_ >= 0 && sink >= 0) {
            ::dup2(sink, STDOUT_FILENO);
        }
        ::close(sink);
    }
    ~silenced_output() {
        std::fflush(stdout);
        if (saved_ >= 0) {
            ::dup2(saved_, STDOUT_FILENO);
            ::close(saved_);
        }
    }
    silenced_output(const silenced_output&) = delete;
    silenced_output& operator=(const silenced_output&) = delete;

private:
    int saved_ = -1;
};

bool ends_with(const std::string& text, const std::string& suffix) {
    return text.size() >= suffix.size() &&
           text.compare(text.size() - suffix.size(), suffix.size(), suffix) == 0;
}

void check_file(const std::string& file) {
    std::error_code ignored;
    if (!std::filesystem::exists(file, ignored)) {
        throw error(file + ": there is no such file");
    }
    if (!std::filesystem::is_regular_file(file, ignored)) {
        throw error(file + ": this is a folder or a device, not a file");
    }
    std::ifstream stream(file, std::ios::binary);
    if (!stream) {
        throw error(file + ": the file cannot be read");
    }
    if (std::filesystem::file_size(file, ignored) == 0) {
        throw error(file + ": the file is empty");
    }
    std::string start(6, ' ');
    stream.read(start.data(), 6);
    if (start == std::string("\xFD"
                             "7zXZ\0",
                             6)) {
        throw error(file + ": the file is compressed by xz, which is not supported; use gzip");
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

/// Both readers of CoinUtils have the same interface.
template <class Reader>
model converted(const Reader& reader, const std::string& file, bool is_maximised) {
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
    program.is_maximised = is_maximised;
    if (is_maximised) {
        program.constant = program.in_sense_of_file(program.constant);
        for (double& cost : program.objective) {
            cost = program.in_sense_of_file(cost);
        }
    }
    for (int j = 0; j < n; ++j) {
        program.is_integer.push_back(reader.isInteger(j) ? 1 : 0);
        program.column_names.emplace_back(reader.columnName(j));
    }
    for (int i = 0; i < m; ++i) {
        program.row_names.emplace_back(reader.rowName(i));
    }
    return program;
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

/// Tries fixed and free MPS.
model read_mps(const std::string& source, const std::string& file) {
    // CoinMpsIO's infinity marks bounds that a file leaves out; no file contains this number.
    constexpr double not_given = 1.2345678987654321e300;
    std::string complaint;
    int least_errors = 0;
    for (const bool is_free : {false, true}) {
        complaint_keeper complaints;
        mps_reader reader;
        reader.passInMessageHandler(&complaints);
        reader.setInfinity(not_given);
        mps_reader::extras found;
        const int errors = reader.read(source, is_free, found);
        if (!found.refusal.empty()) {
            throw error(file + ": " + found.refusal);
        }
        if (errors == 0 && reader.getNumCols() > 0) {
            return converted(reader, file, found.is_maximised);
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

/// CoinLpIO itself turns a maximisation into a minimisation.
model read_lp(const std::string& source, const std::string& file) {
    complaint_keeper complaints;
    CoinLpIO reader;
    reader.passInMessageHandler(&complaints);
    reader.setInfinity(no_bound);
    try {
        reader.readLp(source.c_str());
    } catch (const CoinError& found) { // does not derive from std::exception
        throw error(file +
                    ": this is not an LP file; the reader says: " + printable(found.message()));
    }
    model program = converted(reader, file, false);
    program.is_maximised = reader.wasMaximization();
    return program;
}

model read_source(const std::string& source, const std::string& file) {
    const silenced_output silence;
    return ends_with(file, ".lp") ? read_lp(source, file) : read_mps(source, file);
}

bool is_stream(const std::string& file) {
    std::error_code ignored;
    return file == "-" || std::filesystem::is_fifo(file, ignored);
}

/// The standard input and pipes are read once, so they are copied first.
model read_stream(const std::string& file) {
    std::ifstream pipe;
    if (file != "-") {
        pipe.open(file, std::ios::binary);
    }
    const temporary_file copy(file == "-" ? std::cin : pipe);
    std::error_code ignored;
    if (std::filesystem::file_size(copy.name(), ignored) == 0) {
        throw error(file + ": the input is empty");
    }
    return read_source(copy.name(), file);
}

} // namespace

model read_model(const std::string& file) {
    if (!is_stream(file)) {
        check_file(file);
    }
    model program = is_stream(file) ? read_stream(file) : read_source(file, file);
    check(program);
    round_bounds(program);
    check_bounds(program);
    return program;
}

} // namespace zero_half
