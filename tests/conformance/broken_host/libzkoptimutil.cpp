#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <memory>
#include <mutex>
#include <set>
#include <thread>

#include "broken_host/broken_host.hpp"
#include "zktarn/host/libzkoptimutil.hpp"

namespace zktarn::host {

using broken_host::has_flaw;

// Memory
// -------------------------------------------------------------------------------------------

namespace {

// The distance of a block from its allocation, which lets a flaw misalign blocks.
constexpr std::size_t lead = 64;

std::mutex lock;
std::set<unsigned char*> live;

std::size_t offset() {
    return has_flaw("misaligned") ? lead + 4 : lead;
}

void* obtain(std::int64_t nbytes) {
    const auto size = static_cast<std::size_t>(nbytes) + lead + offset();
    auto* const raw = static_cast<unsigned char*>(std::malloc(size));
    if (raw == nullptr) {
        return nullptr;
    }
    live.insert(raw + offset());
    return raw + offset();
}

bool is_refused(std::int64_t nbytes) {
    static const auto first_thread = std::this_thread::get_id();
    return (has_flaw("odd_size") && nbytes == 7) ||
           (has_flaw("one_thread") && std::this_thread::get_id() != first_thread) ||
           nbytes > std::numeric_limits<std::int64_t>::max() / 2;
}

} // namespace

extern "C" {

void* qvMallocExOptim(std::int64_t nbytes) noexcept {
    alignas(64) static unsigned char same[2 << 20];
    const std::lock_guard guard(lock);
    if (has_flaw("overlapping") || (has_flaw("promises_all") && nbytes > (1 << 30))) {
        return same;
    }
    return is_refused(nbytes) ? nullptr : obtain(nbytes);
}

void qvFreeExOptim(void* address) noexcept {
    const std::lock_guard guard(lock);
    if (has_flaw("overlapping")) {
        return;
    }
    if (address == nullptr) {
        if (has_flaw("free_null")) {
            std::abort();
        }
        return;
    }
    auto* const block = static_cast<unsigned char*>(address);
    live.erase(block);
    if (has_flaw("free_clears") && !live.empty()) {
        **live.begin() = 0;
    }
    if (has_flaw("free_last_aborts") && live.empty()) {
        std::abort();
    }
    std::free(block - offset());
}
}

// Generators
// -------------------------------------------------------------------------------------------

namespace {

/// A counter, whose hash is the next number.
struct engine {
    std::uint64_t counter;
};

thread_local int made = 0;
std::uint64_t shared = 0;

double next(engine& e) {
    std::uint64_t& counter = has_flaw("shared_state") ? shared : e.counter;
    counter += 0x9E3779B97F4A7C15U;
    if (has_flaw("constant")) {
        return 0.5;
    }
    std::uint64_t z = counter;
    z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9U;
    z = (z ^ (z >> 27)) * 0x94D049BB133111EBU;
    return static_cast<double>((z ^ (z >> 31)) >> 11) * 0x1p-53;
}

std::uint64_t start(std::int32_t seed) {
    if (has_flaw("seed_ignored")) {
        return 0;
    }
    if (has_flaw("unseeded")) {
        return static_cast<std::uint64_t>(made);
    }
    return static_cast<std::uint64_t>(seed);
}

/// With the flaw, each thread after the first draws other numbers.
std::uint64_t thread_offset() {
    static int first = 0;
    thread_local const int own = first++;
    return has_flaw("thread_matters") ? static_cast<std::uint64_t>(own) : 0;
}

} // namespace

extern "C" {

void* instantiateRngOptim(std::int32_t seed) noexcept {
    ++made;
    if ((has_flaw("negative_seed") && seed < 0) || (has_flaw("delete_rng_keeps") && made > 500)) {
        return nullptr;
    }
    shared = start(seed);
    return new engine{start(seed) + thread_offset()};
}

void deleteRngOptim(void* generator) noexcept {
    const std::unique_ptr<engine> taken(static_cast<engine*>(generator));
}

void getRandUniformOptim(void* generator, double* values, const std::int64_t* count) noexcept {
    std::int64_t n = *count;
    if (n > 1) {
        n += has_flaw("draws_one_more") ? 1 : has_flaw("draws_one_less") ? -1 : 0;
    }
    for (std::int64_t i = 0; i < n; ++i) {
        values[i] = next(*static_cast<engine*>(generator));
    }
}

void* getRngStateOptim(void* generator) noexcept {
    if (generator == nullptr) {
        if (has_flaw("state_of_null")) {
            std::abort();
        }
        return nullptr;
    }
    if (has_flaw("no_snapshot")) {
        return nullptr;
    }
    auto& source = *static_cast<engine*>(generator);
    const engine copy = source;
    source.counter += has_flaw("snapshot_draws") ? 1U : 0U;
    return new engine(copy);
}

void setRngStateOptim(void* generator, void* state) noexcept {
    if (has_flaw("restores_nothing")) {
        return;
    }
    auto& saved = *static_cast<engine*>(state);
    *static_cast<engine*>(generator) = saved;
    saved.counter += has_flaw("snapshot_used_up") ? 1U : 0U;
}

void deleteRngStateOptim(void* state) noexcept {
    if (has_flaw("delete_state_aborts")) {
        std::abort();
    }
    const std::unique_ptr<engine> taken(static_cast<engine*>(state));
}
}

// Assertions and the console
// -------------------------------------------------------------------------------------------

extern "C" {

void assertOptim(bool condition) noexcept {
    if (has_flaw("assertion_inverted") ? condition : !condition) {
        std::abort();
    }
}

void ioFlushOptim() noexcept {
    if (!has_flaw("flush_does_nothing")) {
        std::fflush(stdout);
    }
}
}

} // namespace zktarn::host
