#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <type_traits>
#include <utility>
#include <variant>
#include <vector>

/// Arrays of the stand-in host, and functions of its language.

namespace zktarn::standin {

enum class array_kind { structure, real_matrix, real_scalar, text };

/// An array of the host as it was when it was looked at, with everything that it owns. It can be
/// kept: it is a copy.
///
/// What is asked of an array that is of another kind, or of a field that is not there, is a fault
/// (`wrong_kind`, `out_of_range`), and the answer is then 0.0, no numbers, no text, no fields.
class array_value {
public:
    array_kind kind = array_kind::real_matrix;
    std::int64_t rows = 0;
    std::int64_t columns = 0;

    /// The number in a real array that has just one.
    [[nodiscard]] double scalar() const;
    /// The numbers of a real array, column by column.
    [[nodiscard]] const std::vector<double>& reals() const&;
    [[nodiscard]] std::vector<double> reals() && { return std::as_const(*this).reals(); }
    /// The characters of a text, trailing blanks included.
    [[nodiscard]] const std::string& text() const&;
    [[nodiscard]] std::string text() && { return std::as_const(*this).text(); }
    /// The names of the fields of a struct, in order.
    [[nodiscard]] std::vector<std::string> field_names() const;
    /// Whether a struct has a field of that name.
    [[nodiscard]] bool has_field(const std::string& name) const;
    /// The value of a field of a 1-by-1 struct; an empty real array for a field that was not set.
    [[nodiscard]] const array_value& field(const std::string& name) const&;
    [[nodiscard]] array_value field(const std::string& name) && {
        return std::as_const(*this).field(name);
    }

private:
    friend class array_table;

    std::vector<double> reals_;
    std::string text_;
    std::vector<std::pair<std::string, array_value>> fields_;
};

/// A live array, by its handle. An unknown handle is a fault, and the answer an empty real array.
[[nodiscard]] array_value inspect(std::int64_t handle);

/// What a function of the host's language returns: a real scalar, a real column (an empty one is
/// allowed) or a text.
class reply {
public:
    using content = std::variant<double, std::vector<double>, std::string>;

    /// Any number, and a truth as 1 or 0.
    template <class Number>
    reply(Number scalar) requires std::is_arithmetic_v<Number>
        : content_(static_cast<double>(scalar)) {}
    reply(std::vector<double> column) : content_(std::move(column)) {}
    reply(std::string text) : content_(std::move(text)) {}
    reply(const char* text) : content_(std::string(text)) {}

    [[nodiscard]] const content& contents() const { return content_; }

private:
    content content_;
};

/// A function of the host's language, written in C++: one input, one output. It runs on the thread
/// that calls it, with no lock of the stand-in held. One that throws is a fault, and its call
/// fails.
using host_function = std::function<reply(const array_value& input)>;

/// Registers a function under a name and returns the one that had it before, if any. An empty one
/// takes the name out. A bridge calls "tarnCallback".
host_function set_function(const std::string& name, host_function function);

} // namespace zktarn::standin
