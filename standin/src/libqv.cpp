#include "zktarn/host/libqv.hpp"

#include <new>
#include <string>
#include <utility>
#include <vector>

#include "array_table.hpp"
#include "attempt.hpp"

namespace zktarn::host {

using standin::array_kind;
using standin::array_table;
using standin::attempt;
using standin::fault_kind;
using standin::operation;
using standin::stored_array;

namespace {

array_table& arrays() {
    return array_table::instance();
}

[[noreturn]] void refuse(operation by, const char* why) {
    standin::refuse(fault_kind::bad_request, by, why);
}

std::string string_of(operation by, const char* text, std::int64_t length) {
    return std::string(standin::text_of(by, text, length));
}

struct shape {
    std::int64_t rows;
    std::int64_t columns;
    std::size_t count;
};

/// The shape of an array with the given extents; an extent that is not given is 1.
shape shape_of(operation by, std::int64_t ndims, const std::int64_t* extents) {
    if (ndims < 1 || ndims > 2) {
        refuse(by, "an array has one or two dimensions");
    }
    const std::int64_t rows = extents[0];
    const std::int64_t columns = ndims == 2 ? extents[1] : 1;
    if (rows < 0 || columns < 0) {
        refuse(by, "an extent is negative");
    }
    std::int64_t count = 0;
    if (__builtin_mul_overflow(rows, columns, &count)) {
        throw std::bad_alloc();
    }
    return {rows, columns, static_cast<std::size_t>(count)};
}

} // namespace

extern "C" {

array_handle qvcreatestructarray800_(const std::int64_t& ndims, const std::int64_t* extents,
                                     const std::int32_t& nfields, const char* field_names,
                                     std::int64_t slot_width) noexcept {
    constexpr operation by = operation::qvcreatestructarray800_;
    return attempt(by, array_handle{0}, [&] {
        const auto [rows, columns, count] = shape_of(by, ndims, extents);
        if (nfields < 0) {
            refuse(by, "the number of fields is negative");
        }
        stored_array made{array_kind::structure, by, rows, columns};
        for (std::int32_t i = 0; i < nfields; ++i) {
            made.append_field(string_of(by, field_names + i * slot_width, slot_width), count);
        }
        return arrays().add(std::move(made));
    });
}

array_handle qvcreatestring800_(const char* text, std::int64_t text_length) noexcept {
    constexpr operation by = operation::qvcreatestring800_;
    return attempt(by, array_handle{0}, [&] {
        stored_array made{array_kind::text, by, 1, text_length};
        made.text = string_of(by, text, text_length);
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
        return arrays().add_real(by, rows, columns,
                                 std::vector<double>(shape_of(by, 2, extents).count),
                                 array_kind::real_matrix);
    });
}

void qvsetfield800_(const array_handle& structure, const std::int64_t& index,
                    const char* field_name, const array_handle& value,
                    std::int64_t field_name_length) noexcept {
    constexpr operation by = operation::qvsetfield800_;
    attempt(by, [&] {
        arrays().set_field(by, structure, index, string_of(by, field_name, field_name_length),
                           value);
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
        return arrays().field_number(by, structure, string_of(by, field_name, field_name_length));
    });
}

std::int32_t qvaddfield800_(const array_handle& structure, const char* field_name,
                            std::int64_t field_name_length) noexcept {
    constexpr operation by = operation::qvaddfield800_;
    return attempt(by, std::int32_t{0}, [&] {
        return arrays().add_field(by, structure, string_of(by, field_name, field_name_length));
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
