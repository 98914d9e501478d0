#pragma once

#include <cstdint>

#include "vector_object.hpp"

/// The preconditions of the vector procedures. Each function raises one exception with one sentence
/// when its condition does not hold, and changes nothing.
///
/// The arrays of a vector are views that a program may write to. So nothing here trusts the
/// contents of a list: no call reads or writes outside of the arrays, whatever they hold.

namespace zktarn::python {

/// ValueError when the vector was created without the array.
void needs_coef(const vector_object& v, const char* procedure);
void needs_ind(const vector_object& v, const char* procedure);
void needs_elm(const vector_object& v, const char* procedure);

/// Marks mode: both `ind` and `elm`.
void needs_marks_mode(const vector_object& v, const char* procedure);

/// Every listed index is an element of the vector, else IndexError. Takes time proportional to nz.
void needs_elements(const vector_object& v, const char* procedure);

/// Every index that y lists is an element of both, else IndexError.
void needs_common_elements(const vector_object& x, const vector_object& y, const char* procedure);

/// The list of x, whose entries are elements, has room for the indices that only y lists, else
/// ValueError. Takes constant time unless the two lists together exceed the capacity.
void needs_room(const vector_object& x, const vector_object& y, const char* procedure);

/// The list has room for index j, unless j is a member, else ValueError.
void needs_room_for(const vector_object& v, std::int32_t j, const char* procedure);

/// Whether j, an element, is a member: by its mark, in the list, or, in dense mode, always.
bool is_member(const vector_object& v, std::int32_t j) noexcept;

} // namespace zktarn::python
