#pragma once

#include <cstdint>

namespace zktarn::standin {

/// A new block of `nbytes` bytes, or null.
void* obtain(std::int64_t nbytes);

/// Releases a block; null is accepted.
void release(void* address);

void reset_block_table() noexcept;

} // namespace zktarn::standin
