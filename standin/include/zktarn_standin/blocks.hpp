#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "zktarn_standin/call_stack.hpp"

/// The memory manager of the stand-in host.

namespace zktarn::standin {

/// A block of host memory. Blocks are aligned to 64 bytes.
struct block {
    /// Address of its first byte.
    const void* address = nullptr;
    /// The requested size in bytes.
    std::int64_t nbytes = 0;
    /// The number of the request that made it. Requests are counted from 1 for the whole life of
    /// the process, refused ones included; 0 where a fault concerns no known block.
    std::int64_t order = 0;
    /// The calls that requested it; empty unless origins are recorded.
    call_stack origin = {};
};

/// The number of requests so far, which is the order number of the last one.
[[nodiscard]] std::int64_t requests() noexcept;

/// Makes the k-th request from now fail, once: 1 is the next one. Replaces an earlier plan; k < 1
/// plans no failure.
void fail_request(std::int64_t k) noexcept;

/// Makes the k-th request from now and all later ones fail: a host that has run out of memory.
/// Replaces an earlier plan; k < 1 plans no failure.
void fail_requests_from(std::int64_t k) noexcept;

/// Fills every new block with the lowest 8 bits of `byte`, so that a read before the first write
/// shows. A negative value leaves new blocks unfilled; initially -1.
void fill_new_blocks(int byte) noexcept;

/// Chooses whether new blocks of 4 MiB and more lie on huge pages, where the system has them
/// (Linux: MADV_HUGEPAGE, else MADV_NOHUGEPAGE). Such a block takes up whole pages of 2 MiB either
/// way, and starts 64 bytes after the start of a page. Initially on. Returns the previous setting.
bool huge_pages(bool on) noexcept;

/// The blocks that have not been released, by order number.
[[nodiscard]] std::vector<block> live_blocks();

/// Looks for writes just before and just past every live block, reports each damaged block once to
/// the fault handler, and returns the number of damaged blocks.
std::int64_t check_blocks();

/// The memory report: one line with the number of requests, of refusals and of live blocks, then
/// for each live block a line with its size and order number, and its origin where it is recorded.
/// Ends in a line feed.
[[nodiscard]] std::string memory_report();

} // namespace zktarn::standin
