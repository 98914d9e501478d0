#pragma once

#include <cstdint>

#include "via.h"
#include "zktarn/types.hpp"

namespace zktarn::random {

using rng_state = ::zktarn_rng_state;
using saved_state = ::zktarn_saved_state;

inline flag instantiaterng(rng_state& rng, const std::int32_t& seed) {
    return via_instantiaterng(&rng, seed);
}
inline void deleterng(rng_state& rng) {
    via_deleterng(&rng);
}
inline double rand_number(const rng_state& rng) {
    return via_rand_number(&rng);
}
inline flag getrngstate(const rng_state& rng, saved_state& state) {
    return via_getrngstate(&rng, &state);
}
inline void setrngstate(const rng_state& rng, const saved_state& state) {
    via_setrngstate(&rng, state);
}
inline void deleterngstate(const saved_state& state) {
    via_deleterngstate(state);
}
inline void _rng_stateinitialise(rng_state& first, const std::int32_t& count) {
    via_rng_stateinitialise(&first, count);
}

} // namespace zktarn::random
