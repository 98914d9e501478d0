#include "zktarn/random/random.hpp"

#include "arguments.hpp"
#include "records.hpp"

using namespace zktarn;
using c::cpp;

zktarn_flag zktarn_instantiaterng(zktarn_rng_state* rng, int32_t seed) {
    return c::any_null(rng) ? 0 : random::instantiaterng(cpp(rng), seed);
}

void zktarn_deleterng(zktarn_rng_state* rng) {
    if (!c::any_null(rng)) {
        random::deleterng(cpp(rng));
    }
}

double zktarn_rand_number(const zktarn_rng_state* rng) {
    return c::any_null(rng) ? 0.0 : random::rand_number(cpp(rng));
}

zktarn_flag zktarn_getrngstate(const zktarn_rng_state* rng, zktarn_saved_state* state) {
    return c::any_null(rng, state) ? 0 : random::getrngstate(cpp(rng), *state);
}

void zktarn_setrngstate(const zktarn_rng_state* rng, zktarn_saved_state state) {
    if (!c::any_null(rng)) {
        random::setrngstate(cpp(rng), state);
    }
}

void zktarn_deleterngstate(zktarn_saved_state state) {
    random::deleterngstate(state);
}

void zktarn_rng_stateinitialise(zktarn_rng_state* first, int32_t count) {
    if (c::has_records(first, count)) {
        random::_rng_stateinitialise(cpp(first), count);
    }
}
