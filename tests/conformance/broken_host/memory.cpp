#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <mutex>
#include <set>
#include <thread>

#include "broken_host/broken_host.hpp"
#include "zktarn/host/libzkoptimutil.hpp"

namespace zktarn::host {

using broken_host::has_flaw;

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

} // namespace zktarn::host
