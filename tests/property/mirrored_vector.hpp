#pragma once

#include <bit>
#include <cstdint>
#include <ostream>
#include <vector>

#include "property/reference/vector_reference.hpp"
#include "property/reports_pass.hpp"
#include "zktarn/vector/vector_type.hpp"

/// The same sparse vector twice: a record of the library, in blocks with guard values around each
/// array, and a vector of the reference.

namespace zktarn::testing {

using vector_type::vector;

/// Which arrays a vector has.
struct form {
    bool coef = true;
    bool ind = true;
    bool elm = true;

    bool marks_mode() const { return elm; }
    bool list_mode() const { return !elm && ind; }
};

/// Equal bit for bit, or both NaN.
inline bool same_bits(double a, double b) {
    return std::bit_cast<std::uint64_t>(a) == std::bit_cast<std::uint64_t>(b) || (a != a && b != b);
}

class mirrored_vector {
public:
    mirrored_vector(std::int32_t n, form arrays)
        : capacity(n), coef_(storage<double>(n, coef_guard)), ind_(storage<std::int32_t>(n, guard)),
          elm_(storage<std::int32_t>(n, guard)) {
        if (arrays.coef) {
            attach(record.coef, coef_, 0.0);
            mirror.coef.emplace(static_cast<std::size_t>(n) + 1, 0.0);
        }
        if (arrays.ind) {
            attach(record.ind, ind_, 0);
            mirror.ind.emplace(static_cast<std::size_t>(n) + 1, 0);
        }
        if (arrays.elm) {
            attach(record.elm, elm_, 0);
            mirror.elm.emplace(static_cast<std::size_t>(n) + 1, 0);
        }
    }

    mirrored_vector(const mirrored_vector&) = delete;
    mirrored_vector& operator=(const mirrored_vector&) = delete;

    // Setters that change both vectors.
    void set_coef(std::int32_t j, double value) {
        record.coef(j) = value;
        mirror.c(j) = value;
    }
    void set_ind(std::int32_t k, std::int32_t j) {
        record.ind(k) = j;
        mirror.i(k) = j;
    }
    void set_elm(std::int32_t j, std::int32_t mark) {
        record.elm(j) = mark;
        mirror.m(j) = mark;
    }
    void set_nz(std::int32_t nz) {
        record.nz = nz;
        mirror.nz = nz;
    }

    /// Whether both have the same count, list order, coefficients bit for bit, and marks, and all
    /// guard values are unchanged.
    bool agrees() const {
        return record.nz == mirror.nz && list_agrees() && coef_agrees() && marks_agree() &&
               guarded(coef_, coef_guard) && guarded(ind_, guard) && guarded(elm_, guard);
    }

    std::int32_t capacity;
    vector record;
    reference::sparse_vector mirror;

private:
    static constexpr std::int32_t guard = 0x5A5A5A5A;
    static constexpr double coef_guard = 123456.789;
    static constexpr std::size_t margin = 8;

    template <class T>
    static std::vector<T> storage(std::int32_t n, T filling) {
        return std::vector<T>(static_cast<std::size_t>(n) + 2 * margin, filling);
    }

    template <class T>
    void attach(array_1d<T>& array, std::vector<T>& block, T value) const {
        array = {block.data() + margin, {capacity}, {1}};
        for (std::int32_t k = 1; k <= capacity; ++k) {
            array(k) = value;
        }
    }

    template <class T>
    static bool guarded(const std::vector<T>& block, T filling) {
        for (std::size_t i = 0; i < margin; ++i) {
            if (block[i] != filling || block[block.size() - 1 - i] != filling) {
                return false;
            }
        }
        return true;
    }

    bool list_agrees() const {
        if (!record.ind.present()) {
            return true;
        }
        for (std::int32_t k = 1; k <= record.nz; ++k) {
            if (record.ind(k) != mirror.i(k)) {
                return false;
            }
        }
        return true;
    }

    bool coef_agrees() const {
        if (!record.coef.present()) {
            return true;
        }
        for (std::int32_t j = 1; j <= capacity; ++j) {
            if (!same_bits(record.coef(j), mirror.c(j))) {
                return false;
            }
        }
        return true;
    }

    bool marks_agree() const {
        if (!record.elm.present()) {
            return true;
        }
        for (std::int32_t j = 1; j <= capacity; ++j) {
            if (record.elm(j) != mirror.m(j)) {
                return false;
            }
        }
        return true;
    }

    std::vector<double> coef_;
    std::vector<std::int32_t> ind_;
    std::vector<std::int32_t> elm_;
};

} // namespace zktarn::testing
