// The inline procedures on one element, in a caller's loop.
#include "support/raw_vector.hpp"
#include "support/vector_pairs.hpp"

namespace zktarn::bench {

namespace {

using vector_mod::vector;

[[gnu::noinline]] double sum_at(const vector& x, const vector& y) {
    double sum = 0.0;
    for (std::int32_t k = 1, count = vector_mod::vector_get_nz(y); k <= count; ++k) {
        sum += vector_mod::vector_get_coef(x, vector_mod::vector_get_ind(y, k));
    }
    return sum;
}

[[gnu::noinline]] void store_at(vector& x, const vector& y) {
    for (std::int32_t k = 1, count = vector_mod::vector_get_nz(y); k <= count; ++k) {
        const std::int32_t j = vector_mod::vector_get_ind(y, k);
        vector_mod::vector_add_nz(x, j, y.coef(j));
    }
}

std::vector<contender> getting(const shape& like, const pool& problems) {
    return {on<library_pair>("library", like, problems,
                             [](library_pair& p) { benchmark::DoNotOptimize(sum_at(*p.x, *p.y)); }),
            on<raw_pair>("raw", like, problems,
                         [](raw_pair& p) { benchmark::DoNotOptimize(raw_sum_at(p.x, p.y)); })};
}

std::vector<contender> adding(const shape& like, const pool& problems) {
    return {
        on<library_pair>("library", like, problems, [](library_pair& p) { store_at(*p.x, *p.y); }),
        on<raw_pair>("raw", like, problems, [](raw_pair& p) { raw_store_at(p.x, p.y); })};
}

} // namespace

void register_comparisons() {
    for (const shape& like : all_shapes(listing::shuffled)) {
        const pool problems = make_pool(like, relation::overlapping);
        compare("get_coef_loop/" + like.name(), getting(like, problems), like.most_repetitions());
        compare("add_nz_loop/" + like.name(), adding(like, problems), like.most_repetitions());
    }
}

} // namespace zktarn::bench
