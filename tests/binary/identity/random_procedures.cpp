#include <cstdint>
#include <cstdlib>

#include "binary/identity/procedures.hpp"

// The numbers come from the stand-in host, whose generators are the same on every platform.

namespace zktarn::identity {

namespace {

using namespace zktarn::random;

void add_numbers(const rng_state& rng, std::uint64_t count, digest& results) {
    for (std::uint64_t i = 0; i < count; ++i) {
        results.computed(rand_number(rng));
    }
}

void call_instantiate(draws& draw, digest& results) {
    const std::int32_t seed = draw.integer();
    rng_state rng;
    results.integer(instantiaterng(rng, seed));
    add_numbers(rng, 3, results);
    deleterng(rng);
}

/// A new generator. The stand-in host accepts every seed.
rng_state created(std::int32_t seed) {
    rng_state rng;
    if (instantiaterng(rng, seed) == 0) {
        std::abort();
    }
    return rng;
}

void call_delete(draws& draw, digest& results) {
    const std::int32_t seed = draw.integer();
    rng_state rng = created(seed);
    deleterng(rng);
    results.integer(rng.generator == nullptr);
    add_numbers(rng, 1, results);
}

void call_rand_number(draws& draw, digest& results) {
    const std::int32_t seed = draw.integer();
    const std::uint64_t count = draw.below(50);
    rng_state rng = created(seed);
    add_numbers(rng, count, results);
    deleterng(rng);
}

/// Draws, takes a snapshot, draws, restores the snapshot and draws the same numbers again.
void call_with_snapshot(draws& draw, digest& results) {
    const std::int32_t seed = draw.integer();
    const std::uint64_t count = draw.below(8);
    rng_state rng = created(seed);
    add_numbers(rng, count, results);
    saved_state state = nullptr;
    results.integer(getrngstate(rng, state));
    add_numbers(rng, count, results);
    setrngstate(rng, state);
    add_numbers(rng, 2 * count, results);
    deleterngstate(state);
    add_numbers(rng, 1, results);
    deleterng(rng);
}

void call_initialise(draws& draw, digest& results) {
    rng_state records[4];
    for (rng_state& each : records) {
        each.generator = records;
    }
    const std::int32_t count = draw.between(-1, 4);
    _rng_stateinitialise(records[0], count);
    for (const rng_state& each : records) {
        results.integer(each.generator == nullptr);
    }
}

constexpr int calls = 100;

constexpr procedure procedures[] = {
    {"random.instantiaterng", call_instantiate, calls},
    {"random.deleterng", call_delete, calls},
    {"random.rand_number", call_rand_number, calls},
    {"random.getrngstate", call_with_snapshot, calls},
    {"random.setrngstate", call_with_snapshot, calls},
    {"random.deleterngstate", call_with_snapshot, calls},
    {"random._rng_stateinitialise", call_initialise, calls},
};

} // namespace

std::span<const procedure> random_procedures() {
    return procedures;
}

} // namespace zktarn::identity
