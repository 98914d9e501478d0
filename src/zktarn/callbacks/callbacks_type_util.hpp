#pragma once

#include <cstdint>
#include <limits>
#include <utility>

#include "zktarn/export.hpp"
#include "zktarn/types.hpp"

/// The records in which a solver keeps the state of its callbacks.
///
/// The library initialises, copies and finalises them; it never reads a component. Each procedure
/// works on `count` consecutive records from `first` on; count < 1 changes nothing. C++ programs
/// need none of the procedures, because the records construct, copy and destroy themselves.
///
/// One thread at a time uses a record. stored_value.hpp stores C++ objects in the value slot of a
/// `cbdatalist`.

namespace zktarn::callbacks_type_util {

// Records without storage of their own
// --------------------------------------------------------------------------------------------

/// Counters and measures of a solve. The solver defines what they mean; all are zero by default.
/// Owns nothing.
struct cbstatusdata {
    /// Status code; 3 after an output function has stopped the solve.
    std::int32_t status = 0;
    /// Code of the solver's phase.
    std::int32_t phase = 0;
    /// Iterations made.
    std::int64_t iterations = 0;
    /// Nodes explored.
    std::int64_t nodes = 0;
    /// Cuts added.
    std::int64_t cuts = 0;
    /// Value of the objective.
    double objective = 0.0;
    /// Bound on the objective.
    double bound = 0.0;
    /// Time spent, in seconds.
    double seconds = 0.0;
};

/// One element of a report: a number and what it measures. A new one is uninitialised; a copy is
/// bit for bit.
struct cbdataelm {
    /// The solver's code of the quantity reported.
    std::int32_t quantity;
    /// The variable, row or node concerned, if any.
    std::int32_t index;
    /// The reported number.
    double value;
};

/// State of a solve that its callbacks share. Owns nothing; a copy is bit for bit.
///
/// The defaults stand for a solve that has not begun. Bounds start at the largest finite
/// magnitudes, not at infinities: a bound minus itself, or times 0, is then a number.
struct cbdata {
    /// Nodes explored; -1 before the solve begins, 0 after `cbinit`.
    std::int32_t nodes_explored = -1;
    /// Feasible points found.
    std::int32_t feasible_points = 0;
    /// The node that is being explored; -1 without one.
    std::int32_t node = -1;
    /// Its parent; -1 without one.
    std::int32_t parent_node = -1;
    /// Its depth; -1 without a node.
    std::int32_t depth = -1;
    /// The variable that was branched on; -1 without one.
    std::int32_t branching_variable = -1;
    /// Best bound on the objective.
    double lower_bound = -std::numeric_limits<double>::max();
    /// Value of the best feasible point.
    double upper_bound = std::numeric_limits<double>::max();
    /// Gap between the two.
    double gap = std::numeric_limits<double>::max();
    /// The node where the best feasible point was found; -1 without one.
    std::int32_t incumbent_node = -1;
    /// Cuts added.
    std::int32_t cuts = 0;
    /// Restarts made.
    std::int32_t restarts = 0;
};

// The record with a value of any type
// --------------------------------------------------------------------------------------------

/// Header of the length-parameter block of a value whose size is known only at run time. The block
/// has `count` 64-bit entries, the header included, so at least 3.
struct parameter_block {
    /// True when the slot owns the block: a copy of the slot then gets a block of its own.
    flag owned;
    /// Number of 64-bit entries of the whole block.
    std::int64_t count;
    /// Size of the value in bytes.
    std::int64_t value_size;
};

/// The dynamic type of a value in a slot. A procedure that the type does not need is null.
struct value_type {
    /// Size of a value in bytes; ignored for a type with length parameters, whose block has it.
    std::int64_t size = 0;
    /// True for a type with length parameters; a slot with such a value has a block of them.
    flag has_parameters = 0;
    /// Makes `count` values that were just copied bit for bit independent of the originals.
    void (*copy)(void* first, const std::int32_t& count) noexcept = nullptr;
    /// Destroys a value; used instead of `finalise` when present.
    void (*final)(void* value) noexcept = nullptr;
    /// Releases what the components of `count` values own. Receives the length-parameter block, or
    /// null for a type without one.
    void (*finalise)(void* first, const std::int32_t& count,
                     parameter_block* parameters) noexcept = nullptr;
};

/// An owned value of any type, or none. While `value` is null the slot is empty, and the other two
/// components mean nothing.
///
/// The value and the block of parameters are storage from `operator new(std::size_t)`.
struct value_slot {
    /// The value; null in an empty slot.
    void* value = nullptr;
    /// Its type.
    const value_type* type = nullptr;
    /// Its length parameters, for a type that has some.
    parameter_block* parameters = nullptr;
};

/// A value of any type and two handles of the solver.
struct cbdatalist {
    /// The value.
    value_slot slot;
    /// A handle or a number; copied bit for bit, never released.
    std::int64_t first_handle = 0;
    /// Like `first_handle`.
    std::int64_t second_handle = 0;

