#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <type_traits>
#include <utility>

#include "zktarn/export.hpp"
#include "zktarn/types.hpp"

/// The records in which a solver keeps the state of its callbacks.
///
/// The library fills in defaults, copies and finalises; it never reads a component. Each procedure
/// works on consecutive records, given by the first of them and their number; below 1 nothing is
/// touched. C++ programs need none of them: the records construct, copy and destroy themselves.
///
/// A record is used by one thread at a time. How to store a C++ object in the value slot of a
/// `cbdatalist` is told in stored_value.hpp.

namespace zktarn::callbacks_type_util {

/// Counters and measures of a solve, all zero at its beginning. Owns nothing.
struct cbstatusdata {
    /// Code of the status; 3 once an output function has stopped the solve.
    std::int32_t status = 0;
    /// Code of the phase the solver is in.
    std::int32_t phase = 0;
    std::int64_t iterations = 0;
    std::int64_t nodes = 0;
    std::int64_t cuts = 0;
    double objective = 0.0;
    double bound = 0.0;
    double seconds = 0.0;
};

/// One element of a report: a number and what it stands for. Uninitialised when it is new; a copy
/// is bit for bit.
struct cbdataelm {
    /// The solver's code of what is reported.
    std::int32_t quantity;
    /// The variable, row or node concerned, where there is one.
    std::int32_t index;
    double value;
};

/// State of a solve that its callbacks share. Owns nothing; a copy is bit for bit.
///
/// The defaults say that nothing is known yet. Bounds begin at the largest finite magnitudes and
/// not at infinities, so that a bound less itself, or times 0, is a number.
struct cbdata {
    /// Nodes explored; -1 before the solve begins, 0 from `cbinit` on.
    std::int32_t nodes_explored = -1;
    /// Feasible points found.
    std::int32_t feasible_points = 0;
    /// The node that is being explored, its parent, its depth, and the variable branched on; -1
    /// while there is none.
    std::int32_t node = -1;
    std::int32_t parent_node = -1;
    std::int32_t depth = -1;
    std::int32_t branching_variable = -1;
    /// Best bound on the objective, value of the best feasible point, and the gap between them.
    double lower_bound = -std::numeric_limits<double>::max();
    double upper_bound = std::numeric_limits<double>::max();
    double gap = std::numeric_limits<double>::max();
    /// The node that the best feasible point comes from; -1 while there is none.
    std::int32_t incumbent_node = -1;
    /// Cuts added, and restarts made.
    std::int32_t cuts = 0;
    std::int32_t restarts = 0;
};

/// What comes before the length parameters of a value whose size depends on them. The block is
/// `count` 64-bit entries long, these three included, so at least 3.
struct parameter_block {
    /// True when the slot owns the block: a copy of the slot then gets a block of its own.
    flag owned;
    /// Number of 64-bit entries of the whole block.
    std::int64_t count;
    /// Size of the value in bytes.
    std::int64_t value_size;
};

/// The dynamic type of a value in a slot. A procedure that is null does not exist.
struct value_type {
    /// Size of a value in bytes; with length parameters, the block tells the size instead.
    std::int64_t size = 0;
    /// True for a type with length parameters; a slot with such a value has a block of them.
    flag has_parameters = 0;
    /// Makes `count` values that were just copied bit for bit independent of the originals.
    void (*copy)(void* first, const std::int32_t& count) noexcept = nullptr;
    /// The last thing that happens to a value.
    void (*final)(void* value) noexcept = nullptr;
    /// Releases what the components of `count` values own, where there is no `final`. Gets the
    /// block of length parameters, or null for a type without.
    void (*finalise)(void* first, const std::int32_t& count,
                     parameter_block* parameters) noexcept = nullptr;
};

/// An owned value of any type, or none: the slot is empty when `value` is null, and then the other
/// two parts mean nothing.
///
/// Value and block of parameters are storage from `operator new(std::size_t)`.
struct value_slot {
    void* value = nullptr;
    const value_type* type = nullptr;
    parameter_block* parameters = nullptr;
};

struct cbdatalist;

/// Fills `count` records with zero bytes.
ZKTARN_API void _cbstatusdatainitialise(cbstatusdata& first, const std::int32_t& count) noexcept;

/// Gives `count` records the defaults of `cbdata`.
ZKTARN_API void _cbdatainitialise(cbdata& first, const std::int32_t& count) noexcept;

/// Marks the value slots of `count` records as empty and sets their handles to 0. Nothing is
/// released, and type and parameters of a slot stay as they are.
ZKTARN_API void _cbdatalistinitialise(cbdatalist& first, const std::int32_t& count) noexcept;

/// Makes `count` records that were just copied bit for bit independent of the originals: an owned
/// block of parameters and the value get storage of their own, then the copy procedure of the
/// value's type, where it has one, runs on the new value. The handles stay as they are.
///
/// When there is no storage for a copy, its slot is left empty; the original keeps its value. What
/// a copy procedure does when it finds no memory is the type's business.
ZKTARN_API void _cbdatalistcopy(cbdatalist& first, const std::int32_t& count) noexcept;

/// Releases what `count` records own and leaves their slots empty: runs `final` on the value, or
/// else `finalise`, then releases the storage of the value and an owned block of parameters. The
/// handles stay as they are. An empty slot is left alone, so a second time does no harm.
ZKTARN_API void _cbdatalistfinalise(cbdatalist& first, const std::int32_t& count) noexcept;

/// A value of any type and two handles of the solver's.
struct cbdatalist {
    value_slot slot;
    /// Handles or numbers; copied bit for bit, never released.
    std::int64_t first_handle = 0;
    std::int64_t second_handle = 0;

