// Operations that read every listed coefficient.
#include "support/raw_vector.hpp"
#include "support/vector_pairs.hpp"

namespace zktarn::bench {

namespace {

constexpr double tolerance = 1e-9;

std::vector<contender> reducing(const shape& like, const pool& problems) {
    return {on<library_pair>("library", like, problems,
                             [](library_pair& p) { vector_mod::vector_mod2(*p.x, tolerance); }),
            on<raw_pair>("limit", like, problems, [](raw_pair& p) { limit_mod2(p.x); }),
            on<raw_pair>("ideal", like, problems, [](raw_pair& p) { raw_mod2(p.x); }),
            on<raw_pair>("fmod", like, problems, [](raw_pair& p) { raw_mod2_by_fmod(p.x); })};
}

std::vector<contender> dropping_zeros(const shape& like, const pool& problems) {
    return {
        on<library_pair>("library", like, problems,
                         [](library_pair& p) { vector_mod::vector_rem_zeros(*p.x); }),
        on<raw_pair>("limit", like, problems, [](raw_pair& p) { limit_drop_zeros(p.x); }),
        on<raw_pair>("ideal", like, problems, [](raw_pair& p) { raw_drop_zeros(p.x); }),
        on<raw_pair>("ideal_marks", like, problems, [](raw_pair& p) { marked_drop_zeros(p.x); })};
}

/// Identical vectors, the slowest case of the comparison.
std::vector<contender> comparing(const shape& like, const pool& problems) {
    return {on<library_pair>("library", like, problems,
                             [](library_pair& p) {
                                 benchmark::DoNotOptimize(
                                     vector_mod::vectors_are_identical(*p.x, *p.y, tolerance));
                             }),
            on<raw_pair>("limit", like, problems,
                         [](raw_pair& p) {
                             benchmark::DoNotOptimize(limit_identical(p.x, p.y, tolerance));
                         }),
            on<raw_pair>(
                "ideal", like, problems,
                [](raw_pair& p) { benchmark::DoNotOptimize(raw_identical(p.x, p.y, tolerance)); }),
            on<raw_pair>("ideal_marks", like, problems, [](raw_pair& p) {
                benchmark::DoNotOptimize(marked_identical(p.x, p.y, tolerance));
            })};
}

} // namespace

void register_comparisons() {
    for (const shape& like : all_shapes(listing::shuffled)) {
        const pool integers = make_pool(like, relation::overlapping);
        compare("mod2/" + like.name(), reducing(like, integers), like.most_repetitions());
        const pool with_zeros = make_pool(like, relation::with_zeros);
        compare("rem_zeros/" + like.name(), dropping_zeros(like, with_zeros),
                like.most_repetitions());
        const pool twins = make_pool(like, relation::twins);
        compare("identical/" + like.name(), comparing(like, twins), like.most_repetitions());
    }
}

} // namespace zktarn::bench
