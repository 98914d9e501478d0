#pragma once

#include <algorithm>
#include <vector>

#include "support/compare.hpp"
#include "support/sparse_problem.hpp"

#ifdef ZKTARN_BENCH_COINUTILS
#include <CoinIndexedVector.hpp>
#endif
#ifdef ZKTARN_BENCH_EIGEN
#include <Eigen/SparseCore>
#endif

/// Sparse vectors of other libraries. A comparison leaves out a peer that is not installed.

namespace zktarn::bench {

#ifdef ZKTARN_BENCH_COINUTILS
inline constexpr const char* coinutils_state = "compared with";

/// A dense array whose nonzeros are listed; an entry that is zero is not a member.
struct coin_pair {
    explicit coin_pair(std::int32_t n) {
        x.reserve(n + 1);
        y.reserve(n + 1);
    }
    void load(const sparse_problem& source) {
        load(x, source.x);
        load(y, source.y);
    }
    /// x += beta * y, then a pass that drops what is smaller than a tolerance.
    void combine(double beta) {
        const double* const values = y.denseVector();
        const int* const indices = y.getIndices();
        for (int k = 0, count = y.getNumElements(); k < count; ++k) {
            x.quickAdd(indices[k], beta * values[indices[k]]);
        }
        x.clean(1e-12);
    }

    CoinIndexedVector x;
    CoinIndexedVector y;

private:
    static void load(CoinIndexedVector& v, const std::vector<entry>& entries) {
        v.clear();
        for (const entry& each : entries) {
            v.insert(each.index, each.value);
        }
    }
};
#else
inline constexpr const char* coinutils_state = "not found when this was built";
#endif

#ifdef ZKTARN_BENCH_EIGEN
inline constexpr const char* eigen_state = "compared with";

/// Sorted indices and their values; every operation makes a new vector.
struct eigen_pair {
    using vector = Eigen::SparseVector<double>;

    explicit eigen_pair(std::int32_t n) : x(n + 1), y(n + 1), result(n + 1) {}
    void load(const sparse_problem& source) {
        load(x, source.x);
        load(y, source.y);
        result.reserve(x.nonZeros() + y.nonZeros());
    }
    /// The sum, without zeros.
    void combine(double beta) {
        result = x + beta * y;
        result.prune(0.0);
    }

    vector x;
    vector y;
    vector result;

private:
    static void load(vector& v, std::vector<entry> entries) {
        std::sort(entries.begin(), entries.end(),
                  [](const entry& a, const entry& b) { return a.index < b.index; });
        v.setZero();
        for (const entry& each : entries) {
            v.insertBack(each.index) = each.value;
        }
    }
};
#else
inline constexpr const char* eigen_state = "not found when this was built";
#endif

/// Prints the installed peers in the lines above the table.
inline void name_peers() {
    benchmark::AddCustomContext("CoinIndexedVector", coinutils_state);
    benchmark::AddCustomContext("Eigen", eigen_state);
}

} // namespace zktarn::bench
