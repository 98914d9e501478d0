#pragma once

#include <cstdint>

#include "vector_checks.hpp"
#include "vector_object.hpp"

/// The entries of a vector, one position after the other, as `zktarn::entries` yields them, with
/// every index tested.

namespace zktarn::python {

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
