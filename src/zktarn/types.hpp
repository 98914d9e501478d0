#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <type_traits>

#include "zktarn/check.hpp"

/// The types in which arguments cross the interface, and the conventions of every procedure.
///
///  1. Arguments travel by reference: `const T&` in, `T&` out or in/out. An input may refer to
///     anything, a component of an output included: inputs are read before outputs are written.
///  2. An argument that may be left out is an `optional_ref`. Left out, an input flag counts as
///     false and an output is not written.
///  3. Flags are 64-bit words, written as 1 or 0 and read as true when nonzero.
///  4. Element indices, list positions and array elements are counted from 1. A count below 1 is an
///     empty set.
///  5. Tolerances are absolute distances and inclusive: a distance equal to the tolerance passes.
///     None has a default. A comparison with a not-a-number is false, and each procedure says what
///     follows from that.
///  6. Text comes in as `std::string_view` and is changed through `std::span<char>`: characters and
///     a length, all of it used, trailing blanks included.
///  7. Nothing throws or aborts, and nothing prints but on the host's console. A failed allocation
///     comes back as a 0 flag with the array absent or the reference null.
///  8. Nothing is checked, except in a checked build (ZKTARN_CHECKED): a call outside a procedure's
///     stated ranges is undefined.
///  9. The caller owns every record, array and handle. Procedures that create one first overwrite
///     what the caller's variable held, without releasing it.
/// 10. Storage from the host's memory manager goes back to it, never to the process allocator, and
///     is not cleared unless a procedure says so.
/// 11. Every procedure runs on the caller's thread; one record, array or generator must not be used
///     by two threads at once.

namespace zktarn {

/// A logical value: written as 1 (true) or 0 (false), read as true when nonzero.
using flag = std::int64_t;

/// A typed array of one or two dimensions over a block of host memory.
///
/// The record only describes the block: it is copied freely, never allocates and never releases.
/// `memory_mod` attaches a block to it and returns the block to the host; whoever holds the record
/// then owns the block. All copies of a record name the same block and are dangling after it has
/// been released through any one of them.
///
/// An array is present exactly when its data address is not null. Extents and lower bounds mean
/// something only while it is present: releasing an array clears the address alone.
///
/// Elements are contiguous. In two dimensions they are stored column by column: element (i, j) lies
/// (i - 1) + (j - 1) * extent[0] elements after the first.
///
/// The layout is part of the binary interface: address, extents, lower bounds, in this order.
template <class T, std::size_t Rank>
struct host_array {
    static_assert(Rank == 1 || Rank == 2, "arrays have one or two dimensions");

    /// Address of the first element; null when the array is absent.
    T* data = nullptr;
    /// Number of elements; rows, then columns, in two dimensions.
    std::int64_t extent[Rank] = {};
    /// Index of the first element in each dimension: 1 in every array made by this library.
    std::int64_t lower_bound[Rank] = {};

    /// True when a block is attached.
    [[nodiscard]] constexpr bool present() const noexcept { return data != nullptr; }

    /// Element k, 1 <= k <= extent[0], of a present one-dimensional array.
    constexpr T& operator()(std::int64_t k) const noexcept requires(Rank == 1) {
        ZKTARN_CHECK(present() && k >= 1 && k <= extent[0]);
        return data[k - 1];
    }

    /// Element (i, j), 1 <= i <= extent[0], 1 <= j <= extent[1], of a present two-dimensional
    /// array.
    constexpr T& operator()(std::int64_t i, std::int64_t j) const noexcept requires(Rank == 2) {
        ZKTARN_CHECK(present() && i >= 1 && i <= extent[0] && j >= 1 && j <= extent[1]);
        return data[(i - 1) + (j - 1) * extent[0]];
    }
};

template <class T>
using array_1d = host_array<T, 1>;

template <class T>
using array_2d = host_array<T, 2>;

/// The rows and columns of a two-dimensional array.
struct matrix_shape {
    std::int64_t rows;
    std::int64_t columns;
};

/// A reference that may be absent: one pointer wide, and as cheap to pass as one.
///
/// It binds to a variable and, where T is const, to a temporary; defaulted or `{}` it is absent:
/// `vector_alloc(v, 10, {}, 1)` leaves out the first of three flags and sets the second.
///
/// It is meant for parameters alone. It refers, it does not keep: one that was bound to a temporary
/// is dangling at the end of the full expression, so do not store one.
template <class T>
class optional_ref {
public:
    /// Absent.
    constexpr optional_ref() noexcept = default;

    /// Refers to `target`, which must outlive every use of this reference.
    constexpr optional_ref(T& target) noexcept : target_(std::addressof(target)) {}

    /// A temporary is welcome as an input only.
    optional_ref(const T&&) requires(!std::is_const_v<T>) = delete;

    /// True when it refers to something.
    [[nodiscard]] constexpr bool present() const noexcept { return target_ != nullptr; }
    constexpr explicit operator bool() const noexcept { return present(); }

    /// What it refers to; only while present.
    constexpr T& operator*() const noexcept { return *target_; }

    /// A copy of what it refers to, or `fallback` when absent.
    [[nodiscard]] constexpr std::remove_const_t<T>
    value_or(std::remove_const_t<T> fallback) const noexcept {
        return present() ? *target_ : fallback;
    }

private:
    T* target_ = nullptr;
};

} // namespace zktarn
