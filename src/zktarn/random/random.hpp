#pragma once

#include <cstdint>
#include <type_traits>

#include "zktarn/export.hpp"
#include "zktarn/types.hpp"

/// Random numbers from generators that the host keeps.
///
/// A generator is made by `instantiaterng`, drawn from by `rand_number`, and taken back by
/// `deleterng`. Between draws, `getrngstate` takes a snapshot of its whole state and `setrngstate`
/// restores one, as often as wanted; each snapshot is the caller's until `deleterngstate`. Which
/// engine it is and in which interval it draws is the host's.
///
/// Nothing is kept here: each procedure is one call of the host at most. Different generators may
/// be used by different threads; one generator by one thread at a time.

namespace zktarn::random {

/// A generator of the host, or none. A copy of the record means the same generator: delete one of
/// them only.
struct rng_state {
    /// The host's handle; null when there is no generator.
    void* generator = nullptr;
};

static_assert(std::is_trivially_copyable_v<rng_state>);
static_assert(sizeof(rng_state) == sizeof(void*));

/// A snapshot of a generator's state: the host's handle; null when there is none.
using saved_state = void*;

/// Makes a new generator.
///
/// @param rng   out. A generator that it held is not taken back, and is lost: `deleterng` first.
/// @param seed  in. Any value; what it starts is the host's.
///
/// Returns 1; or 0, with a null handle in `rng`, when the host can make none.
ZKTARN_API flag instantiaterng(rng_state& rng, const std::int32_t& seed) noexcept;

/// Takes a generator back.
///
/// @param rng  in/out. Its handle is null afterwards; where it is null before, nothing happens.
ZKTARN_API void deleterng(rng_state& rng) noexcept;

/// The next uniform number of a generator; 1.7976931348623157e308, the largest real, where there is
/// none, and where the host does not deliver one.
///
/// @param rng  in.
ZKTARN_API double rand_number(const rng_state& rng) noexcept;

/// Takes a snapshot of a generator's state.
///
/// @param rng    in. Its handle goes to the host as it is, null included.
/// @param state  out. What it held is not taken back.
///
/// Returns 1; or 0, with `state` null, when the host delivers none.
ZKTARN_API flag getrngstate(const rng_state& rng, saved_state& state) noexcept;

/// Puts a generator back into a saved state. Where one of the two is null, nothing happens.
///
/// @param rng    in.
/// @param state  in. Stays valid and the caller's, and can be restored again.
ZKTARN_API void setrngstate(const rng_state& rng, const saved_state& state) noexcept;

/// Takes a snapshot back.
///
/// @param state  in. Where it is null, nothing happens. It is not set to null, unlike the handle in
///               `deleterng`: drop it, and do not take it back twice.
ZKTARN_API void deleterngstate(const saved_state& state) noexcept;

/// Gives consecutive records their default, a null handle. Takes nothing back.
///
/// @param first  out. The first of the records.
/// @param count  in. Number of records; below 1 nothing is touched.
ZKTARN_API_INLINE void _rng_stateinitialise(rng_state& first, const std::int32_t& count) noexcept {
    rng_state* const records = &first;
    const std::int32_t n = count;
    for (std::int32_t i = 0; i < n; ++i) {
        records[i].generator = nullptr;
    }
}

} // namespace zktarn::random
