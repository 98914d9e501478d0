#include "input/readers.hpp"

#include <algorithm>
#include <cctype>
#include <cstring>
#include <iterator>
#include <memory>
#include <set>
#include <sstream>
#include <vector>

#include <CoinFileIO.hpp>
#include <CoinMessageHandler.hpp>
#include <CoinMpsIO.hpp>

#include "input/error.hpp"

namespace zero_half {

namespace {

/// The contents of a file that CoinMpsIO ignores.
struct extras {
    /// Why the file is not supported, in which case what was read differs from the file.
    std::string refusal;
    /// Whether a section OBJSENSE or `(MAX)` in the NAME line asks for the maximum.
    bool is_maximised = false;
};

/// Passes a file to CoinMpsIO line by line and omits what CoinMpsIO misreads: comments longer than
/// its buffer, tabs, and sections that do not belong to a mixed-integer program. A line whose
/// omission changes the program is reported as a refusal.
class line_filter : public CoinFileInput {
public:
    line_filter(CoinFileInput* file, reading_poll& poll, extras& found)
        : CoinFileInput(file->getFileName()), file_(file), poll_(poll), found_(found) {}
    int read(void* buffer, int size) override { return file_->read(buffer, size); }
    char* gets(char* buffer, int size) override;

private:
    char* next_line(char* buffer, int size);
    void read_name_line(char* line);
    bool is_left_out(const char* line);
    bool is_unsupported(const std::vector<std::string>& words);
    void refuse(const std::string& reason);
    void skip_rest(char* buffer, int size);

