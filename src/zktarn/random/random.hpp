#pragma once

#include <cstdint>

#include "zktarn/export.hpp"
#include "zktarn/types.hpp"

/// Random numbers from the host's generators.
///
/// `instantiaterng` creates a generator, `rand_number` draws from it, `deleterng` deletes it.
/// `getrngstate` takes a snapshot of a generator's state and `setrngstate` restores it, any number
/// of times; the caller owns a snapshot until `deleterngstate`. The host decides which engine a
/// generator uses and from which interval it draws.
///
/// The module has no state: each procedure makes at most one host call. Different threads may use
/// different generators at once; one generator must not be used by two threads at once.

namespace zktarn::random {

/// A generator of the host, or none. A copy of the record names the same generator: delete it
/// through one of them only.
struct rng_state {
    /// The host's handle; null if there is no generator.
    void* generator = nullptr;
};

/// A snapshot of a generator's state: the host's handle, or null.
using saved_state = void*;

/// Creates a generator.
///
/// @param rng   out. Overwritten: a generator it held is not deleted.
/// @param seed  in. Any value; the host decides which sequence it selects.
///
/// Returns 1. Returns 0, with a null handle in `rng`, if the host cannot create a generator.
[[nodiscard]] ZKTARN_API flag instantiaterng(rng_state& rng, const std::int32_t& seed) noexcept;

/// Deletes a generator.
///
/// @param rng  in/out. Its handle is null afterwards. If it is null before, nothing happens.
ZKTARN_API void deleterng(rng_state& rng) noexcept;

/// Draws the next number, uniformly distributed.
///
/// @param rng  in.
///
/// Returns the number; 1.7976931348623157e308, the largest real, if `rng` holds no generator or the
/// host writes no number.
ZKTARN_API double rand_number(const rng_state& rng) noexcept;

/// Takes a snapshot of a generator's state.
///
/// @param rng    in. Its handle is passed to the host, null or not.
/// @param state  out. Overwritten: a snapshot it held is not deleted.
///
/// Returns 1. Returns 0, with a null `state`, if the host creates no snapshot.
[[nodiscard]] ZKTARN_API flag getrngstate(const rng_state& rng, saved_state& state) noexcept;

/// Restores a generator's state from a snapshot. Does nothing if either handle is null.
///
/// @param rng    in.
/// @param state  in. Stays valid, and can be restored again.
ZKTARN_API void setrngstate(const rng_state& rng, const saved_state& state) noexcept;

/// Deletes a snapshot. Does nothing if the handle is null.
///
/// @param state  in. Not set to null, unlike the handle in `deleterng`: do not use it again.
ZKTARN_API void deleterngstate(const saved_state& state) noexcept;

/// Sets the handles of consecutive records to null. Deletes no generator.
///
/// @param first  out. The first of the records.
/// @param count  in. Number of records; below 1 nothing is written.
ZKTARN_API_INLINE void _rng_stateinitialise(rng_state& first, const std::int32_t& count) noexcept {
    rng_state* const records = &first;
    const std::int64_t n = count;
    for (std::int64_t i = 0; i < n; ++i) {
        records[i].generator = nullptr;
    }
}

} // namespace zktarn::random
