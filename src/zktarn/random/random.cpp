#include "zktarn/random/random.hpp"

#include <limits>

#include "zktarn/host/libzkoptimutil.hpp"

namespace zktarn::random {

flag instantiaterng(rng_state& rng, const std::int32_t& seed) noexcept {
    const std::int32_t start = seed;
    rng.generator = nullptr;
    rng.generator = host::instantiateRngOptim(start);
    return rng.generator != nullptr ? 1 : 0;
}

void deleterng(rng_state& rng) noexcept {
    if (rng.generator == nullptr) {
        return;
    }
    host::deleteRngOptim(rng.generator);
    rng.generator = nullptr;
}

double rand_number(const rng_state& rng) noexcept {
    // The result if the host writes nothing.
    double number = std::numeric_limits<double>::max();
    if (rng.generator != nullptr) {
        const std::int64_t count = 1;
        host::getRandUniformOptim(rng.generator, &number, &count);
    }
    return number;
}

flag getrngstate(const rng_state& rng, saved_state& state) noexcept {
    void* const generator = rng.generator;
    state = nullptr;
    state = host::getRngStateOptim(generator);
    return state != nullptr ? 1 : 0;
}

void setrngstate(const rng_state& rng, const saved_state& state) noexcept {
    if (rng.generator == nullptr || state == nullptr) {
        return;
    }
    host::setRngStateOptim(rng.generator, state);
}

void deleterngstate(const saved_state& state) noexcept {
    if (state == nullptr) {
        return;
    }
    host::deleteRngStateOptim(state);
}

} // namespace zktarn::random
