#include "input/readers.hpp"

#include <algorithm>
#include <cctype>
#include <optional>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

#include "input/error.hpp"
#include "input/lp_scanner.hpp"

namespace zero_half {

namespace {

bool is_control(char c) {
    return std::iscntrl(static_cast<unsigned char>(c)) != 0;
}

/// A sum of columns and a constant.
struct linear_sum {
    std::vector<int> columns;
    std::vector<double> values;
    double constant = 0.0;
    bool has_constant = false;
};

struct two_sides {
    double lower = -no_bound;
    double upper = no_bound;
};

void restrict_to(two_sides& sides, token::kind relation, double value) {
    if (relation != token::kind::upper) {
        sides.upper = value;
    }
    if (relation != token::kind::lower) {
        sides.lower = value;
    }
}

class lp_reader {
public:
    lp_reader(std::string_view text, const std::string& file, reading_poll& poll)
        : tokens_(text), file_(file), poll_(poll) {}

    model read();

private:
    using kind = token::kind;

    [[noreturn]] void refuse_line(int line, const std::string& what) const {
        throw error(file_ + ": this is not an LP file that can be read; line " +
                    std::to_string(line) + ": " + what);
    }
    /// Refuses the next token.
    [[noreturn]] void refuse(const std::string& what) const {
        refuse_line(tokens_.next_line(), what);
    }
    /// Refuses what ends with the last token.
    [[noreturn]] void refuse_last(const std::string& what) const {
        refuse_line(tokens_.last_line(), what);
    }
    [[noreturn]] void refuse_next() const;
    bool is_at(kind what) const { return tokens_.next().what == what; }
    bool is_section_over() const { return is_at(kind::keyword) || is_at(kind::end); }

    std::optional<std::string> read_label();
    int read_column();
    double read_signs();
    double read_value();
    void read_term(linear_sum& sum, bool is_first);
    linear_sum read_sum();
    void read_objective(bool is_maximised);
    void read_row();
    void read_bound();
    void read_section(section opened);
    void finish();

