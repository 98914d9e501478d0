// The values that a debugger prints at the breakpoint in `look`.
#include <cstdint>

#include "zktarn/callbacks/stored_value.hpp"
#include "zktarn/random/random.hpp"
#include "zktarn/vector/vector_mod.hpp"
#include "zktarn/zktarn_util.hpp"

using zktarn::vector_type::vector;
using zktarn::vector_type::vector_alloc;

extern "C" [[gnu::noinline]] void look() {
    asm volatile("" ::: "memory");
}

namespace {

vector* filled(zktarn::flag no_coef, zktarn::flag no_ind, zktarn::flag no_elm) {
    vector* v = nullptr;
    if (vector_alloc(v, 8, no_coef, no_ind, no_elm) == 0) {
        return nullptr;
    }
    for (std::int64_t j = 0; j < 8; ++j) {
        if (v->coef.present()) {
            v->coef.data[j] = 0.0;
        }
    }
    const std::int32_t listed[] = {2, 3, 8};
    const double values[] = {2.0, 9.0, -6.0};
    for (int k = 0; k < 3; ++k) {
        const std::int32_t j = listed[k];
        if (v->coef.present()) {
            v->coef(j) = values[k];
        }
        if (v->ind.present()) {
            v->ind(k + 1) = j;
            v->nz = k + 1;
        }
        if (v->elm.present()) {
            v->elm(j) = 1;
        }
    }
    return v;
}

} // namespace

int main() {
    vector* x = filled(0, 0, 0);
    vector* list = filled(0, 0, 1);
    vector* dense = filled(0, 1, 1);
    vector* set = filled(1, 0, 0);
    vector* unmarked = filled(0, 0, 0);
    unmarked->elm(3) = 0;
    vector* wrong = filled(0, 0, 0);
    wrong->nz = 9;
    vector* stray = filled(0, 0, 0);
    stray->ind(2) = 99;
    vector bare;

    zktarn::array_1d<double> absent;
    std::int32_t numbers[] = {1, 2, 3, 4, 5, 6};
    const zktarn::array_1d<std::int32_t> array{numbers, {3}, {1}};
    const zktarn::array_2d<std::int32_t> matrix{numbers, {2, 3}, {1, 1}};
    const double tolerance = 0.5;
    const zktarn::optional_ref<const double> given(tolerance);
    const zktarn::optional_ref<const double> left_out;
    zktarn::random::rng_state idle;
    const zktarn::random::rng_state rng{reinterpret_cast<void*>(0x40)};
    zktarn::callbacks_type_util::cbdatalist empty;
    zktarn::callbacks_type_util::cbdatalist kept;
    if (!zktarn::callbacks_type_util::store(kept, 2.5)) {
        return 1;
    }
    kept.first_handle = 7;
    look();
    wrong->nz = 3;
    for (vector* each : {x, list, dense, set, unmarked, wrong, stray}) {
        zktarn::vector_type::vector_free(each);
    }
    static_cast<void>(bare);
    static_cast<void>(absent);
    static_cast<void>(array);
    static_cast<void>(matrix);
    static_cast<void>(given);
    static_cast<void>(left_out);
    static_cast<void>(idle);
    static_cast<void>(rng);
    static_cast<void>(empty);
    return 0;
}
