#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <type_traits>
#include <utility>

#include "zktarn/assert/check.hpp"
#include "zktarn/flag.hpp"

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

/// A procedure supplied by the caller: one object address and one function address.
///
/// It binds to any callable object (a mutable lambda included) and to any plain function. It never
/// owns and never allocates, so it is meant for parameters alone: one that was bound to a temporary
/// callable is dangling at the end of the full expression. One bound to a plain function stays
/// valid for ever. To keep a callable beyond the call, use `std::function`.
///
/// There is no empty state, and binding a null function pointer is undefined, as is an exception
/// that leaves the callable: no frame of the library can be unwound.
template <class Signature>
class function_ref;

template <class Result, class... Args>
class function_ref<Result(Args...)> {
public:
    /// Refers to `callable`, which must outlive every call through this reference.
    template <class F>
        requires(!std::is_same_v<std::remove_cvref_t<F>, function_ref> &&
                 std::is_invocable_r_v<Result, F&, Args...>)
    function_ref(F&& callable)
    noexcept {
        using function = std::decay_t<F>;
        if constexpr (is_function_pointer<function>) {
            bound_.function = reinterpret_cast<void (*)()>(static_cast<function>(callable));
            call_ = [](target bound, Args... args) -> Result {
                return invoke(*reinterpret_cast<function>(bound.function),
                              std::forward<Args>(args)...);
            };
        } else {
            using object = std::remove_reference_t<F>;
            bound_.object = const_cast<void*>(static_cast<const void*>(std::addressof(callable)));
            call_ = [](target bound, Args... args) -> Result {
                return invoke(*static_cast<object*>(bound.object), std::forward<Args>(args)...);
            };
        }
    }

    /// Calls what it refers to.
    Result operator()(Args... args) const { return call_(bound_, std::forward<Args>(args)...); }

private:
    // A function address need not fit the type of an object address, so each has its own member.
    union target {
        void* object;
        void (*function)();
    };

    template <class P>
    static constexpr bool is_function_pointer =
        std::is_pointer_v<P>&& std::is_function_v<std::remove_pointer_t<P>>;

    template <class F>
    static Result invoke(F& callable, Args&&... args) {
        if constexpr (std::is_void_v<Result>) {
            std::invoke(callable, std::forward<Args>(args)...);
        } else {
            return std::invoke(callable, std::forward<Args>(args)...);
        }
    }

    target bound_;
    Result (*call_)(target, Args...);
};

static_assert(sizeof(flag) == 8);

static_assert(std::is_trivially_copyable_v<array_1d<double>>);
static_assert(std::is_standard_layout_v<array_1d<double>>);
static_assert(sizeof(array_1d<double>) == 24);
static_assert(offsetof(array_1d<double>, data) == 0);
static_assert(offsetof(array_1d<double>, extent) == 8);
static_assert(offsetof(array_1d<double>, lower_bound) == 16);

static_assert(std::is_trivially_copyable_v<array_2d<std::int32_t>>);
static_assert(std::is_standard_layout_v<array_2d<std::int32_t>>);
static_assert(sizeof(array_2d<std::int32_t>) == 40);
static_assert(offsetof(array_2d<std::int32_t>, extent) == 8);
static_assert(offsetof(array_2d<std::int32_t>, lower_bound) == 24);

static_assert(sizeof(matrix_shape) == 16);
static_assert(offsetof(matrix_shape, rows) == 0);
static_assert(offsetof(matrix_shape, columns) == 8);

static_assert(std::is_trivially_copyable_v<optional_ref<const double>>);
static_assert(sizeof(optional_ref<const double>) == sizeof(void*));

static_assert(std::is_trivially_copyable_v<function_ref<flag(std::int32_t)>>);
static_assert(sizeof(function_ref<flag(std::int32_t)>) == 2 * sizeof(void*));

} // namespace zktarn
