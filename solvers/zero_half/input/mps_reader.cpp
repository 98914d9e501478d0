#include "input/mps_reader.hpp"

#include <algorithm>
#include <cctype>
#include <cstring>
#include <iterator>
#include <memory>
#include <set>
#include <sstream>
#include <vector>

#include <CoinFileIO.hpp>

namespace zero_half {

namespace {

/// Passes a file to CoinMpsIO line by line and omits what CoinMpsIO misreads: comments longer than
/// its buffer, tabs, and sections that do not belong to a mixed-integer program. A line whose
/// omission changes the program is reported as a refusal.
class line_filter : public CoinFileInput {
public:
    line_filter(CoinFileInput* file, reading_poll& poll, mps_reader::extras& found)
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
    mps_reader::extras& found_;
    std::string section_;
    bool is_first_ = true;
    /// The first line of a file without a NAME line, which is read after a NAME line was made up.
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

} // namespace

std::string printable(std::string text) {
    std::replace_if(
        text.begin(), text.end(), [](unsigned char c) { return std::isprint(c) == 0; }, '?');
    return text;
}

int complaint_keeper::print() {
    constexpr int first_complaint = 3000;
    if (first_.empty() && currentMessage().externalNumber() >= first_complaint) {
        first_ = printable(messageBuffer());
    }
    return 0;
}

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

} // namespace zero_half
