#pragma once

#include <cstdint>

/// What the library asks of the host's array interface, `libqv`.
///
/// Declarations and obligations only: the host implements them, and where there is no host the
/// stand-in does. Nothing may leave these operations by an exception.
///
/// Arguments. Every number travels by reference, handles and data addresses included: sizes,
/// element indices, dimension counts and extents are 64-bit integers, counts of fields, field
/// numbers and the complexity flag are 32-bit integers. A text is the address of its first
/// character in its place in the list; its length follows after all other arguments, a 64-bit
/// integer by value, one for each text, in order. A list of fixed-width text slots passes the width
/// of a slot the same way. No text ends in a null character, and trailing blanks in a slot are
/// padding.
///
/// Ownership. An operation that creates an array hands it to the caller, who either destroys it or
/// stores it in a struct, which then owns it. A handle of 0 names no array.
///
/// Thread. All are called on the solver's thread, while the host waits for the solver.

namespace zktarn::host {

/// Names an array that the host owns: a struct, a real matrix, a real scalar or a string.
using array_handle = std::int64_t;

/// Where the real data of a host array begin.
using data_address = double*;

extern "C" {

/// Returns a new struct array of `ndims` dimensions with the given extents and `nfields` fields,
/// named by consecutive slots of `slot_width` characters, every field of every element empty.
array_handle qvcreatestructarray800_(const std::int64_t& ndims, const std::int64_t* extents,
                                     const std::int32_t& nfields, const char* field_names,
                                     std::int64_t slot_width) noexcept;

/// Returns a new string that holds `text`, all of its `text_length` characters.
array_handle qvcreatestring800_(const char* text, std::int64_t text_length) noexcept;

/// Returns a new 1-by-1 real array that holds `value`.
array_handle qvcreatedoublescalar800_(const double& value) noexcept;

/// Returns a new matrix of `rows` rows and `columns` columns; real when `complexity` is 0, the only
/// value the library passes.
array_handle qvcreatedoublematrix800_(const std::int64_t& rows, const std::int64_t& columns,
                                      const std::int32_t& complexity) noexcept;

/// Stores `value` in the named field of element `index` (counted from 1). The struct takes over
/// ownership of the value, and the library never destroys it, even if the host could not store it.
/// A value that the field held before is released: the library refills a struct on that assumption.
void qvsetfield800_(const array_handle& structure, const std::int64_t& index,
                    const char* field_name, const array_handle& value,
                    std::int64_t field_name_length) noexcept;

/// Stores `value` in field `number` (counted from 1) of element `index` (counted from 1). Ownership
/// as in `qvsetfield800_`.
void qvsetfieldbynumber800_(const array_handle& structure, const std::int64_t& index,
                            const std::int32_t& number, const array_handle& value) noexcept;

/// Returns the number of the named field, counted from 1; 0 when the struct has no such field.
std::int32_t qvgetfieldnumber800_(const array_handle& structure, const char* field_name,
                                  std::int64_t field_name_length) noexcept;

/// Adds an empty field to every element and returns its number, counted from 1.
std::int32_t qvaddfield800_(const array_handle& structure, const char* field_name,
                            std::int64_t field_name_length) noexcept;

/// Returns the address of the array's real data, stored column by column; it stays valid while the
/// array exists.
data_address qvgetpr800_(const array_handle& array) noexcept;

/// Copies `count` reals from host data at `from` to `to`.
void qvcopyptrtoreal8800_(const data_address& from, double* to, const std::int64_t& count) noexcept;

/// Copies `count` reals from `from` into host data at `to`.
void qvcopyreal8toptr800_(const double* from, const data_address& to,
                          const std::int64_t& count) noexcept;

/// Releases the array and everything it owns.
void qvdestroyarray800_(const array_handle& array) noexcept;
}

} // namespace zktarn::host
