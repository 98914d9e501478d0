#include "zktarn/host/libqv.hpp"

#include <algorithm>
#include <new>
#include <string>
#include <utility>
#include <vector>

#include "array_table.hpp"
#include "attempt.hpp"
#include "wording.hpp"

namespace zktarn::host {

using standin::array_kind;
using standin::array_table;
using standin::attempt;
using standin::fault_kind;
using standin::host_call;
using standin::logged_text;
using standin::operation;
using standin::stored_array;

namespace {

array_table& arrays() {
    return array_table::instance();
}

[[noreturn]] void refuse(operation caller, const char* reason) {
    standin::refuse(fault_kind::bad_request, caller, reason);
}

std::string string_of(operation caller, const char* text, std::int64_t length) {
    return std::string(standin::text_argument(caller, text, length));
}

struct shape {
    std::int64_t rows;
    std::int64_t columns;
    std::size_t count;
};

/// The shape of an array with the given extents; an extent that is not given is 1.
shape shape_of(operation caller, std::int64_t ndims, const std::int64_t* extents) {
    if (ndims < 1 || ndims > 2) {
        refuse(caller, "an array has one or two dimensions");
    }
    const std::int64_t rows = extents[0];
    const std::int64_t columns = ndims == 2 ? extents[1] : 1;
    if (rows < 0 || columns < 0) {
        refuse(caller, "an extent is negative");
    }
    std::int64_t count = 0;
    if (__builtin_mul_overflow(rows, columns, &count)) {
        throw std::bad_alloc();
    }
    return {rows, columns, static_cast<std::size_t>(count)};
}

/// The arguments of a call that makes a struct array. Extents of more than two dimensions are not
/// logged, because there is no such array.
host_call struct_array_call(std::int64_t ndims, const std::int64_t* extents, std::int32_t nfields,
                            const char* field_names, std::int64_t slot_width) {
    host_call call{operation::qvcreatestructarray800_, {ndims}};
    for (std::int64_t i = 0; i < std::min<std::int64_t>(ndims, 2); ++i) {
        call.integers.push_back(extents[i]);
    }
    call.integers.push_back(nfields);
    call.integers.push_back(slot_width);
    call.texts = {logged_text(field_names, nfields * slot_width)};
    return call;
}

/// The `count` reals at an address; none if it is null or the count below 1.
std::vector<double> logged_reals(const double* reals, std::int64_t count) {
    return reals == nullptr || count < 1 ? std::vector<double>()
                                         : std::vector<double>(reals, reals + count);
}

} // namespace

extern "C" {

array_handle qvcreatestructarray800_(const std::int64_t& ndims, const std::int64_t* extents,
                                     const std::int32_t& nfields, const char* field_names,
                                     std::int64_t slot_width) noexcept {
    constexpr operation what = operation::qvcreatestructarray800_;
    return attempt(
        what, array_handle{0},
        [&] { return struct_array_call(ndims, extents, nfields, field_names, slot_width); },
        [&] {
            const auto [rows, columns, count] = shape_of(what, ndims, extents);
            if (nfields < 0) {
                refuse(what, "the number of fields is negative");
            }
            stored_array made{array_kind::structure, what, rows, columns};
            for (std::int32_t i = 0; i < nfields; ++i) {
                made.append_field(string_of(what, field_names + i * slot_width, slot_width), count);
            }
            return arrays().add(std::move(made));
        });
}

array_handle qvcreatestring800_(const char* text, std::int64_t text_length) noexcept {
    constexpr operation what = operation::qvcreatestring800_;
    return attempt(
        what, array_handle{0},
        [&] {
            return host_call{what, {}, {logged_text(text, text_length)}};
        },
        [&] {
            stored_array made{array_kind::text, what, 1, text_length};
            made.text = string_of(what, text, text_length);
            return arrays().add(std::move(made));
        });
}

array_handle qvcreatedoublescalar800_(const double& value) noexcept {
    constexpr operation what = operation::qvcreatedoublescalar800_;
    return attempt(
        what, array_handle{0},
        [&] {
            return host_call{what, {}, {}, {value}};
        },
        [&] { return arrays().add_real(what, 1, 1, {value}, array_kind::real_scalar); });
}

array_handle qvcreatedoublematrix800_(const std::int64_t& rows, const std::int64_t& columns,
                                      const std::int32_t& complexity) noexcept {
    constexpr operation what = operation::qvcreatedoublematrix800_;
    return attempt(
        what, array_handle{0},
        [&] {
            return host_call{what, {rows, columns, complexity}};
        },
        [&] {
            if (complexity != 0) {
                refuse(what, "the stand-in has real matrices only");
            }
            const std::int64_t extents[] = {rows, columns};
            return arrays().add_real(what, rows, columns,
                                     std::vector<double>(shape_of(what, 2, extents).count),
                                     array_kind::real_matrix);
        });
}

void qvsetfield800_(const array_handle& structure, const std::int64_t& index,
                    const char* field_name, const array_handle& value,
                    std::int64_t field_name_length) noexcept {
    constexpr operation what = operation::qvsetfield800_;
    attempt(
        what,
        [&] {
            return host_call{
                what, {structure, index, value}, {logged_text(field_name, field_name_length)}};
        },
        [&] {
            arrays().set_field(what, structure, index,
                               string_of(what, field_name, field_name_length), value);
        });
}

void qvsetfieldbynumber800_(const array_handle& structure, const std::int64_t& index,
                            const std::int32_t& number, const array_handle& value) noexcept {
    constexpr operation what = operation::qvsetfieldbynumber800_;
    attempt(
        what,
        [&] {
            return host_call{what, {structure, index, number, value}};
        },
        [&] { arrays().set_field(what, structure, index, number, value); });
}

std::int32_t qvgetfieldnumber800_(const array_handle& structure, const char* field_name,
                                  std::int64_t field_name_length) noexcept {
    constexpr operation what = operation::qvgetfieldnumber800_;
    return attempt(
        what, std::int32_t{0},
        [&] {
            return host_call{what, {structure}, {logged_text(field_name, field_name_length)}};
        },
        [&] {
            return arrays().field_number(what, structure,
                                         string_of(what, field_name, field_name_length));
        });
}

std::int32_t qvaddfield800_(const array_handle& structure, const char* field_name,
                            std::int64_t field_name_length) noexcept {
    constexpr operation what = operation::qvaddfield800_;
    return attempt(
        what, std::int32_t{0},
        [&] {
            return host_call{what, {structure}, {logged_text(field_name, field_name_length)}};
        },
        [&] {
            return arrays().add_field(what, structure,
                                      string_of(what, field_name, field_name_length));
        });
}

data_address qvgetpr800_(const array_handle& array) noexcept {
    constexpr operation what = operation::qvgetpr800_;
    return attempt(
        what, data_address{nullptr},
        [&] {
            return host_call{what, {array}};
        },
        [&] { return arrays().data(what, array); });
}

void qvcopyptrtoreal8800_(const data_address& source, double* destination,
                          const std::int64_t& count) noexcept {
    constexpr operation what = operation::qvcopyptrtoreal8800_;
    attempt(
        what, standin::nothing(),
        [&] {
            return host_call{what, {count}, {}, {}, {source}};
        },
        standin::written_reals(destination, count),
        [&] {
            arrays().copy_out(source, destination, count);
            return standin::nothing();
        });
}

void qvcopyreal8toptr800_(const double* source, const data_address& destination,
                          const std::int64_t& count) noexcept {
    constexpr operation what = operation::qvcopyreal8toptr800_;
    attempt(
        what,
        [&] {
            return host_call{what, {count}, {}, logged_reals(source, count), {destination}};
        },
        [&] { arrays().copy_in(source, destination, count); });
}

void qvdestroyarray800_(const array_handle& array) noexcept {
    constexpr operation what = operation::qvdestroyarray800_;
    attempt(
        what,
        [&] {
            return host_call{what, {array}};
        },
        [&] { arrays().destroy(array); });
}
}

} // namespace zktarn::host
