#pragma once

#include <cstdint>
#include <initializer_list>
#include <string_view>

#include "zktarn/host/libqv.hpp"

/// Arrays for the checks. In memory, nonzero bytes follow each 32-bit argument, so a host that
/// wrongly reads 64 bits gets a wrong number and fails the check.

namespace zktarn::host_conformance {

/// A 1-by-1 struct with the field names in slots of equal width.
host::array_handle make_struct(std::int64_t ndims, std::initializer_list<std::string_view> slots);

host::array_handle make_text(std::string_view text);

host::array_handle make_matrix(std::int64_t rows, std::int64_t columns);

std::int32_t field_number(const host::array_handle& structure, std::string_view name);

/// Sets a field of the only element.
void set_field(const host::array_handle& structure, std::string_view name,
               const host::array_handle& value);
void set_field(const host::array_handle& structure, std::int32_t number,
               const host::array_handle& value);

/// A struct with phase = "conformance ", value = 2.5 and column = [1; 2; 3], filled by every
/// operation that sets, adds or replaces a field. Returns 0 if the host makes no struct.
host::array_handle make_sample_struct();

} // namespace zktarn::host_conformance
