#include "sample_struct.hpp"

#include <string>

namespace zktarn::host_conformance {

namespace {

using host::array_handle;

struct int32_with_neighbour {
    std::int32_t value;
    std::int32_t neighbour = -1;
};

constexpr std::int64_t first_element = 1;

std::int64_t length(std::string_view text) {
    return static_cast<std::int64_t>(text.size());
}

/// A text, followed by characters beyond its length.
std::string with_trailing_characters(std::string_view text) {
    return std::string(text) + "#?";
}

} // namespace

array_handle make_struct(std::int64_t ndims, std::initializer_list<std::string_view> slots) {
    const std::int64_t extents[] = {1, 1};
    const int32_with_neighbour nfields{static_cast<std::int32_t>(slots.size())};
    std::string names;
    for (const std::string_view slot : slots) {
        names += slot;
    }
    return host::qvcreatestructarray800_(ndims, extents, nfields.value,
                                         with_trailing_characters(names).data(),
                                         length(*slots.begin()));
}

array_handle make_text(std::string_view text) {
    return host::qvcreatestring800_(with_trailing_characters(text).data(), length(text));
}

array_handle make_matrix(std::int64_t rows, std::int64_t columns) {
    const int32_with_neighbour is_real{0};
    return host::qvcreatedoublematrix800_(rows, columns, is_real.value);
}

std::int32_t field_number(const array_handle& structure, std::string_view name) {
    return host::qvgetfieldnumber800_(structure, with_trailing_characters(name).data(),
                                      length(name));
}

void set_field(const array_handle& structure, std::string_view name, const array_handle& value) {
    host::qvsetfield800_(structure, first_element, with_trailing_characters(name).data(), value,
                         length(name));
}

void set_field(const array_handle& structure, std::int32_t number, const array_handle& value) {
    const int32_with_neighbour field{number};
    host::qvsetfieldbynumber800_(structure, first_element, field.value, value);
}

array_handle make_sample_struct() {
    const array_handle made = make_struct(1, {"phase     ", "value     "});
    const array_handle column = make_matrix(3, 1);
    host::data_address data = column == 0 ? nullptr : host::qvgetpr800_(column);
    if (made == 0 || data == nullptr) {
        return 0;
    }
    const double elements[] = {1.0, 2.0, 3.0};
    const std::int64_t count = 3;
    host::qvcopyreal8toptr800_(elements, data, count);

    set_field(made, "phase", make_text("first"));
    set_field(made, 2, make_text("second"));
    set_field(made, "phase", make_text("conformance "));
    const double value = 2.5;
    set_field(made, 2, host::qvcreatedoublescalar800_(value));
    const std::string_view name = "column";
    set_field(made, host::qvaddfield800_(made, name.data(), length(name)), column);
    return made;
}

} // namespace zktarn::host_conformance
