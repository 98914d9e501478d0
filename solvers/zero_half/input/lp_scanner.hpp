#pragma once

#include <cstddef>
#include <string_view>

namespace zero_half {

/// The parts of an LP file that a keyword opens. `unsupported` stands for all that the reader
/// refuses.
enum class section { none, minimise, maximise, rows, bounds, integers, binaries, end, unsupported };

struct token {
    /// `lower` is a relation <=, `upper` is >=; `other` is a character that no model needs.
    enum class kind { number, name, plus, minus, lower, upper, equal, colon, other, keyword, end };
    kind what;
    std::string_view text;
    double value = 0.0;
    section opened = section::none;
};

bool is_relation(token::kind what);

/// Whether the token is this name. Case does not matter; `word` is in small letters.
bool is_word(const token& each, std::string_view word);

bool is_infinity(const token& each);

/// Splits the text of an LP file into tokens. A keyword stands at the beginning of a line.
class lp_scanner {
public:
    explicit lp_scanner(std::string_view text) : text_(text) { advance(); }

    const token& next() const { return next_; }
    token take() {
        const token taken = next_;
        last_line_ = line_;
        advance();
        return taken;
    }
    /// The lines of the next token and of the last one that was taken.
    int next_line() const { return line_; }
    int last_line() const { return last_line_; }

private:
    void advance();
    void skip_blanks();
    bool read_keyword();
    void read_number();
    void read_relation();

    std::string_view text_;
    std::size_t at_ = 0;
    bool is_line_start_ = true;
    int line_ = 1;
    int last_line_ = 1;
    token next_ = {token::kind::end, {}};
};

} // namespace zero_half
