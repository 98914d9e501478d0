#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "zktarn/host/libqv.hpp"
#include "zktarn/host/libqvx.hpp"
#include "zktarn_standin/control.hpp"

/// The host's array operations with arguments by value and texts as strings.

namespace zktarn::standin {

using host::array_handle;

/// An empty 1-by-1 struct, or one with other extents and with fields named by slots.
inline array_handle make_struct(const std::vector<std::int64_t>& extents = {1, 1},
                                std::int32_t nfields = 0, const std::string& slots = {},
                                std::int64_t slot_width = 0) {
    const auto ndims = static_cast<std::int64_t>(extents.size());
    return host::qvcreatestructarray800_(ndims, extents.data(), nfields, slots.data(), slot_width);
}

inline array_handle make_text(const std::string& text) {
    return host::qvcreatestring800_(text.data(), static_cast<std::int64_t>(text.size()));
}

inline array_handle make_scalar(double value) {
    return host::qvcreatedoublescalar800_(value);
}

inline array_handle make_matrix(std::int64_t rows, std::int64_t columns,
                                std::int32_t complexity = 0) {
    return host::qvcreatedoublematrix800_(rows, columns, complexity);
}

inline void set_field(array_handle structure, std::int64_t index, const std::string& name,
                      array_handle value) {
    host::qvsetfield800_(structure, index, name.data(), value,
                         static_cast<std::int64_t>(name.size()));
}

inline void set_field_number(array_handle structure, std::int64_t index, std::int32_t number,
                             array_handle value) {
    host::qvsetfieldbynumber800_(structure, index, number, value);
}

inline std::int32_t field_number(array_handle structure, const std::string& name) {
    return host::qvgetfieldnumber800_(structure, name.data(),
                                      static_cast<std::int64_t>(name.size()));
}

inline std::int32_t add_field(array_handle structure, const std::string& name) {
    return host::qvaddfield800_(structure, name.data(), static_cast<std::int64_t>(name.size()));
}

inline double* data_of(array_handle array) {
    return host::qvgetpr800_(array);
}

inline void destroy(array_handle array) {
    host::qvdestroyarray800_(array);
}

inline std::int32_t call_function(const std::string& name, array_handle input,
                                  array_handle& output) {
    return host::qvxcallquarn800_(1, &output, 1, &input, name.data(),
                                  static_cast<std::int64_t>(name.size()));
}

inline std::int32_t print_text(const std::string& text) {
    return host::qvxprintf800_(text.data(), static_cast<std::int64_t>(text.size()));
}

/// How the sentence of a fault names an array.
inline std::string described(array_handle array, const std::string& kind, operation made_by) {
    return "array " + std::to_string(array) + " (a " + kind + " made by " + name(made_by) + ")";
}

inline std::string the_struct(array_handle array) {
    return described(array, "struct", operation::qvcreatestructarray800_);
}

inline std::string the_text(array_handle array) {
    return described(array, "text", operation::qvcreatestring800_);
}

inline std::string the_scalar(array_handle array) {
    return described(array, "real scalar", operation::qvcreatedoublescalar800_);
}

inline std::string the_matrix(array_handle array) {
    return described(array, "real matrix", operation::qvcreatedoublematrix800_);
}

} // namespace zktarn::standin
