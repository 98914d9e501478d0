#include "zktarn/host/libqv.hpp"

#include <utility>

#include "array_table.hpp"
#include "attempt.hpp"

namespace zktarn::host {

using standin::array_kind;
using standin::array_table;
using standin::attempt;
using standin::fault;
using standin::fault_kind;
using standin::operation;
using standin::stored_array;

namespace {

array_table& arrays() {
    return array_table::instance();
}

std::string text_of(operation by, const char* text, std::int64_t length) {
    if (length < 0) {
        throw fault{fault_kind::bad_request,
                    {},
                    std::string(name(by)) + ": the length of a text is " + std::to_string(length)};
    }
    return length == 0 ? std::string() : std::string(text, static_cast<std::size_t>(length));
}

[[noreturn]] void refuse(operation by, const char* why) {
    throw fault{fault_kind::bad_request, {}, std::string(name(by)) + ": " + why};
}

/// Rows and columns of an array with the given extents; extents that are not given are 1.
std::pair<std::int64_t, std::int64_t> shape_of(operation by, std::int64_t ndims,
                                               const std::int64_t* extents) {
    if (ndims < 1 || ndims > 2) {
        refuse(by, "an array has one or two dimensions");
    }
    const std::int64_t rows = extents[0];
    const std::int64_t columns = ndims == 2 ? extents[1] : 1;
    if (rows < 0 || columns < 0) {
        refuse(by, "an extent is negative");
    }
    return {rows, columns};
}

} // namespace

extern "C" {

array_handle qvcreatestructarray800_(const std::int64_t& ndims, const std::int64_t* extents,
                                     const std::int32_t& nfields, const char* field_names,
                                     std::int64_t slot_width) noexcept {
    constexpr operation by = operation::qvcreatestructarray800_;
    return attempt(by, array_handle{0}, [&] {
        const auto [rows, columns] = shape_of(by, ndims, extents);
        if (nfields < 0) {
            refuse(by, "the number of fields is negative");
        }
        const array_handle made =
            arrays().add(stored_array{array_kind::structure, by, rows, columns});
        for (std::int32_t i = 0; i < nfields; ++i) {
            arrays().add_field(by, made, text_of(by, field_names + i * slot_width, slot_width));
        }
        return made;
    });
}

array_handle qvcreatestring800_(const char* text, std::int64_t text_length) noexcept {
    constexpr operation by = operation::qvcreatestring800_;
    return attempt(by, array_handle{0}, [&] {
        stored_array made{array_kind::text, by, 1, text_length};
        made.text = text_of(by, text, text_length);
        return arrays().add(std::move(made));
    });
}

array_handle qvcreatedoublescalar800_(const double& value) noexcept {
    constexpr operation by = operation::qvcreatedoublescalar800_;
    return attempt(by, array_handle{0},
                   [&] { return arrays().add_real(by, 1, 1, {value}, array_kind::real_scalar); });
}

array_handle qvcreatedoublematrix800_(const std::int64_t& rows, const std::int64_t& columns,
                                      const std::int32_t& complexity) noexcept {
    constexpr operation by = operation::qvcreatedoublematrix800_;
    return attempt(by, array_handle{0}, [&] {
        if (complexity != 0) {
            refuse(by, "only real matrices are known here");
        }
        const std::int64_t extents[] = {rows, columns};
        shape_of(by, 2, extents);
        std::int64_t count = 0;
        if (__builtin_mul_overflow(rows, columns, &count)) {
            return array_handle{0};
        }
        return arrays().add_real(by, rows, columns,
                                 std::vector<double>(static_cast<std::size_t>(count)),
                                 array_kind::real_matrix);
    });
}

void qvsetfield800_(const array_handle& structure, const std::int64_t& index,
                    const char* field_name, const array_handle& value,
                    std::int64_t field_name_length) noexcept {
    constexpr operation by = operation::qvsetfield800_;
    attempt(by, [&] {
        arrays().set_field(by, structure, index, text_of(by, field_name, field_name_length), value);
    });
}

void qvsetfieldbynumber800_(const array_handle& structure, const std::int64_t& index,
                            const std::int32_t& number, const array_handle& value) noexcept {
    constexpr operation by = operation::qvsetfieldbynumber800_;
    attempt(by, [&] { arrays().set_field(by, structure, index, number, value); });
}

std::int32_t qvgetfieldnumber800_(const array_handle& structure, const char* field_name,
                                  std::int64_t field_name_length) noexcept {
    constexpr operation by = operation::qvgetfieldnumber800_;
    return attempt(by, std::int32_t{0}, [&] {
        return arrays().field_number(by, structure, text_of(by, field_name, field_name_length));
    });
}

std::int32_t qvaddfield800_(const array_handle& structure, const char* field_name,
                            std::int64_t field_name_length) noexcept {
    constexpr operation by = operation::qvaddfield800_;
    return attempt(by, std::int32_t{0}, [&] {
        return arrays().add_field(by, structure, text_of(by, field_name, field_name_length));
    });
}

data_address qvgetpr800_(const array_handle& array) noexcept {
    constexpr operation by = operation::qvgetpr800_;
    return attempt(by, data_address{nullptr}, [&] { return arrays().data(by, array); });
}

void qvcopyptrtoreal8800_(const data_address& from, double* to,
                          const std::int64_t& count) noexcept {
    attempt(operation::qvcopyptrtoreal8800_, [&] { arrays().copy_out(from, to, count); });
}

void qvcopyreal8toptr800_(const double* from, const data_address& to,
                          const std::int64_t& count) noexcept {
    attempt(operation::qvcopyreal8toptr800_, [&] { arrays().copy_in(from, to, count); });
}

void qvdestroyarray800_(const array_handle& array) noexcept {
    attempt(operation::qvdestroyarray800_, [&] { arrays().destroy(array); });
}
}

} // namespace zktarn::host
