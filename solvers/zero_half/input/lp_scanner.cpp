#include "input/lp_scanner.hpp"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <limits>
#include <system_error>
#include <utility>

namespace zero_half {

namespace {

/// The words that begin a section, in small letters. The first one that matches counts.
constexpr std::pair<std::string_view, section> keywords[] = {
    {"minimize", section::minimise},
    {"minimise", section::minimise},
    {"minimum", section::minimise},
    {"min", section::minimise},
    {"maximize", section::maximise},
    {"maximise", section::maximise},
    {"maximum", section::maximise},
    {"max", section::maximise},
    {"subject to", section::rows},
    {"such that", section::rows},
    {"s.t.", section::rows},
    {"st.", section::rows},
    {"st", section::rows},
    {"bounds", section::bounds},
    {"bound", section::bounds},
    {"general constraints", section::unsupported},
    {"general constraint", section::unsupported},
    {"gencons", section::unsupported},
    {"generals", section::integers},
    {"general", section::integers},
    {"gens", section::integers},
    {"gen", section::integers},
    {"integers", section::integers},
    {"integer", section::integers},
    {"ints", section::integers},
    {"int", section::integers},
    {"binaries", section::binaries},
    {"binary", section::binaries},
    {"bins", section::binaries},
    {"bin", section::binaries},
    {"semi-continuous", section::unsupported},
    {"semicontinuous", section::unsupported},
    {"semi-integer", section::unsupported},
    {"semis", section::unsupported},
    {"semi", section::unsupported},
    {"sos1", section::unsupported},
    {"sos2", section::unsupported},
    {"sos", section::unsupported},
    {"lazy constraints", section::unsupported},
    {"user cuts", section::unsupported},
    {"pwlobj", section::unsupported},
    {"multi-objectives", section::unsupported},
    {"scenario", section::unsupported},
    {"end", section::end},
};

bool is_blank(char c) {
    return std::isspace(static_cast<unsigned char>(c)) != 0;
}

bool is_digit(char c) {
    return c >= '0' && c <= '9';
}

char small(char c) {
    return static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
}

/// Characters that end a name. A bracket inside a name is part of it, as in x[1].
bool ends_name(char c) {
    return is_blank(c) || std::string_view("+-*^<>=:\\").find(c) != std::string_view::npos;
}

} // namespace

bool is_relation(token::kind what) {
    return what == token::kind::lower || what == token::kind::upper || what == token::kind::equal;
}

bool is_word(const token& each, std::string_view word) {
    return each.what == token::kind::name &&
           std::equal(each.text.begin(), each.text.end(), word.begin(), word.end(),
                      [](char a, char b) { return small(a) == b; });
}

bool is_infinity(const token& each) {
    return is_word(each, "inf") || is_word(each, "infinity");
}

/// Skips blanks, line ends and comments.
void lp_scanner::skip_blanks() {
    for (bool is_comment = false; at_ < text_.size(); ++at_) {
        const char c = text_[at_];
        if (c == '\n') {
            ++line_;
            is_line_start_ = true;
            is_comment = false;
        } else if (c == '\\') {
            is_comment = true;
        } else if (!is_comment && !is_blank(c)) {
            return;
        }
    }
}

/// A keyword of two words may have any blanks between them. A word before a colon is a name.
bool lp_scanner::read_keyword() {
    for (const auto& [word, opened] : keywords) {
        std::size_t end = at_;
        bool is_equal = true;
        for (const char c : word) {
            const bool is_at_blank =
                end < text_.size() && (text_[end] == ' ' || text_[end] == '\t');
            if (c == ' ' && is_at_blank) {
                end = std::min(text_.find_first_not_of(" \t", end), text_.size());
            } else {
                is_equal = is_equal && end < text_.size() && small(text_[end]) == c;
                ++end;
            }
        }
        if (!is_equal || (end < text_.size() && !is_blank(text_[end]) && text_[end] != '\\')) {
            continue;
        }
        const std::size_t after = text_.find_first_not_of(" \t", end);
        if (after == std::string_view::npos || text_[after] != ':') {
            next_ = {token::kind::keyword, text_.substr(at_, end - at_), 0.0, opened};
            at_ = end;
            return true;
        }
    }
    return false;
}

/// A number without its sign. An `e` is part of it only if digits follow: 2ex is read as 2 and ex.
void lp_scanner::read_number() {
    double value = 0.0;
    const char* const first = text_.data() + at_;
    const auto [end, fault] = std::from_chars(first, text_.data() + text_.size(), value);
    const auto size = static_cast<std::size_t>(end - first);
    if (fault == std::errc::result_out_of_range) {
        // Too small a number counts as 0, too large a one as infinite.
        const std::size_t sign = text_.substr(at_, size).find_first_of("eE");
        const bool is_small = sign != std::string_view::npos && text_[at_ + sign + 1] == '-';
        value = is_small ? 0.0 : std::numeric_limits<double>::infinity();
    }
    next_ = {fault == std::errc::invalid_argument ? token::kind::other : token::kind::number,
             text_.substr(at_, std::max<std::size_t>(size, 1)), value};
    at_ += next_.text.size();
}

/// One of < <= =< > >= => =.
void lp_scanner::read_relation() {
    std::size_t end = at_ + 1;
    if (end < text_.size() && text_[at_] != text_[end] &&
        std::string_view("<>=").find(text_[end]) != std::string_view::npos) {
        ++end;
    }
    const std::string_view sign = text_.substr(at_, end - at_);
    const bool has_less = sign.find('<') != std::string_view::npos;
    const bool has_greater = sign.find('>') != std::string_view::npos;
    next_ = {has_less && has_greater ? token::kind::other
             : has_less              ? token::kind::lower
             : has_greater           ? token::kind::upper
                                     : token::kind::equal,
             sign};
    at_ = end;
}

void lp_scanner::advance() {
    skip_blanks();
    if (at_ == text_.size()) {
        next_ = {token::kind::end, "the end of the file"};
        return;
    }
    const bool may_be_keyword = std::exchange(is_line_start_, false);
    if (may_be_keyword && read_keyword()) {
        return;
    }
    const char c = text_[at_];
    if (is_digit(c) || c == '.') {
        read_number();
    } else if (c == '<' || c == '>' || c == '=') {
        read_relation();
    } else if (c == '+' || c == '-' || c == ':' || c == '*' || c == '^' || c == '[') {
        const bool is_arrow = text_.substr(at_, 2) == "->";
        next_ = {is_arrow   ? token::kind::other
                 : c == '+' ? token::kind::plus
                 : c == '-' ? token::kind::minus
                 : c == ':' ? token::kind::colon
                            : token::kind::other,
                 text_.substr(at_, is_arrow ? 2 : 1)};
        at_ += next_.text.size();
    } else {
        const std::size_t first = at_;
        while (at_ < text_.size() && !ends_name(text_[at_])) {
            ++at_;
        }
        next_ = {token::kind::name, text_.substr(first, at_ - first)};
    }
}

} // namespace zero_half