    cbdatalist() noexcept = default;
    ~cbdatalist();

    /// If the value cannot be copied for lack of memory, the new slot is empty.
    cbdatalist(const cbdatalist& other) noexcept;
    cbdatalist(cbdatalist&& other) noexcept;
    /// Destroys the old value after the copy, so `other` may be a part of that value.
    cbdatalist& operator=(const cbdatalist& other) noexcept;
    cbdatalist& operator=(cbdatalist&& other) noexcept;
};

// Procedures
// --------------------------------------------------------------------------------------------

/// Fills `count` records with zero bytes.
ZKTARN_API void _cbstatusdatainitialise(cbstatusdata& first, const std::int32_t& count) noexcept;

/// Sets `count` records to the defaults of `cbdata`.
ZKTARN_API void _cbdatainitialise(cbdata& first, const std::int32_t& count) noexcept;

/// Marks the value slots of `count` records as empty and sets their handles to 0. Releases nothing,
/// and leaves type and parameters of a slot as they are.
ZKTARN_API void _cbdatalistinitialise(cbdatalist& first, const std::int32_t& count) noexcept;

/// Makes `count` records that were just copied bit for bit independent of the originals: an owned
/// block of parameters and the value get storage of their own; then the copy procedure of the
/// value's type, if any, runs on the new value. The handles stay as they are.
///
/// If memory for a copy is missing, the slot of the copy is empty and the original keeps its value.
/// A copy procedure handles its own failures.
ZKTARN_API void _cbdatalistcopy(cbdatalist& first, const std::int32_t& count) noexcept;

/// Releases what `count` records own and empties their slots: runs `final` on the value, or else
/// `finalise`, then releases the storage of the value and of an owned block of parameters. The
/// handles stay as they are. An empty slot stays as it is, so finalising twice is harmless.
ZKTARN_API void _cbdatalistfinalise(cbdatalist& first, const std::int32_t& count) noexcept;

// Members of cbdatalist
// --------------------------------------------------------------------------------------------

inline cbdatalist::~cbdatalist() {
    _cbdatalistfinalise(*this, 1);
}

inline cbdatalist::cbdatalist(const cbdatalist& other) noexcept
    : slot(other.slot), first_handle(other.first_handle), second_handle(other.second_handle) {
    _cbdatalistcopy(*this, 1);
}

inline cbdatalist::cbdatalist(cbdatalist&& other) noexcept
    : slot(other.slot), first_handle(other.first_handle), second_handle(other.second_handle) {
    other.slot.value = nullptr;
}

inline cbdatalist& cbdatalist::operator=(const cbdatalist& other) noexcept {
    if (this != &other) {
        *this = cbdatalist(other);
    }
    return *this;
}

inline cbdatalist& cbdatalist::operator=(cbdatalist&& other) noexcept {
    cbdatalist old(static_cast<cbdatalist&&>(other));
    std::swap(slot, old.slot);
    std::swap(first_handle, old.first_handle);
    std::swap(second_handle, old.second_handle);
    return *this;
}

} // namespace zktarn::callbacks_type_util
