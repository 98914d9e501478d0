#pragma once

#include <cstdint>
#include <initializer_list>
#include <vector>

#include <gtest/gtest.h>

#include "property/reports_pass.hpp"
#include "zktarn/vector/vector_type.hpp"

namespace zktarn::testing {

/// The index list of a vector, in order.
inline std::vector<std::int32_t> listing(const vector_type::vector& v) {
    return {v.ind.data, v.ind.data + v.nz};
}

/// A vector with coefficients and list cleared, freed by the destructor.
class made_vector {
public:
    explicit made_vector(std::int32_t n, flag no_ind = 0, flag no_elm = 0, flag no_coef = 0) {
        EXPECT_EQ(vector_type::vector_alloc(record_, n, no_coef, no_ind, no_elm), 1);
        for (std::int32_t j = 1; j <= n; ++j) {
            if (record_->coef.present()) {
                record_->coef(j) = 0.0;
            }
            if (record_->ind.present()) {
                record_->ind(j) = 0;
            }
        }
    }
    ~made_vector() { vector_type::vector_free(record_); }
    made_vector(const made_vector&) = delete;
    made_vector& operator=(const made_vector&) = delete;

    vector_type::vector& operator*() const { return *record_; }
    vector_type::vector* operator->() const { return record_; }

    /// Appends these indices to the list and marks them if the vector has marks.
    void list(std::initializer_list<std::int32_t> indices) {
        for (const std::int32_t j : indices) {
            record_->ind(++record_->nz) = j;
            if (record_->elm.present()) {
                record_->elm(j) = 1;
            }
        }
    }

    /// Lists these indices with these coefficients.
    struct entry {
        std::int32_t index;
        double coefficient;
    };
    void entries(std::initializer_list<entry> all) {
        for (const entry& each : all) {
            list({each.index});
            record_->coef(each.index) = each.coefficient;
        }
    }

private:
    vector_type::vector* record_ = nullptr;
};

} // namespace zktarn::testing
