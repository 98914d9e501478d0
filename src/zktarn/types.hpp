#pragma once

#include "zktarn/detail/require_cpp20.hpp"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <type_traits>

#include "zktarn/check.hpp"

/// Argument types, and the conventions that hold for every procedure.
///
///  1. Arguments are passed by reference: `const T&` in, `T&` out or in/out. An input may alias an
///     output: inputs are read before outputs are written.
///  2. An optional argument is an `optional_ref`. An absent input flag counts as false; an absent
///     output is not written.
///  3. Flags are 64-bit words: written as 1 or 0, read as true when nonzero.
///  4. Element indices, list positions and array elements start at 1. A count below 1 is an empty
///     set.
///  5. Tolerances are absolute distances and inclusive: a distance equal to the tolerance passes.
///     None has a default.
///  6. NaN inputs are not reported. A comparison with NaN is false; each procedure states the
///     result.
///  7. Text is a `std::string_view` in and a `std::span<char>` in/out. The whole length counts,
///     trailing blanks included.
///  8. No procedure throws, aborts, or prints except on the host's console. A failed allocation
///     returns flag 0 and leaves the array absent or the pointer null.
///  9. Ordinary builds check no precondition: a call outside the stated ranges is undefined. A
///     checked build (ZKTARN_CHECKED) reports the violation to the host.
/// 10. The caller owns every record, array and handle. A procedure that creates one overwrites the
///     caller's variable without releasing what it held.
/// 11. Storage from the host's memory manager is returned to it, never to the process allocator.
///     New storage is uninitialised unless a procedure says otherwise.
/// 12. Every procedure runs on the caller's thread. One record, array or generator must not be used
///     by two threads at once.
/// 13. Results assume the default floating-point environment: round to nearest, subnormals kept.
///     In any other environment results may differ, but every call still returns.

namespace zktarn {

/// A logical value: written as 1 (true) or 0 (false), read as true when nonzero.
using flag = std::int64_t;

/// A typed array of one or two dimensions over a block of host memory.
///
/// The record describes the block; it does not own it. Copying the record copies no element, and
/// all copies refer to the same block. `memory_mod` allocates the block and releases it; releasing
/// it through one copy leaves the others dangling.
///
/// The array is present when its data address is not null. Extents and lower bounds are meaningful
/// only while it is present: releasing an array clears the address alone.
///
/// Elements are contiguous. In two dimensions they are stored column by column: element (i, j) lies
/// (i - 1) + (j - 1) * extent[0] elements after the first.
///
/// The layout is part of the binary interface: address, extents, lower bounds, in that order.
template <class T, std::size_t Rank>
struct host_array {
    static_assert(Rank == 1 || Rank == 2, "arrays have one or two dimensions");

    /// Address of the first element; null when the array is absent.
    T* data = nullptr;
    /// Number of elements; in two dimensions rows, then columns.
    std::int64_t extent[Rank] = {};
    /// Index of the first element in each dimension; 1 in every array that the library allocates.
    std::int64_t lower_bound[Rank] = {};

    /// Returns true when the array has a block.
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

/// An array of one dimension.
template <class T>
using array_1d = host_array<T, 1>;

/// An array of two dimensions.
template <class T>
using array_2d = host_array<T, 2>;

/// The rows and columns of a two-dimensional array.
struct matrix_shape {
    /// Number of rows.
    std::int64_t rows;
    /// Number of columns.
    std::int64_t columns;
};

/// A reference that may be absent; the size of a pointer.
///
/// It binds to a variable and, when T is const, to a temporary. Default-constructed or `{}` it is
/// absent: `vector_alloc(v, 10, {}, 1)` omits the first of three flags and sets the second.
///
/// Use it for parameters only, and never store one: bound to a temporary, it dangles at the end of
/// the full expression.
template <class T>
class optional_ref {
public:
    /// Absent.
    constexpr optional_ref() noexcept = default;

    /// Refers to `target`, which must outlive this reference.
    constexpr optional_ref(T& target) noexcept : target_(std::addressof(target)) {}

    /// An output cannot be a temporary.
    optional_ref(const T&&) requires(!std::is_const_v<T>) = delete;

    /// Returns true when it refers to an object.
    [[nodiscard]] constexpr bool present() const noexcept { return target_ != nullptr; }
    constexpr explicit operator bool() const noexcept { return present(); }

    /// The object. Precondition: present.
    constexpr T& operator*() const noexcept { return *target_; }

    /// A copy of the object, or `fallback` when absent.
    [[nodiscard]] constexpr std::remove_const_t<T>
    value_or(std::remove_const_t<T> fallback) const noexcept {
        return present() ? *target_ : fallback;
    }

private:
    T* target_ = nullptr;
};

} // namespace zktarn
