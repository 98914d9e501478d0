#pragma once

#include <cstddef>
#include <cstdint>
#include <iterator>
#include <span>
#include <string_view>
#include <utility>

#include "zktarn/callbacks/callbacks_util.hpp"
#include "zktarn/check.hpp"
#include "zktarn/detail/array_procedures.hpp"
#include "zktarn/host/libqv.hpp"
#include "zktarn/random/random.hpp"
#include "zktarn/types.hpp"
#include "zktarn/vector/vector_type.hpp"

/// Owners of what the procedures create, and a range over the entries of a vector.
///
///     zktarn::owned_vector x(9);
///     if (!x) { ... }                           // the host refused the memory
///     vector_add_nz(*x, 2, 3.0);                // *x is the record that the procedures take
///     for (auto [j, a] : zktarn::entries(x)) { ... }
///
/// An owner calls the creating procedure in its constructor and the releasing procedure in its
/// destructor. It converts to true if the creating procedure succeeded. It is false if the
/// procedure failed, if the owner was made without arguments, and after it was moved from, reset or
/// released. A false owner owns nothing. Owners move and do not copy; moving an owner to itself
/// changes nothing.
///
/// The arguments of a constructor have the ranges of the creating procedure. `*owner` of a false
/// owner is an absent array or a null handle; it is undefined for a vector. Thread rules are those
/// of the owned object. Nothing here throws. The library exports none of it: it is compiled into
/// the program that includes it.

namespace zktarn {

/// The part that all owners share.
template <class Handle, class Owner>
class owner {
public:
    /// True when this owns what the creating procedure made; an empty array counts as made.
    [[nodiscard]] explicit operator bool() const noexcept { return made_; }

    /// Releases what is owned, if anything, and leaves the owner false.
    void reset() noexcept {
        if (made_) {
            Owner::destroy(held_);
        }
        held_ = Handle{};
        made_ = false;
    }

    /// Transfers ownership to the caller, who releases the object by the module's procedure. Leaves
    /// the owner false. A false owner returns a null record, an absent array or a null handle.
    [[nodiscard]] Handle release() noexcept {
        made_ = false;
        return std::exchange(held_, Handle{});
    }

protected:
    /// Owns nothing.
    owner() noexcept = default;
    /// Takes over what `other` owns and leaves `other` false.
    owner(owner&& other) noexcept
        : held_(std::exchange(other.held_, Handle{})), made_(std::exchange(other.made_, false)) {}
    /// The same; releases what was owned before.
    owner& operator=(owner&& other) noexcept {
        owner taken(std::move(other));
        std::swap(held_, taken.held_);
        std::swap(made_, taken.made_);
        return *this;
    }
    /// Releases what is owned, if anything.
    ~owner() { reset(); }

    /// The record or handle; empty when nothing is owned.
    Handle held_{};
    /// Whether something is owned.
    bool made_ = false;
};

/// Owns a sparse vector.
class owned_vector : public owner<vector_type::vector*, owned_vector> {
public:
    /// What is owned.
    using record = vector_type::vector;

    /// Owns nothing.
    owned_vector() noexcept = default;

    /// Creates a vector by `vector_alloc` with the same arguments.
    explicit owned_vector(const std::int32_t& n, optional_ref<const flag> no_coef = {},
                          optional_ref<const flag> no_ind = {},
                          optional_ref<const flag> no_elm = {}) noexcept {
        made_ = vector_type::vector_alloc(held_, n, no_coef, no_ind, no_elm) != 0;
    }

    /// Owns a vector that `vector_alloc` made; a null record leaves the owner false.
    [[nodiscard]] static owned_vector adopt(record* made) noexcept {
        owned_vector owner;
        owner.held_ = made;
        owner.made_ = made != nullptr;
        return owner;
    }

    /// The record. The owner must be true.
    [[nodiscard]] record& operator*() const noexcept {
        ZKTARN_CHECK(made_);
        return *held_;
    }
    [[nodiscard]] record* operator->() const noexcept {
        ZKTARN_CHECK(made_);
        return held_;
    }

private:
    friend owner<record*, owned_vector>;
    static void destroy(record*& vec) noexcept { vector_type::vector_free(vec); }
};

/// Owns an array in host memory. T and Rank are those of the `allocmem_` procedures: std::int64_t,
/// std::int32_t, std::int16_t, std::int8_t and double in one dimension, std::int32_t and double in
/// two.
template <class T, std::size_t Rank = 1>
class owned_array : public owner<host_array<T, Rank>, owned_array<T, Rank>> {
public:
    /// Owns nothing.
    owned_array() noexcept = default;

