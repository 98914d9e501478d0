#pragma once

#include <cstdint>

#include "vector_object.hpp"

/// The preconditions of the vector procedures, and the entries of a vector with every index tested.
/// Each function raises one exception with one sentence when its condition does not hold, and
/// changes nothing.
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

// The entries, one position after the other, as `zktarn::entries` yields them.

/// An element and its coefficient; 1.0 in a vector without coefficients.
struct vector_entry {
    std::int32_t index;
    double value;
};

/// A position of the list, or, without a list, an element; counted from 0.
class entry_cursor {
public:
    explicit entry_cursor(const vector_object& v) noexcept : v_(&v) {}

    /// Moves behind the next entry and returns true; returns false when there is none. IndexError
    /// when the list holds an index that is not an element.
    bool next(vector_entry& entry) {
        const vector_type::vector& record = *v_->record;
        const std::int64_t end = v_->form.ind ? record.nz : v_->n;
        while (position_ < end) {
            const auto j = v_->form.ind ? record.ind.data[position_]
                                        : static_cast<std::int32_t>(position_ + 1);
            if (j < 1 || j > v_->n) [[unlikely]] {
                needs_elements(*v_, "iteration");
            }
            ++position_;
            if (!v_->form.elm || record.elm.data[j - 1] >= 1) {
                entry = {j, v_->form.coef ? record.coef.data[j - 1] : 1.0};
                return true;
            }
        }
        return false;
    }

private:
    const vector_object* v_;
    std::int64_t position_ = 0;
};

} // namespace zktarn::python
