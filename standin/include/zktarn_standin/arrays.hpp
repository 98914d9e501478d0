#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

/// Arrays of the stand-in host.

namespace zktarn::standin {

/// The kinds of host arrays.
enum class array_kind { structure, real_matrix, real_scalar, text };

/// A copy of a host array and of everything that it owns, made when the array was inspected.
///
/// Reading a value of another kind, or a field that does not exist, is a fault (`wrong_kind`,
/// `out_of_range`). The result is then 0.0, no numbers, an empty text or no fields.
class array_value {
public:
    /// What kind of array it is.
    array_kind kind = array_kind::real_matrix;
    /// The number of its rows; of a text 1.
    std::int64_t rows = 0;
    /// The number of its columns; of a text the number of characters.
    std::int64_t columns = 0;

    /// The number in a real array of one element.
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

/// A copy of the live array with that handle. An unknown handle is a fault; the result is then an
/// empty real array.
[[nodiscard]] array_value inspect(std::int64_t handle);

} // namespace zktarn::standin
