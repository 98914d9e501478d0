#include "model.hpp"

#include <algorithm>
#include <array>
#include <cctype>
#include <cmath>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string_view>

#include <CoinFileIO.hpp>
#include <CoinMessageHandler.hpp>
#include <CoinMpsIO.hpp>

#include "zktarn/zktarn_util.hpp"

namespace zero_half {

namespace {

/// Keeps what the reader complains about first, and prints nothing.
class listener : public CoinMessageHandler {
public:
    int print() override {
        constexpr int first_complaint = 3000;
        if (first_.empty() && currentMessage().externalNumber() >= first_complaint) {
            first_ = messageBuffer();
            std::replace_if(
                first_.begin(), first_.end(), [](unsigned char c) { return std::isprint(c) == 0; },
                '?');
        }
        return 0;
    }
    const std::string& first() const { return first_; }

private:
    std::string first_;
};

/// A file whose section OBJSENSE reads as comments: the reader takes every program for a
/// minimisation, whatever is said there, and prints what it finds.
class sense_filter : public CoinFileInput {
public:
    explicit sense_filter(CoinFileInput* from) : CoinFileInput(from->getFileName()), from_(from) {}
    int read(void* buffer, int size) override { return from_->read(buffer, size); }
    char* gets(char* buffer, int size) override {
        char* const line = from_->gets(buffer, size);
        if (line != nullptr && is_about_sense(line)) {
            std::strcpy(line, "*\n");
        }
        return line;
    }
    bool is_maximised() const { return is_maximised_; }

private:
    bool is_about_sense(std::string line) {
        std::transform(line.begin(), line.end(), line.begin(),
                       [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
        if (std::isspace(static_cast<unsigned char>(line[0])) == 0 && line[0] != '*') {
            is_in_section_ = line.rfind("OBJSENSE", 0) == 0;
        }
        is_maximised_ = is_maximised_ || (is_in_section_ && line.find("MAX") != std::string::npos);
        return is_in_section_;
    }

    std::unique_ptr<CoinFileInput> from_;
    bool is_in_section_ = false;
    bool is_maximised_ = false;
};

/// Reads every file as a fixed, or as a free one. By itself the base class takes a file for a fixed
/// one unless it says FREE.
class mps_reader : public CoinMpsIO {
public:
    int read(const std::string& file, bool is_free) {
        CoinFileInput* input = nullptr;
        if (dealWithFileName(file.c_str(), "", input) < 0) {
            return -1;
        }
        // The base class deletes it.
        cardReader_ = new CoinMpsCardReader(new sense_filter(input), this);
        cardReader_->setFreeFormat(is_free);
        int count = 0;
        CoinSet** sets = nullptr;
        const int errors = readMps(count, sets);
        for (int i = 0; i < count; ++i) {
            delete sets[i];
        }
        delete[] sets;
        return errors;
    }
};

template <class T>
std::vector<T> copied(const T* from, int n) {
    return std::vector<T>(from, from + n);
}

void look_at_file(const std::string& file) {
    std::error_code ignored;
    if (!std::filesystem::exists(file, ignored)) {
        throw trouble(file + ": there is no such file");
    }
    if (!std::filesystem::is_regular_file(file, ignored)) {
        throw trouble(file + ": this is a folder or a device, not a file");
    }
    if (!std::ifstream(file)) {
        throw trouble(file + ": the file cannot be read");
    }
    if (std::filesystem::file_size(file, ignored) == 0) {
        throw trouble(file + ": the file is empty");
    }
}

void refuse_maximisation(const std::string& file) {
    sense_filter input(CoinFileInput::create(file));
    std::array<char, 1024> line = {};
    while (input.gets(line.data(), static_cast<int>(line.size())) != nullptr &&
           std::string_view(line.data()).substr(0, 7) != "COLUMNS") {
    }
    if (input.is_maximised()) {
        throw trouble(file + ": this maximises, and only minimisation is read; turn the signs of "
                             "the objective around");
    }
}

/// Beyond it the simplex method's tolerances mean nothing, and its own checks end the process.
constexpr double greatest = 1e15;

bool are_moderate(const double* values, std::size_t n) {
    return std::all_of(values, values + n, [](double each) { return std::fabs(each) <= greatest; });
}

/// Whether every bound is moderate, or none at all.
bool are_bounds(const std::vector<double>& lower, const std::vector<double>& upper) {
    return std::all_of(
               lower.begin(), lower.end(),
               [](double each) { return each <= -no_bound || std::fabs(each) <= greatest; }) &&
           std::all_of(upper.begin(), upper.end(),
                       [](double each) { return each >= no_bound || std::fabs(each) <= greatest; });
}

/// All bounds from -1e30 to 1e30, whatever the reader takes for infinite.
std::vector<double> bounds_of(const double* from, int n) {
    std::vector<double> made = copied(from, n);
    for (double& each : made) {
        each = std::clamp(each, -no_bound, no_bound);
    }
    return made;
}

/// The bounds of an integer column, rounded to what an integer can be.
void round_bounds(model& of) {
    for (std::size_t j = 0; j < of.lower.size(); ++j) {
        if (of.is_integer[j] == 0) {
            continue;
        }
        if (of.lower[j] > -no_bound) {
            of.lower[j] = zktarn::util::epsilon_ceiling(of.lower[j], 0.0);
        }
        if (of.upper[j] < no_bound) {
            of.upper[j] = zktarn::util::epsilon_floor(of.upper[j], 0.0);
        }
    }
}

model taken_from(const CoinMpsIO& reader, const std::string& file) {
    const int m = reader.getNumRows();
    const int n = reader.getNumCols();
    model made;
    made.file = file;
    made.name = reader.getProblemName();
    made.rows = *reader.getMatrixByRow();
    made.row_lower = bounds_of(reader.getRowLower(), m);
    made.row_upper = bounds_of(reader.getRowUpper(), m);
    made.lower = bounds_of(reader.getColLower(), n);
    made.upper = bounds_of(reader.getColUpper(), n);
    made.objective = copied(reader.getObjCoefficients(), n);
    made.constant = -reader.objectiveOffset();
    for (int j = 0; j < n; ++j) {
        made.is_integer.push_back(reader.isInteger(j) ? 1 : 0);
        made.column_names.emplace_back(reader.columnName(j));
    }
    for (int i = 0; i < m; ++i) {
        made.row_names.emplace_back(reader.rowName(i));
    }
    round_bounds(made);
    return made;
}

bool is_read(const CoinMpsIO& reader, int errors) {
    return errors == 0 && reader.getNumCols() > 0;
}

model checked(model read) {
    const auto elements = static_cast<std::size_t>(read.rows.getNumElements());
    if (!are_moderate(read.rows.getElements(), elements) ||
        !are_moderate(read.objective.data(), read.objective.size()) ||
        !are_moderate(&read.constant, 1)) {
        throw trouble(read.file + ": a coefficient is beyond 1e15, too large to compute with");
    }
    if (!are_bounds(read.lower, read.upper) || !are_bounds(read.row_lower, read.row_upper)) {
        throw trouble(read.file + ": a bound or a right-hand side is beyond 1e15, too large to "
                                  "compute with; leave it out where it stands for none");
    }
    if (std::count(read.is_integer.begin(), read.is_integer.end(), 1) == 0) {
        throw trouble(read.file + ": no column is integer, so there is nothing to tighten");
    }
    return read;
}

} // namespace

model read_model(const std::string& file) {
    look_at_file(file);
    refuse_maximisation(file);
    // The reader's sign for what a file does not say, so no number that a file would.
    constexpr double not_given = 1.2345678987654321e300;
    std::string complaint;
    int least_errors = 0;
    for (const bool is_free : {false, true}) {
        listener heard;
        mps_reader reader;
        reader.passInMessageHandler(&heard);
        reader.setInfinity(not_given);
        const int errors = reader.read(file, is_free);
        if (is_read(reader, errors)) {
            return checked(taken_from(reader, file));
        }
        // What went better is what the file was meant to be.
        if (!is_free || errors <= least_errors) {
            complaint = heard.first();
            least_errors = errors;
        }
    }
    throw trouble(file + ": this is no MPS file" +
                  (complaint.empty() ? "" : "; the reader says: " + complaint));
}

} // namespace zero_half
