#pragma once

#include <cstdint>

/// The host's array interface, `libqv`, as far as the library calls it: struct arrays, real arrays
/// and texts.
///
/// Declarations and obligations only; the host implements them. No exception may leave an
/// operation.
///
/// Arguments. Every number travels by reference, handles and data addresses included: sizes,
/// element indices, dimension counts and extents are 64-bit integers; counts of fields, field
/// numbers and the complexity flag are 32-bit integers. The host reads what is behind a reference
/// during the call and does not keep the address. A text is the address of its first character; its
/// length follows after all other arguments, as a 64-bit integer by value, one for each text, in
/// order. No null character ends a text, blanks at its end belong to it, and the address of a text
/// of length 0 may be null. A list of fixed-width slots passes the width of a slot the same way;
/// there, blanks at the end of a name are padding.
///
/// Ownership. An operation that creates an array hands it to its caller, who either destroys it or
/// stores it in a struct, which then owns it.
///
/// Failure. An operation fails by its failure value: handle 0, field number 0, or a null address.
/// The library does not test for it, so the host must accept its own failure values as later
/// arguments:
///
///     failed                                   and then the host receives
///     an operation that creates an array       handle 0, as any handle of any operation
///     qvaddfield800_                           field number 0, in qvsetfieldbynumber800_
///     qvgetpr800_                              a null address, in either copy
///     qvxcallquarn800_                         handle 0, in qvgetpr800_ and qvdestroyarray800_
///
/// Given a failure value, an operation does nothing and returns its own failure value.
///
/// Thread. `callbacks_util` calls all of them on the solver's thread, while the host waits for the
/// solver.

namespace zktarn::host {

/// Names an array that the host owns: a struct, a real matrix, a real scalar or a text. Never 0 for
/// an array that exists.
using array_handle = std::int64_t;

/// The address of the first real of a host array.
using data_address = double*;

extern "C" {

// Creating arrays
// --------------------------------------------------------------------------------------------

/// Returns a new struct array with `ndims` dimensions, the given extents, and `nfields` fields
/// named by consecutive slots of `slot_width` characters. Every field of every element is empty.
///
/// The library passes ndims = 1, extents {1, 1}, nfields = 1 and one slot "phase     " of width 10.
///
/// Failure: handle 0.
array_handle qvcreatestructarray800_(const std::int64_t& ndims, const std::int64_t* extents,
                                     const std::int32_t& nfields, const char* field_names,
                                     std::int64_t slot_width) noexcept;

/// Returns a new text that holds a copy of `text`, of any length, 0 included.
///
/// Failure: handle 0.
array_handle qvcreatestring800_(const char* text, std::int64_t text_length) noexcept;

/// Returns a new 1-by-1 real array that holds `value`, any real.
///
/// Failure: handle 0.
array_handle qvcreatedoublescalar800_(const double& value) noexcept;

/// Returns a new matrix of `rows` rows and `columns` columns; complexity 0 makes it real. The
/// library passes rows >= 0 (0 makes an empty array), columns = 1 and complexity = 0.
///
/// Failure: handle 0.
array_handle qvcreatedoublematrix800_(const std::int64_t& rows, const std::int64_t& columns,
                                      const std::int32_t& complexity) noexcept;

// Fields of a struct
// --------------------------------------------------------------------------------------------

/// Stores `value` in the named field of element `index`, counted from 1. The field exists. The
/// library passes index = 1 and the field "phase".
///
/// The struct owns the value from now on. A value that could not be stored belongs to the host: the
/// library does not destroy it. The host releases the value that the field held before.
void qvsetfield800_(const array_handle& structure, const std::int64_t& index,
                    const char* field_name, const array_handle& value,
                    std::int64_t field_name_length) noexcept;

/// Stores `value` in field `number`, counted from 1, of element `index`, counted from 1. The
/// library passes index = 1. Ownership as in `qvsetfield800_`.
void qvsetfieldbynumber800_(const array_handle& structure, const std::int64_t& index,
                            const std::int32_t& number, const array_handle& value) noexcept;

/// Returns the number of the named field, counted from 1; 0 when the struct has no such field,
/// which is not a failure.
std::int32_t qvgetfieldnumber800_(const array_handle& structure, const char* field_name,
                                  std::int64_t field_name_length) noexcept;

/// Adds an empty field to every element and returns its number, counted from 1. The library calls
/// it only after `qvgetfieldnumber800_` returned 0 for that name.
///
/// Failure: field number 0.
std::int32_t qvaddfield800_(const array_handle& structure, const char* field_name,
                            std::int64_t field_name_length) noexcept;

// Real data
// --------------------------------------------------------------------------------------------

/// Returns the address of an array's real data, stored column by column. The array keeps the data,
/// and the address stays valid while the array exists, also after a struct has become its owner.
/// The library asks for the data of columns that it created, and of the result of the output
/// function.
///
/// Failure, and an array without real data: null.
data_address qvgetpr800_(const array_handle& array) noexcept;

/// Copies `count` reals of host data at `source` to `destination`. `source` is an address that
/// `qvgetpr800_` returned. The library passes count = 1. If `source` is null, copies nothing.
void qvcopyptrtoreal8800_(const data_address& source, double* destination,
                          const std::int64_t& count) noexcept;

/// Copies `count` reals at `source` to host data at `destination`, an address that `qvgetpr800_`
/// returned. The library passes the number of rows as count; if that is 0, `source` may be null. If
/// `destination` is null, copies nothing.
void qvcopyreal8toptr800_(const double* source, const data_address& destination,
                          const std::int64_t& count) noexcept;

/// Releases an array and everything it owns. No struct owns it. The library destroys the result of
/// the output function; solvers destroy structs.
void qvdestroyarray800_(const array_handle& array) noexcept;
}

} // namespace zktarn::host