    cbdatalist() noexcept = default;
    ~cbdatalist() { _cbdatalistfinalise(*this, 1); }

    cbdatalist(const cbdatalist& other) noexcept
        : slot(other.slot), first_handle(other.first_handle), second_handle(other.second_handle) {
        _cbdatalistcopy(*this, 1);
    }
    cbdatalist(cbdatalist&& other) noexcept
        : slot(other.slot), first_handle(other.first_handle), second_handle(other.second_handle) {
        other.slot.value = nullptr;
    }
    /// The old value goes last, so something inside of it may be assigned. Without storage for a
    /// copy the slot is empty afterwards.
    cbdatalist& operator=(const cbdatalist& other) noexcept {
        if (this != &other) {
            *this = cbdatalist(other);
        }
        return *this;
    }
    cbdatalist& operator=(cbdatalist&& other) noexcept {
        cbdatalist old(static_cast<cbdatalist&&>(other));
        std::swap(slot, old.slot);
        std::swap(first_handle, old.first_handle);
        std::swap(second_handle, old.second_handle);
        return *this;
    }
};

static_assert(std::is_trivially_copyable_v<cbstatusdata>);
static_assert(std::is_standard_layout_v<cbstatusdata>);
static_assert(sizeof(cbstatusdata) == 56);
static_assert(offsetof(cbstatusdata, status) == 0);
static_assert(offsetof(cbstatusdata, phase) == 4);
static_assert(offsetof(cbstatusdata, iterations) == 8);
static_assert(offsetof(cbstatusdata, nodes) == 16);
static_assert(offsetof(cbstatusdata, cuts) == 24);
static_assert(offsetof(cbstatusdata, objective) == 32);
static_assert(offsetof(cbstatusdata, bound) == 40);
static_assert(offsetof(cbstatusdata, seconds) == 48);

static_assert(std::is_trivial_v<cbdataelm>);
static_assert(std::is_standard_layout_v<cbdataelm>);
static_assert(sizeof(cbdataelm) == 16);
static_assert(offsetof(cbdataelm, quantity) == 0);
static_assert(offsetof(cbdataelm, index) == 4);
static_assert(offsetof(cbdataelm, value) == 8);

static_assert(std::is_trivially_copyable_v<cbdata>);
static_assert(std::is_standard_layout_v<cbdata>);
static_assert(sizeof(cbdata) == 64);
static_assert(offsetof(cbdata, nodes_explored) == 0);
static_assert(offsetof(cbdata, feasible_points) == 4);
static_assert(offsetof(cbdata, node) == 8);
static_assert(offsetof(cbdata, parent_node) == 12);
static_assert(offsetof(cbdata, depth) == 16);
static_assert(offsetof(cbdata, branching_variable) == 20);
static_assert(offsetof(cbdata, lower_bound) == 24);
static_assert(offsetof(cbdata, upper_bound) == 32);
static_assert(offsetof(cbdata, gap) == 40);
static_assert(offsetof(cbdata, incumbent_node) == 48);
static_assert(offsetof(cbdata, cuts) == 52);
static_assert(offsetof(cbdata, restarts) == 56);
static_assert(cbdata{}.nodes_explored == -1 && cbdata{}.feasible_points == 0);
static_assert(cbdata{}.node == -1 && cbdata{}.parent_node == -1 && cbdata{}.depth == -1);
static_assert(cbdata{}.branching_variable == -1 && cbdata{}.incumbent_node == -1);
static_assert(cbdata{}.lower_bound == -1.7976931348623157e308);
static_assert(cbdata{}.upper_bound == 1.7976931348623157e308);
static_assert(cbdata{}.gap == 1.7976931348623157e308);
static_assert(cbdata{}.cuts == 0 && cbdata{}.restarts == 0);

static_assert(std::is_standard_layout_v<parameter_block>);
static_assert(sizeof(parameter_block) == 24);
static_assert(offsetof(parameter_block, owned) == 0);
static_assert(offsetof(parameter_block, count) == 8);
static_assert(offsetof(parameter_block, value_size) == 16);

static_assert(std::is_standard_layout_v<value_type>);
static_assert(sizeof(value_type) == 40);
static_assert(offsetof(value_type, size) == 0);
static_assert(offsetof(value_type, has_parameters) == 8);
static_assert(offsetof(value_type, copy) == 16);
static_assert(offsetof(value_type, final) == 24);
static_assert(offsetof(value_type, finalise) == 32);

static_assert(std::is_standard_layout_v<cbdatalist>);
static_assert(sizeof(cbdatalist) == 40);
static_assert(offsetof(cbdatalist, slot) == 0);
static_assert(offsetof(value_slot, value) == 0);
static_assert(offsetof(value_slot, type) == 8);
static_assert(offsetof(value_slot, parameters) == 16);
static_assert(offsetof(cbdatalist, first_handle) == 24);
static_assert(offsetof(cbdatalist, second_handle) == 32);

} // namespace zktarn::callbacks_type_util