    std::unique_ptr<CoinFileInput> file_;
    reading_poll& poll_;
    extras& found_;
    std::string section_;
    bool is_first_ = true;
    /// The first line of a file without a NAME line, which is passed on after a made-up NAME line.
    std::string postponed_;
};

/// Removes a byte order mark, and makes up a NAME line where a file has none: CoinMpsIO would use
/// uninitialised counts.
char* line_filter::next_line(char* buffer, int size) {
    if (!postponed_.empty()) {
        std::strcpy(buffer, postponed_.c_str());
        postponed_.clear();
        return buffer;
    }
    char* const line = file_->gets(buffer, size);
    if (line == nullptr) {
        return nullptr;
    }
    constexpr const char* byte_order_mark = "\xEF\xBB\xBF";
    if (is_first_ && std::strncmp(line, byte_order_mark, 3) == 0) {
        std::memmove(line, line + 3, std::strlen(line + 3) + 1);
    }
    is_first_ = false;
    if (section_.empty() && std::strncmp(line, "ROWS", 4) == 0) {
        postponed_ = line;
        std::strcpy(line, "NAME\n");
    }
    return line;
}

/// `NAME name (MAX)` maximises; the word is removed.
void line_filter::read_name_line(char* line) {
    for (const char* word : {"(MAX)", "(max)", "(MIN)", "(min)"}) {
        if (char* const place = std::strstr(line, word); place != nullptr) {
            found_.is_maximised = std::toupper(static_cast<unsigned char>(word[2])) == 'A';
            std::memset(place, ' ', std::strlen(word));
        }
    }
}

char* line_filter::gets(char* buffer, int size) {
    char* const line = poll_.step() ? nullptr : next_line(buffer, size);
    if (line == nullptr) {
        return nullptr;
    }
    if (section_.empty() && std::strncmp(line, "NAME", 4) == 0) {
        read_name_line(line);
    }
    std::replace(line, line + std::strlen(line), '\t', ' ');
    if (is_left_out(line)) {
        skip_rest(buffer, size);
        // A NAME line that is left out leaves its keyword.
        std::strcpy(line, std::strncmp(line, "NAME", 4) == 0 ? "NAME\n" : "*\n");
    }
    return line;
}

/// Reads on to the end of a line that is longer than the buffer.
void line_filter::skip_rest(char* buffer, int size) {
    while (std::strchr(buffer, '\n') == nullptr && file_->gets(buffer, size) != nullptr) {
    }
}

void line_filter::refuse(const std::string& reason) {
    if (found_.refusal.empty()) {
        found_.refusal = reason;
    }
}

bool line_filter::is_left_out(const char* line) {
    if (*line == '*') {
        return true;
    }
    std::string text(line);
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
    std::istringstream stream(text);
    const std::vector<std::string> words{std::istream_iterator<std::string>(stream), {}};
    if (!words.empty() && std::isspace(static_cast<unsigned char>(*line)) == 0) {
        section_ = words[0];
    }
    return is_unsupported(words) || section_ == "OBJSENSE";
}

/// Whether CoinMpsIO would misread the line or end the process over it.
bool line_filter::is_unsupported(const std::vector<std::string>& words) {
    static const std::set<std::string> not_linear = {
        "SOS", "QUADOBJ", "QMATRIX", "QSECTION", "QCMATRIX", "CSECTION", "INDICATORS"};
    static const std::set<std::string> senses = {"MAX", "MAXIMIZE", "MAXIMISE",
                                                 "MIN", "MINIMIZE", "MINIMISE"};
    constexpr std::size_t longest = 150;
    const auto has = [&](const std::string& word) {
        return std::find(words.begin(), words.end(), word) != words.end();
    };
    if (section_ == "OBJSENSE" && !words.empty() && words.back() != section_) {
        found_.is_maximised = words.back().starts_with("MAX");
        if (senses.count(words.back()) == 0) {
            refuse("the sense of the objective is neither MAX nor MIN");
        }
    }
    if (not_linear.count(section_) != 0 || has("'SOSORG'") || has("'SOSEND'")) {
        refuse("sets, cones, quadratic and logical parts are not supported, but there is " +
               (not_linear.count(section_) != 0 ? "a section " + section_ : "a set"));
        return true;
    }
    if (section_ == "BOUNDS" && !words.empty() && words[0] == "SC") {
        refuse("semi-continuous columns are not supported, but there is one");
        return true;
    }
    if (std::any_of(words.begin(), words.end(),
                    [](const std::string& word) { return word.size() > longest; })) {
        refuse("there is a name of more than 150 characters");
        return true;
    }
    return false;
}

/// Keeps the first complaint of CoinMpsIO and prints nothing.
class complaint_keeper : public CoinMessageHandler {
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

/// Reads a file as fixed or as free MPS, as the caller chooses. CoinMpsIO itself reads every file
/// as fixed MPS unless its NAME line has the word FREE.
class mps_reader : public CoinMpsIO {
public:
    /// Returns the number of errors, or a negative number when the file cannot be opened. Each
    /// line is a step of the poll; after it stopped, the file seems to end.
    int read(const std::string& file, bool is_free, reading_poll& poll, extras& found);
};

int mps_reader::read(const std::string& file, bool is_free, reading_poll& poll, extras& found) {
    CoinFileInput* input = nullptr;
    if (dealWithFileName(file.c_str(), "", input) < 0) {
        return -1;
    }
    // The base class deletes the card reader, and that deletes the filter.
    cardReader_ = new CoinMpsCardReader(new line_filter(input, poll, found), this);
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

model converted(const CoinMpsIO& reader, const std::string& file, bool is_maximised) {
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

} // namespace

std::string printable(std::string text) {
    std::replace_if(
        text.begin(), text.end(), [](unsigned char c) { return std::isprint(c) == 0; }, '?');
    return text;
}

model read_mps(const std::string& source, const std::string& file, reading_poll& poll) {
    // CoinMpsIO's infinity marks bounds that a file leaves out; no file contains this number.
    constexpr double not_given = 1.2345678987654321e300;
    std::string complaint;
    int least_errors = 0;
    for (const bool is_free : {false, true}) {
        complaint_keeper complaints;
        mps_reader reader;
        reader.passInMessageHandler(&complaints);
        reader.setInfinity(not_given);
        extras found;
        const int errors = reader.read(source, is_free, poll, found);
        if (poll.is_stopped()) {
            break;
        }
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

} // namespace zero_half