    lp_scanner tokens_;
    const std::string& file_;
    reading_poll& poll_;
    model made_;
    std::unordered_map<std::string, int> column_numbers_;
    std::vector<char> is_binary_;
    std::vector<CoinBigIndex> starts_ = {0};
    std::vector<int> columns_;
    std::vector<double> values_;
    /// For each column the last row in which it occurs, counted from 1.
    std::vector<int> last_row_;
    bool has_end_ = false;
};

void lp_reader::refuse_next() const {
    const std::string text = printable(std::string(tokens_.next().text.substr(0, 150)));
    if (tokens_.next().opened == section::unsupported) {
        refuse("a section " + text + " is not supported");
    }
    if (is_at(kind::other)) {
        refuse("quadratic and logical parts are not supported, but there is " + text);
    }
    refuse("unexpected " + text);
}

/// The name before a colon.
std::optional<std::string> lp_reader::read_label() {
    if (!is_at(kind::name)) {
        return std::nullopt;
    }
    const lp_scanner before = tokens_;
    std::string label(tokens_.take().text);
    if (!is_at(kind::colon)) {
        tokens_ = before;
        return std::nullopt;
    }
    tokens_.take();
    return label;
}

/// The number of a column. A name that is new adds one.
int lp_reader::read_column() {
    constexpr std::size_t longest = 150;
    if (!is_at(kind::name)) {
        refuse_next();
    }
    if (tokens_.next().text.size() > longest) {
        refuse("there is a name of more than 150 characters");
    }
    if (std::any_of(tokens_.next().text.begin(), tokens_.next().text.end(), is_control)) {
        refuse("there is a control character in a name");
    }
    std::string name(tokens_.take().text);
    const auto [place, is_new] =
        column_numbers_.try_emplace(name, static_cast<int>(column_numbers_.size()));
    if (is_new) {
        made_.column_names.push_back(std::move(name));
        made_.objective.push_back(0.0);
        made_.lower.push_back(0.0);
        made_.upper.push_back(no_bound);
        made_.is_integer.push_back(0);
        is_binary_.push_back(0);
        last_row_.push_back(-1);
    }
    return place->second;
}

/// 1 or -1.
double lp_reader::read_signs() {
    double sign = 1.0;
    for (; is_at(kind::plus) || is_at(kind::minus); tokens_.take()) {
        sign = is_at(kind::minus) ? -sign : sign;
    }
    return sign;
}

/// A number or infinity with its signs.
double lp_reader::read_value() {
    const double sign = read_signs();
    if (is_infinity(tokens_.next())) {
        tokens_.take();
        return sign * no_bound;
    }
    if (!is_at(kind::number)) {
        refuse_next();
    }
    return sign * tokens_.take().value;
}

/// Signs, a number and a column, of which the number or the column may be missing.
void lp_reader::read_term(linear_sum& sum, bool is_first) {
    if (!is_first && !is_at(kind::plus) && !is_at(kind::minus)) {
        refuse_next();
    }
    double value = read_signs();
    const bool has_number = is_at(kind::number) || is_infinity(tokens_.next());
    if (has_number) {
        value *= read_value();
    }
    if (is_at(kind::name)) {
        sum.columns.push_back(read_column());
        sum.values.push_back(value);
    } else if (has_number) {
        sum.constant += value;
        if (std::exchange(sum.has_constant, true)) {
            refuse_last("there are two constants in one sum");
        }
    } else {
        refuse_next();
    }
}

linear_sum lp_reader::read_sum() {
    linear_sum sum;
    bool is_first = true;
    while (!is_section_over() && !is_relation(tokens_.next().what)) {
        read_term(sum, is_first);
        is_first = false;
    }
    return sum;
}

void lp_reader::read_objective(bool is_maximised) {
    made_.is_maximised = is_maximised;
    read_label();
    const linear_sum sum = read_sum();
    for (std::size_t k = 0; k < sum.columns.size(); ++k) {
        const auto j = static_cast<std::size_t>(sum.columns[k]);
        if (std::exchange(last_row_[j], 0) == 0) {
            refuse_last("the column " + printable(made_.column_names[j]) +
                        " occurs twice in the objective");
        }
        made_.objective[j] = made_.in_sense_of_file(sum.values[k]);
    }
    made_.constant = made_.in_sense_of_file(sum.constant);
}

token::kind mirrored(token::kind relation) {
    return relation == token::kind::lower   ? token::kind::upper
           : relation == token::kind::upper ? token::kind::lower
                                            : relation;
}

/// sum <= number, number <= sum, or number <= sum <= number.
void lp_reader::read_row() {
    std::optional<std::string> label = read_label();
    two_sides sides;
    linear_sum sum = read_sum();
    std::optional<kind> first;
    if (sum.columns.empty() && sum.has_constant && is_relation(tokens_.next().what)) {
        first = mirrored(tokens_.take().what);
        restrict_to(sides, *first, sum.constant);
        // After the relation the sum ends at a second relation, or before a new row, which begins
        // without a sign.
        sum = {};
        do {
            read_term(sum, sum.columns.empty());
        } while (is_at(kind::plus) || is_at(kind::minus));
    }
    const bool has_second = is_relation(tokens_.next().what);
    // With a name, a row may be empty.
    if (sum.has_constant || (sum.columns.empty() && (!label || first))) {
        refuse_last("a row needs columns on one side and a number on the other");
    }
    if (!first && !has_second) {
        refuse_next();
    }
    if (has_second) {
        const kind relation = tokens_.take().what;
        if (first && (relation == kind::equal || relation == *first || *first == kind::equal)) {
            refuse_last("the two sides of a row contradict each other");
        }
        restrict_to(sides, relation, read_value());
    }
    const int row = static_cast<int>(made_.row_lower.size()) + 1;
    for (const int j : sum.columns) {
        if (std::exchange(last_row_[static_cast<std::size_t>(j)], row) == row) {
            refuse_last("the column " + printable(made_.column_names[static_cast<std::size_t>(j)]) +
                        " occurs twice in a row");
        }
    }
    columns_.insert(columns_.end(), sum.columns.begin(), sum.columns.end());
    values_.insert(values_.end(), sum.values.begin(), sum.values.end());
    starts_.push_back(static_cast<CoinBigIndex>(columns_.size()));
    made_.row_lower.push_back(sides.lower);
    made_.row_upper.push_back(sides.upper);
    made_.row_names.push_back(label.value_or(""));
}

/// column free, column <= number, number <= column, or number <= column <= number.
void lp_reader::read_bound() {
    two_sides sides;
    std::optional<kind> first;
    if (!is_at(kind::name) || is_infinity(tokens_.next())) {
        const double value = read_value();
        if (!is_relation(tokens_.next().what)) {
            refuse_next();
        }
        first = mirrored(tokens_.take().what);
        restrict_to(sides, *first, value);
    }
    const auto j = static_cast<std::size_t>(read_column());
    if (!first && is_word(tokens_.next(), "free")) {
        tokens_.take();
        made_.lower[j] = -no_bound;
        made_.upper[j] = no_bound;
        return;
    }
    const bool has_second = is_relation(tokens_.next().what);
    if (!first && !has_second) {
        refuse_next();
    }
    std::optional<kind> second;
    if (has_second) {
        second = tokens_.take().what;
        if (first && (*second == kind::equal || *second == *first || *first == kind::equal)) {
            refuse_last("the two bounds of a column contradict each other");
        }
        restrict_to(sides, *second, read_value());
    }
    for (const std::optional<kind>& relation : {first, second}) {
        if (relation && *relation != kind::upper) {
            made_.upper[j] = sides.upper;
        }
        if (relation && *relation != kind::lower) {
            made_.lower[j] = sides.lower;
        }
    }
}

void lp_reader::read_section(section opened) {
    while (!is_section_over() && !poll_.step()) {
        switch (opened) {
        case section::rows:
            read_row();
            break;
        case section::bounds:
            read_bound();
            break;
        case section::integers:
        case section::binaries: {
            const auto j = static_cast<std::size_t>(read_column());
            made_.is_integer[j] = 1;
            if (opened == section::binaries) {
                is_binary_[j] = 1;
            }
            break;
        }
        default:
            refuse_next();
        }
    }
}

/// Gives rows without a name one that no row of the file has.
void name_rows(std::vector<std::string>& names) {
    const std::unordered_set<std::string> given(names.begin(), names.end());
    int number = 0;
    for (std::string& name : names) {
        while (name.empty()) {
            std::string candidate = std::to_string(++number).insert(0, 1, 'c');
            if (!given.contains(candidate)) {
                name = std::move(candidate);
            }
        }
    }
}

/// A binary column keeps a tighter bound: files give fixed columns that way.
void lp_reader::finish() {
    for (std::vector<double>* const sides :
         {&made_.row_lower, &made_.row_upper, &made_.lower, &made_.upper}) {
        for (double& side : *sides) {
            side = std::clamp(side, -no_bound, no_bound);
        }
    }
    for (std::size_t j = 0; j < is_binary_.size(); ++j) {
        if (is_binary_[j] != 0) {
            made_.lower[j] = std::max(made_.lower[j], 0.0);
            made_.upper[j] = std::min(made_.upper[j], 1.0);
        }
    }
    name_rows(made_.row_names);
    const int m = made_.row_count();
    made_.rows = CoinPackedMatrix(false, made_.column_count(), m, starts_.back(), values_.data(),
                                  columns_.data(), starts_.data(), nullptr);
    made_.rows.setDimensions(m, made_.column_count());
}

model lp_reader::read() {
    made_.file = file_;
    const section sense = tokens_.next().opened;
    if (sense != section::minimise && sense != section::maximise) {
        refuse("it does not begin with Minimize or Maximize");
    }
    tokens_.take();
    read_objective(sense == section::maximise);
    while (!has_end_ && !poll_.is_stopped()) {
        if (is_at(kind::end)) {
            refuse("its last word is not End");
        }
        const section opened = tokens_.next().opened;
        if (opened == section::none || opened == section::unsupported ||
            opened == section::minimise || opened == section::maximise) {
            refuse_next();
        }
        tokens_.take();
        has_end_ = opened == section::end;
        if (has_end_ && !is_at(kind::end)) {
            refuse("there is text behind End");
        }
        read_section(opened);
    }
    finish();
    return std::move(made_);
}

} // namespace

bool begins_as_lp(const std::string& text) {
    const section opened = lp_scanner(text).next().opened;
    return opened == section::minimise || opened == section::maximise;
}

model read_lp(const std::string& text, const std::string& file, reading_poll& poll) {
    return lp_reader(text, file, poll).read();
}

} // namespace zero_half
