#include "input/read_model.hpp"

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <sstream>

#include <fcntl.h>
#include <unistd.h>

#include <CoinError.hpp>
#include <CoinLpIO.hpp>

#include "input/complete_model.hpp"
#include "input/error.hpp"
#include "input/memory.hpp"
#include "input/mps_reader.hpp"

namespace zero_half {

namespace {

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

/// The last word of an LP file in small letters, without what a backslash makes a comment.
std::string last_word(const std::string& source) {
    std::ifstream stream(source, std::ios::binary);
    std::string last;
    for (std::string line; std::getline(stream, line);) {
        std::istringstream words(line.substr(0, line.find('\\')));
        for (std::string word; words >> word;) {
            last = word;
        }
    }
    std::transform(last.begin(), last.end(), last.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return last;
}

/// CoinLpIO itself turns a maximisation into a minimisation.
model read_lp(const std::string& source, const std::string& file) {
    // At the end of a file that lacks this word, CoinLpIO reads on for ever or crashes.
    if (last_word(source) != "end") {
        throw error(file + ": this is not an LP file, because its last word is not End");
    }
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

/// Checks the memory before reading, and before the relaxation is built.
model read_source(const std::string& source, const std::string& file) {
    std::error_code ignored;
    check_memory(file, memory_to_read(std::filesystem::file_size(source, ignored)),
                 available_memory());
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
    complete(program);
    check_memory(file,
                 memory_to_solve(program.row_lower.size(), program.lower.size(),
                                 static_cast<std::uint64_t>(program.rows.getNumElements())),
                 available_memory());
    return program;
}

} // namespace zero_half
