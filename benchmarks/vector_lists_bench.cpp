// Vectors without marks, where membership is a search of the list.
#include "support/raw_vector.hpp"
#include "support/vector_pairs.hpp"

namespace zktarn::bench {

namespace {

std::vector<contender> combining(const shape& like, const pool& problems) {
    return {on<library_lists>(
                "library", like, problems,
                [](library_lists& p) { vector_mod::vectors_combine(*p.x, *p.y, 1.0, -1.0, 1e-9); }),
            on<raw_pair>("scalar_search", like, problems,
                         [](raw_pair& p) { raw_combine_lists(p.x, p.y, -1.0); })};
}

} // namespace

void register_comparisons() {
    for (const listing order : {listing::shuffled, listing::sorted}) {
        for (const bool trained : {false, true}) {
            const shape like{100'000, 10, order, trained};
            compare("list_combine/" + like.name(),
                    combining(like, make_pool(like, relation::overlapping)),
                    like.most_repetitions());
        }
    }
}

} // namespace zktarn::bench
