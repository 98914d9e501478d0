// x := alpha * x + beta * y of vectors with marks.
#include "support/peers.hpp"
#include "support/raw_vector.hpp"
#include "support/vector_pairs.hpp"

namespace zktarn::bench {

namespace {

constexpr double tolerance = 1e-9;
constexpr double beta = -1.0;

/// Peers are left out when alpha is not 1, because they would need a separate pass for scaling.
std::vector<contender> combining(const shape& like, const pool& problems, double alpha) {
    std::vector<contender> contenders;
    contenders.push_back(on<library_pair>("library", like, problems, [=](library_pair& p) {
        vector_mod::vectors_combine(*p.x, *p.y, alpha, beta, tolerance);
    }));
    contenders.push_back(on<raw_pair>("limit", like, problems,
                                      [=](raw_pair& p) { limit_combine(p.x, p.y, alpha, beta); }));
    contenders.push_back(on<raw_pair>("ideal", like, problems,
                                      [=](raw_pair& p) { raw_combine(p.x, p.y, alpha, beta); }));
    if (like.entries() <= 100'000) {
        contenders.push_back(on<raw_pair>("ideal_marks", like, problems, [=](raw_pair& p) {
            marked_combine(p.x, p.y, alpha, beta);
        }));
    }
    if (alpha != 1.0) {
        return contenders;
    }
#ifdef ZKTARN_BENCH_COINUTILS
    contenders.push_back(
        on<coin_pair>("Coin", like, problems, [](coin_pair& p) { p.combine(beta); }));
#endif
#ifdef ZKTARN_BENCH_EIGEN
    if (like.entries() <= 1'000'000) {
        contenders.push_back(
            on<eigen_pair>("Eigen", like, problems, [](eigen_pair& p) { p.combine(beta); }));
    }
#endif
    return contenders;
}

void compare_combinations(const shape& like, double alpha) {
    const std::string name = alpha == 1.0 ? "combine/" : "scale_and_combine/";
    compare(name + like.name(), combining(like, make_pool(like, relation::overlapping), alpha),
            like.most_repetitions());
}

} // namespace

void register_comparisons() {
    name_peers();
    // Full vectors of 10^7 entries take seconds in each round, so only for alpha 1.
    for (const shape& like : all_shapes(listing::shuffled, 10'000'000)) {
        compare_combinations(like, 1.0);
    }
    for (const shape& like : all_shapes(listing::shuffled)) {
        compare_combinations(like, 3.0);
    }
    for (const listing order : {listing::shuffled, listing::sorted}) {
        compare_combinations(trained_shape(order), 1.0);
    }
}

} // namespace zktarn::bench
