// x := alpha * x + beta * y of vectors with marks.
#include "support/peers.hpp"
#include "support/raw_vector.hpp"
#include "support/vector_pairs.hpp"

namespace zktarn::bench {

namespace {

constexpr double tolerance = 1e-9;
constexpr double alpha = 3.0;
constexpr double beta = -1.0;

std::vector<contender> combining(const shape& like, const pool& problems) {
    std::vector<contender> contenders;
    contenders.push_back(on<library_pair>("library", like, problems, [](library_pair& p) {
        vector_mod::vectors_combine(*p.x, *p.y, 1.0, beta, tolerance);
    }));
    contenders.push_back(
        on<raw_pair>("ideal", like, problems, [](raw_pair& p) { raw_combine(p.x, p.y, beta); }));
    contenders.push_back(on<raw_pair>("ideal_prefetching", like, problems, [](raw_pair& p) {
        raw_combine_prefetching(p.x, p.y, beta);
    }));
    contenders.push_back(on<raw_pair>("ideal_reading_marks", like, problems, [](raw_pair& p) {
        raw_combine_reading_marks(p.x, p.y, beta);
    }));
#ifdef ZKTARN_BENCH_COINUTILS
    contenders.push_back(
        on<coin_pair>("CoinIndexedVector", like, problems, [](coin_pair& p) { p.combine(beta); }));
#endif
#ifdef ZKTARN_BENCH_EIGEN
    contenders.push_back(
        on<eigen_pair>("Eigen", like, problems, [](eigen_pair& p) { p.combine(beta); }));
#endif
    return contenders;
}

std::vector<contender> scaling_and_combining(const shape& like, const pool& problems) {
    return {on<library_pair>("library", like, problems,
                             [](library_pair& p) {
                                 vector_mod::vectors_combine(*p.x, *p.y, alpha, beta, tolerance);
                             }),
            on<raw_pair>("ideal", like, problems,
                         [](raw_pair& p) { raw_scale_and_combine(p.x, p.y, alpha, beta); })};
}

} // namespace

void register_comparisons() {
    name_peers();
    for (const shape& like : all_shapes()) {
        const pool problems = make_pool(like, relation::overlapping);
        compare("combine/" + like.name(), combining(like, problems), like.most_repetitions());
        compare("scale_and_combine/" + like.name(), scaling_and_combining(like, problems),
                like.most_repetitions());
    }
}

} // namespace zktarn::bench
