#pragma once

#include <cstdint>
#include <new>
#include <utility>

#include "zktarn/zktarn_util.hpp"

namespace zero_half {

/// A vector of the library that gives its memory back.
class sparse_vector {
public:
    using record = zktarn::vector_type::vector;

    /// Empty, over indices 1..n; without coefficients it is a set of indices.
    explicit sparse_vector(std::int32_t n, bool with_coefficients = true) {
        if (!zktarn::vector_type::vector_alloc(record_, n, with_coefficients ? 0 : 1)) {
            throw std::bad_alloc();
        }
    }
    ~sparse_vector() { zktarn::vector_type::vector_free(record_); }
    sparse_vector(sparse_vector&& other) noexcept
        : record_(std::exchange(other.record_, nullptr)) {}
    sparse_vector& operator=(sparse_vector&& other) noexcept {
        std::swap(record_, other.record_);
        return *this;
    }

    record& operator*() const { return *record_; }

    std::int32_t capacity() const { return static_cast<std::int32_t>(record_->ind.extent[0]); }
    std::int32_t size() const { return zktarn::vector_mod::vector_get_nz(*record_); }
    std::int32_t index(std::int32_t k) const {
        return zktarn::vector_mod::vector_get_ind(*record_, k);
    }
    double value(std::int32_t j) const { return zktarn::vector_mod::vector_get_coef(*record_, j); }
    bool has(std::int32_t j) const { return zktarn::vector_mod::vector_is_elm(*record_, j) != 0; }
    void set(std::int32_t j, double value) {
        zktarn::vector_mod::vector_add_nz(*record_, j, value);
    }
    void include(std::int32_t j) { zktarn::vector_mod::vector_add_nz(*record_, j); }
    void clear() { zktarn::vector_mod::vector_clear(*record_); }

private:
    record* record_ = nullptr;
};

} // namespace zero_half