    /// Creates an array of n elements, uninitialised. If n < 1, the owner is true and its array
    /// absent.
    explicit owned_array(const std::int64_t& n) noexcept requires(Rank == 1) {
        this->made_ = procedures::allocate(this->held_, n) != 0;
    }

    /// Creates an array of rows x columns elements, uninitialised. If that product is below 1, the
    /// owner is true and its array absent.
    explicit owned_array(const matrix_shape& shape) noexcept requires(Rank == 2) {
        this->made_ = procedures::allocate(this->held_, shape) != 0;
    }

    /// The array; absent when the owner is false.
    [[nodiscard]] const host_array<T, Rank>& operator*() const noexcept { return this->held_; }
    [[nodiscard]] const host_array<T, Rank>* operator->() const noexcept { return &this->held_; }

    /// Element k, or (i, j), as in `host_array`.
    T& operator()(std::int64_t k) const noexcept requires(Rank == 1) { return this->held_(k); }
    T& operator()(std::int64_t i, std::int64_t j) const noexcept requires(Rank == 2) {
        return this->held_(i, j);
    }

    /// All elements in the order of their storage, column by column; none of an absent array.
    [[nodiscard]] std::span<T> elements() const noexcept {
        const host_array<T, Rank>& array = this->held_;
        if (!array.present()) {
            return {};
        }
        std::int64_t count = 1;
        for (const std::int64_t extent : array.extent) {
            count *= extent;
        }
        return {array.data, static_cast<std::size_t>(count)};
    }

private:
    friend owner<host_array<T, Rank>, owned_array<T, Rank>>;
    using procedures = detail::array_procedures<T, Rank>;
    static void destroy(host_array<T, Rank>& array) noexcept { procedures::release(array); }
};

/// Owns a generator of the host.
class owned_generator : public owner<random::rng_state, owned_generator> {
public:
    /// Owns nothing.
    owned_generator() noexcept = default;

    /// Creates a generator by `instantiaterng`.
    explicit owned_generator(const std::int32_t& seed) noexcept {
        made_ = random::instantiaterng(held_, seed) != 0;
    }

    /// The generator; its handle is null when the owner is false.
    [[nodiscard]] const random::rng_state& operator*() const noexcept { return held_; }

private:
    friend owner<random::rng_state, owned_generator>;
    static void destroy(random::rng_state& rng) noexcept { random::deleterng(rng); }
};

/// Owns a snapshot of a generator's state.
class owned_snapshot : public owner<random::saved_state, owned_snapshot> {
public:
    /// Owns nothing.
    owned_snapshot() noexcept = default;

    /// Takes a snapshot by `getrngstate`.
    explicit owned_snapshot(const random::rng_state& rng) noexcept {
        made_ = random::getrngstate(rng, held_) != 0;
    }

    /// The snapshot; null when the owner is false.
    [[nodiscard]] const random::saved_state& operator*() const noexcept { return held_; }

private:
    friend owner<random::saved_state, owned_snapshot>;
    static void destroy(const random::saved_state& state) noexcept {
        random::deleterngstate(state);
    }
};

/// Owns a struct of the host. Its destructor calls `qvdestroyarray800_`, so a program that uses it
/// links the host's `libqv` itself, as `zktarn::standin` does.
class owned_struct : public owner<host::array_handle, owned_struct> {
public:
    /// Owns nothing.
    owned_struct() noexcept = default;

    /// Creates a 1-by-1 struct with the field "phase" by `qvinitcbarray`. True when the host
    /// returned a handle other than 0.
    explicit owned_struct(std::string_view phase) noexcept {
        held_ = callbacks_util::qvinitcbarray(phase);
        made_ = held_ != 0;
    }

