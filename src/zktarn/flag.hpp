#pragma once

#include <cstdint>

namespace zktarn {

/// A logical value as it crosses the interface: written as 1 (true) or 0 (false), read as true
/// whenever it is nonzero.
using flag = std::int64_t;

} // namespace zktarn
