#include "block_table.hpp"

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <mutex>
#include <optional>
#include <unordered_map>
#include <utility>

#ifdef __linux__
#include <sys/mman.h>
#endif

#include "fault_report.hpp"
#include "origin.hpp"
#include "wording.hpp"
#include "zktarn_standin/blocks.hpp"

namespace zktarn::standin {

namespace {

// A block is allocated with a guard on either side: 64 bytes in front, which keep its alignment,
// and at least 64 behind, right from its last byte on.
constexpr std::size_t guard_size = 64;
constexpr std::size_t alignment = 64;
constexpr unsigned char guard_byte = 0xFD;

// A block of this size or more lies on huge pages where the system has them.
constexpr std::int64_t smallest_large_block = std::int64_t{4} << 20;
constexpr std::size_t huge_page = std::size_t{2} << 20;

// Beyond this, size and guards do not fit an address.
constexpr std::int64_t largest_block = std::numeric_limits<std::int64_t>::max() -
                                       static_cast<std::int64_t>(2 * guard_size + huge_page);

struct block_table {
    std::mutex lock;
    std::unordered_map<const void*, block> live;
    // Released blocks whose address has not been used again.
    std::unordered_map<const void*, block> freed;
    std::int64_t requests = 0;
    std::int64_t refusals = 0;
    // Requests that fail, by order number: first to last.
    std::int64_t first_failing = 0;
    std::int64_t last_failing = -1;
    int fill = -1;
    bool huge_pages = true;
};

/// Never destroyed, so that blocks can be released while the process exits.
block_table& table() {
    static block_table& all = *new block_table;
    return all;
}

std::string bytes(std::int64_t n) {
    return counted(n, "byte");
}

std::string describe(const block& b) {
    return "block " + std::to_string(b.order) + " (" + bytes(b.nbytes) + ")";
}

unsigned char* raw(const block& b) {
    return static_cast<unsigned char*>(const_cast<void*>(b.address)) - guard_size;
}

std::size_t rounded_up(std::size_t nbytes, std::size_t unit) {
    return (nbytes + unit - 1) / unit * unit;
}

bool intact(const unsigned char* guard) {
    return std::all_of(guard, guard + guard_size, [](unsigned char c) { return c == guard_byte; });
}

void set_guard(unsigned char* guard) {
    std::memset(guard, guard_byte, guard_size);
}

/// Advises the system which pages to use. The system may ignore the advice, so its result is not
/// tested.
void advise([[maybe_unused]] void* start, [[maybe_unused]] std::size_t size,
            [[maybe_unused]] bool huge_pages) {
#ifdef __linux__
    madvise(start, size, huge_pages ? MADV_HUGEPAGE : MADV_NOHUGEPAGE);
#endif
}

/// Starts and ends at the border of a huge page, so that it shares none with anything else.
void* allocate_large(std::size_t size, bool huge_pages) {
    const std::size_t whole_pages = rounded_up(size, huge_page);
    void* const start = std::aligned_alloc(huge_page, whole_pages);
    if (start != nullptr) {
        advise(start, whole_pages, huge_pages);
    }
    return start;
}

void* allocate(std::int64_t nbytes, bool huge_pages) {
    if (nbytes > largest_block) {
        return nullptr;
    }
    const std::size_t size =
        guard_size + rounded_up(static_cast<std::size_t>(nbytes), alignment) + guard_size;
    auto* const start = static_cast<unsigned char*>(nbytes >= smallest_large_block
                                                        ? allocate_large(size, huge_pages)
                                                        : std::aligned_alloc(alignment, size));
    if (start == nullptr) {
        return nullptr;
    }
    set_guard(start);
    set_guard(start + guard_size + nbytes);
    return start + guard_size;
}

/// The fault of a block whose guards were written. Restores the guards, so that the damage is
/// reported once.
std::optional<fault> damage(const block& b) {
    unsigned char* const before = raw(b);
    unsigned char* const behind = before + guard_size + b.nbytes;
    std::optional<fault> found;
    if (!intact(behind)) {
        found = fault{fault_kind::write_past_end, b, describe(b) + " was written past its end",
                      b.origin};
    } else if (!intact(before)) {
        found = fault{fault_kind::write_before_start, b,
                      describe(b) + " was written before its start", b.origin};
    }
    set_guard(before);
    set_guard(behind);
    return found;
}

/// The fault of releasing an address at which no live block starts.
fault bad_release(const block_table& m, const void* address) {
    if (const auto old = m.freed.find(address); old != m.freed.end()) {
        return {fault_kind::double_free, old->second, describe(old->second) + " was released twice",
                old->second.origin};
    }
    for (const auto& [start, b] : m.live) {
        const auto* const first = static_cast<const unsigned char*>(start);
        if (std::less<>{}(first, address) && std::less<>{}(address, first + b.nbytes)) {
            return {fault_kind::foreign_free, b,
                    "an address inside " + describe(b) + " was released", b.origin};
        }
    }
    return {fault_kind::foreign_free, block{address, 0, 0},
            "an address that the memory manager never returned was released"};
}

std::vector<block> sorted_blocks(const block_table& m) {
    std::vector<block> all;
    all.reserve(m.live.size());
    for (const auto& [address, b] : m.live) {
        all.push_back(b);
    }
    std::sort(all.begin(), all.end(),
              [](const block& a, const block& b) { return a.order < b.order; });
    return all;
}

void plan_failures(std::int64_t k, bool lasting) noexcept {
    block_table& m = table();
    const std::lock_guard guard(m.lock);
    // A sum beyond the largest order number is a request that is never made.
    constexpr std::int64_t never = std::numeric_limits<std::int64_t>::max();
    m.first_failing = k < 1 || k > never - m.requests ? never : m.requests + k;
    m.last_failing = lasting ? never - 1 : m.first_failing;
}

} // namespace

void* obtain(std::int64_t nbytes) {
    if (nbytes < 1) {
        report_fault(fault_without_block(fault_kind::bad_request,
                                         "a block of " + bytes(nbytes) +
                                             " was requested; at least 1 is needed"));
        return nullptr;
    }
    block_table& m = table();
    const std::lock_guard guard(m.lock);
    const std::int64_t order = ++m.requests;
    const bool planned = order >= m.first_failing && order <= m.last_failing;
    void* const address = planned ? nullptr : allocate(nbytes, m.huge_pages);
    if (address == nullptr) {
        ++m.refusals;
        return nullptr;
    }
    if (m.fill >= 0) {
        std::memset(address, m.fill, static_cast<std::size_t>(nbytes));
    }
    m.freed.erase(address);
    m.live.emplace(address, block{address, nbytes, order, origin_now()});
    return address;
}

void release(void* address) {
    if (address == nullptr) {
        return;
    }
    block_table& m = table();
    std::optional<fault> found;
    {
        const std::lock_guard guard(m.lock);
        const auto entry = m.live.find(address);
        if (entry == m.live.end()) {
            found = bad_release(m, address);
        } else {
            found = damage(entry->second);
            m.freed.insert_or_assign(address, entry->second);
            std::free(raw(entry->second));
            m.live.erase(entry);
        }
    }
    if (found) {
        report_fault(*found);
    }
}

void reset_block_table() noexcept {
    fail_request(0);
    fill_new_blocks(-1);
    huge_pages(true);
}

std::int64_t requests() noexcept {
    block_table& m = table();
    const std::lock_guard guard(m.lock);
    return m.requests;
}

void fail_request(std::int64_t k) noexcept {
    plan_failures(k, false);
}

void fail_requests_from(std::int64_t k) noexcept {
    plan_failures(k, true);
}

void fill_new_blocks(int byte) noexcept {
    block_table& m = table();
    const std::lock_guard guard(m.lock);
    m.fill = byte;
}

bool huge_pages(bool on) noexcept {
    block_table& m = table();
    const std::lock_guard guard(m.lock);
    return std::exchange(m.huge_pages, on);
}

std::vector<block> live_blocks() {
    block_table& m = table();
    const std::lock_guard guard(m.lock);
    return sorted_blocks(m);
}

std::int64_t check_blocks() {
    block_table& m = table();
    std::vector<fault> damaged;
    {
        const std::lock_guard guard(m.lock);
        for (const block& b : sorted_blocks(m)) {
            if (auto found = damage(b)) {
                damaged.push_back(std::move(*found));
            }
        }
    }
    for (const fault& each : damaged) {
        report_fault(each);
    }
    return static_cast<std::int64_t>(damaged.size());
}

std::string memory_report() {
    block_table& m = table();
    const std::lock_guard guard(m.lock);
    const std::vector<block> live = sorted_blocks(m);
    std::string text = "host memory: " + counted(m.requests, "request") + ", " +
                       std::to_string(m.refusals) + " refused, " +
                       counted(static_cast<std::int64_t>(live.size()), "block") + " not released\n";
    for (const block& b : live) {
        text += "  block " + std::to_string(b.order) + ": " + bytes(b.nbytes) + "\n" +
                indented("made by", b.origin);
    }
    return text;
}

} // namespace zktarn::standin