    /// The handle; 0 when the owner is false.
    [[nodiscard]] const host::array_handle& operator*() const noexcept { return held_; }

private:
    friend owner<host::array_handle, owned_struct>;
    static void destroy(const host::array_handle& structure) noexcept {
        host::qvdestroyarray800_(structure);
    }
};

// Entries
// -------------------------------------------------------------------------------------------

/// An element index of a vector and its coefficient.
struct entry {
    /// The element index, from 1.
    std::int32_t index;
    /// Its coefficient.
    double value;
};

/// A position in an `entry_range`.
class entry_iterator {
public:
    /// What the standard library reads of an iterator.
    using iterator_concept = std::forward_iterator_tag;
    using iterator_category = std::input_iterator_tag;
    using difference_type = std::ptrdiff_t;
    using value_type = entry;
    using reference = entry;
    using pointer = void;

    /// A position in no vector, for assignment only.
    entry_iterator() noexcept = default;

    /// The entry at this position.
    [[nodiscard]] entry operator*() const noexcept {
        const std::int32_t j = index();
        return {j, coef_ != nullptr ? coef_[j - 1] : 1.0};
    }
    /// Goes to the next member.
    entry_iterator& operator++() noexcept {
        ++position_;
        skip_unmarked();
        return *this;
    }
    entry_iterator operator++(int) noexcept {
        const entry_iterator before = *this;
        ++*this;
        return before;
    }
    /// Whether both are at the same position of one vector.
    [[nodiscard]] bool operator==(const entry_iterator& other) const noexcept {
        return position_ == other.position_;
    }

private:
    friend class entry_range;

    entry_iterator(const vector_type::vector& v, std::int64_t position, std::int64_t end) noexcept
        : list_(v.ind.data), marks_(v.elm.data), coef_(v.coef.data), position_(position),
          end_(end) {
        skip_unmarked();
    }

    [[nodiscard]] std::int32_t index() const noexcept {
        return list_ != nullptr ? list_[position_] : static_cast<std::int32_t>(position_ + 1);
    }
    void skip_unmarked() noexcept {
        while (marks_ != nullptr && position_ < end_ && marks_[index() - 1] < 1) {
            ++position_;
        }
    }

    const std::int32_t* list_ = nullptr;  // null: position k holds index k
    const std::int32_t* marks_ = nullptr; // null: every index is a member
    const double* coef_ = nullptr;        // null: an index set
    std::int64_t position_ = 0;           // counted from 0
    std::int64_t end_ = 0;
};

/// The entries of a vector, as `entries` returns them.
class entry_range {
public:
    /// An empty range.
    entry_range() noexcept = default;
    /// The entries of `v`.
    explicit entry_range(const vector_type::vector& v) noexcept
        : begin_(v, 0, positions(v)), end_(v, positions(v), positions(v)) {}

    /// The first entry, and the end behind the last one.
    [[nodiscard]] entry_iterator begin() const noexcept { return begin_; }
    [[nodiscard]] entry_iterator end() const noexcept { return end_; }

private:
    static std::int64_t positions(const vector_type::vector& v) noexcept {
        if (v.ind.present()) {
            ZKTARN_CHECK(v.nz <= v.ind.extent[0]);
            return v.nz > 0 ? v.nz : 0;
        }
        return v.elm.present() ? v.elm.extent[0] : v.coef.present() ? v.coef.extent[0] : 0;
    }

    entry_iterator begin_;
    entry_iterator end_;
};

/// The members of a vector with their coefficients, as (index, coefficient) pairs.
///
///     for (auto [j, a] : zktarn::entries(v)) { sum += a * solution[j]; }
///
/// @param v  in. Any mode; outlives the loop. While the loop runs, its arrays must not be released
///           and entries must be neither added nor removed; coefficients may be set.
///
/// Marks mode: the listed indices that are marked, in the order of the list; without `ind`, every
/// marked index, ascending. List mode: the listed indices. Dense mode: every index from 1 to n,
/// ascending, zeros included. The coefficient is coef(j), also where it is 0.0, and 1.0 in a vector
/// without coefficients. Allocates nothing. Cost of a step: O(1 + indices skipped).
[[nodiscard]] inline entry_range entries(const vector_type::vector& v) noexcept {
    return entry_range(v);
}

/// The same for an owner, which must be true. Deleted for a temporary owner, which would be
/// destroyed before the loop starts.
[[nodiscard]] inline entry_range entries(const owned_vector& v) noexcept {
    return entry_range(*v);
}
entry_range entries(const owned_vector&& v) = delete;

} // namespace zktarn
