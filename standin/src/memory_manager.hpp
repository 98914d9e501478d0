#pragma once

#include <cstdint>

namespace zktarn::standin {

/// A new block of `nbytes` bytes, or null.
void* obtain(std::int64_t nbytes);

/// Takes back a block.
void release(void* address);

} // namespace zktarn::standin
