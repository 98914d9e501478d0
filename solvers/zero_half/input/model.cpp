#include "input/model.hpp"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <set>
#include <sstream>

#include <CoinFileIO.hpp>
#include <CoinMessageHandler.hpp>
#include <CoinMpsIO.hpp>

#include "cuts/rounding.hpp"

namespace zero_half {

namespace {

std::string printable(std::string text) {
    std::replace_if(
        text.begin(), text.end(), [](unsigned char c) { return std::isprint(c) == 0; }, '?');
    return text;
}

/// Keeps what the reader complains about first, and prints nothing.
class listener : public CoinMessageHandler {
public:
    int print() override {
        constexpr int first_complaint = 3000;
        if (first_.empty() && currentMessage().externalNumber() >= first_complaint) {
            first_ = printable(messageBuffer());
        }
        return 0;
    }
    const std::string& first() const { return first_; }

private:
    std::string first_;
};

/// A file without what the reader would stumble over or read without a word: comments of any
/// length, tabs, and what is no part of a mixed-integer program. What of that changes the program
/// is told.
class line_filter : public CoinFileInput {
public:
    line_filter(CoinFileInput* from, std::string& refusal)
        : CoinFileInput(from->getFileName()), from_(from), refusal_(refusal) {}
    int read(void* buffer, int size) override { return from_->read(buffer, size); }
    char* gets(char* buffer, int size) override;

private:
    bool is_left_out(const char* line);
    bool is_harmful(const std::vector<std::string>& words);
    void refuse(const std::string& why);
    void skip_rest(char* buffer, int size);

    std::unique_ptr<CoinFileInput> from_;
    std::string& refusal_;
    std::string section_;
};

char* line_filter::gets(char* buffer, int size) {
    char* const line = from_->gets(buffer, size);
    if (line == nullptr) {
        return nullptr;
    }
    std::replace(line, line + std::strlen(line), '\t', ' ');
    if (is_left_out(line)) {
        skip_rest(buffer, size);
        // Without a line NAME the reader counts what it has not set.
        std::strcpy(line, std::strncmp(line, "NAME", 4) == 0 ? "NAME\n" : "*\n");
    }
    return line;
}

/// The end of a line that was longer than the buffer.
void line_filter::skip_rest(char* buffer, int size) {
    while (std::strchr(buffer, '\n') == nullptr && from_->gets(buffer, size) != nullptr) {
    }
}

void line_filter::refuse(const std::string& why) {
    if (refusal_.empty()) {
        refusal_ = why;
    }
}

bool line_filter::is_left_out(const char* line) {
    if (*line == '*') {
        return true;
    }
    std::string text(line);
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
    std::istringstream in(text);
    const std::vector<std::string> words{std::istream_iterator<std::string>(in), {}};
    if (!words.empty() && std::isspace(static_cast<unsigned char>(*line)) == 0) {
        section_ = words[0];
    }
    return is_harmful(words) || section_ == "OBJSENSE";
}

/// Whether the reader may not see a line: it would change the program, or end the process.
bool line_filter::is_harmful(const std::vector<std::string>& words) {
    static const std::set<std::string> not_linear = {
        "SOS", "QUADOBJ", "QMATRIX", "QSECTION", "QCMATRIX", "CSECTION", "INDICATORS"};
    constexpr std::size_t longest = 150;
    const auto is = [&](const std::string& word) {
        return std::find(words.begin(), words.end(), word) != words.end();
    };
    if (section_ == "OBJSENSE" && (is("MAX") || is("MAXIMIZE") || is("MAXIMISE"))) {
        refuse("this maximises, and only minimisation is read; turn the signs of the objective "
               "around");
    }
    if (not_linear.count(section_) != 0 || is("'SOSORG'") || is("'SOSEND'")) {
        refuse("sets, cones, quadratic and logical parts are not read, but there is " +
               (not_linear.count(section_) != 0 ? "a section " + section_ : "a set"));
        return true;
    }
    if (section_ == "BOUNDS" && !words.empty() && words[0] == "SC") {
        refuse("semi-continuous columns are not read, but there is one");
        return true;
    }
    if (std::any_of(words.begin(), words.end(),
                    [](const std::string& each) { return each.size() > longest; })) {
        refuse("there is a name of more than 150 characters");
        return true;
    }
    return false;
}

/// Reads every file as a fixed, or as a free one. By itself the base class takes a file for a fixed
/// one unless it says FREE.
class mps_reader : public CoinMpsIO {
public:
    /// In `refusal`, why the program is not what the file says, if it is not.
    int read(const std::string& file, bool is_free, std::string& refusal) {
        CoinFileInput* input = nullptr;
        if (dealWithFileName(file.c_str(), "", input) < 0) {
            return -1;
        }
        // The base class deletes it.
        cardReader_ = new CoinMpsCardReader(new line_filter(input, refusal), this);
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
            of.lower[j] = ceiling_of(of.lower[j], 0.0);
        }
        if (of.upper[j] < no_bound) {
            of.upper[j] = floor_of(of.upper[j], 0.0);
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

/// A name that stands twice, or nothing. The reader makes two columns of one that is interrupted.
std::string repeated(std::vector<std::string> names) {
    std::sort(names.begin(), names.end());
    const auto place = std::adjacent_find(names.begin(), names.end());
    return place == names.end() ? "" : *place;
}

model checked(model read) {
    for (const auto* names : {&read.row_names, &read.column_names}) {
        if (const std::string name = repeated(*names); !name.empty()) {
            throw trouble(read.file + ": the name " + printable(name) + " stands twice");
        }
    }
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
    // The reader's sign for what a file does not say, so no number that a file would.
    constexpr double not_given = 1.2345678987654321e300;
    std::string complaint;
    int least_errors = 0;
    for (const bool is_free : {false, true}) {
        listener heard;
        mps_reader reader;
        reader.passInMessageHandler(&heard);
        reader.setInfinity(not_given);
        std::string refusal;
        const int errors = reader.read(file, is_free, refusal);
        if (!refusal.empty()) {
            throw trouble(file + ": " + refusal);
        }
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
