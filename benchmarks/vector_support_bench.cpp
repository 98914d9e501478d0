// Operations on index sets, which touch no coefficient.
#include <algorithm>

#include "support/raw_vector.hpp"
#include "support/vector_pairs.hpp"

namespace zktarn::bench {

namespace {

/// Sorted lists of indices, and space for the result.
struct sorted_lists {
    explicit sorted_lists(std::int32_t) {}
    void load(const sparse_problem& source) {
        load(x, source.x);
        load(y, source.y);
        result.resize(x.size() + y.size());
    }
    void sym_diff() {
        const auto end =
            std::set_symmetric_difference(x.begin(), x.end(), y.begin(), y.end(), result.begin());
        size = end - result.begin();
    }

    std::vector<std::int32_t> x;
    std::vector<std::int32_t> y;
    std::vector<std::int32_t> result;
    std::ptrdiff_t size = 0;

private:
    static void load(std::vector<std::int32_t>& v, const std::vector<entry>& entries) {
        v.clear();
        for (const entry& each : entries) {
            v.push_back(each.index);
        }
    }
};

std::vector<contender> differing(const shape& like, const pool& problems) {
    std::vector<contender> contenders;
    contenders.push_back(on<library_pair>("library", like, problems, [](library_pair& p) {
        vector_mod::vectors_calc_sym_diff(*p.x, *p.y);
    }));
    contenders.push_back(
        on<raw_pair>("limit", like, problems, [](raw_pair& p) { limit_sym_diff(p.x, p.y); }));
    contenders.push_back(
        on<raw_pair>("ideal", like, problems, [](raw_pair& p) { raw_sym_diff(p.x, p.y); }));
    if (like.order == listing::sorted) {
        contenders.push_back(
            on<sorted_lists>("std", like, problems, [](sorted_lists& p) { p.sym_diff(); }));
    }
    return contenders;
}

std::vector<contender> clearing(const shape& like, const pool& problems) {
    return {on<library_pair>("library", like, problems,
                             [](library_pair& p) { vector_mod::vector_clear(*p.x); }),
            on<raw_pair>("ideal", like, problems, [](raw_pair& p) { raw_clear(p.x); })};
}

} // namespace

void register_comparisons() {
    for (const listing order : {listing::shuffled, listing::sorted}) {
        for (const shape& like : all_shapes(order)) {
            compare("sym_diff/" + like.name(),
                    differing(like, make_pool(like, relation::overlapping)),
                    like.most_repetitions());
        }
    }
    for (const shape& like : all_shapes(listing::shuffled)) {
        compare("clear/" + like.name(), clearing(like, make_pool(like, relation::overlapping)),
                like.most_repetitions());
    }
}

} // namespace zktarn::bench
