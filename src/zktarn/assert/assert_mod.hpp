#pragma once

#include "zktarn/export.hpp"
#include "zktarn/types.hpp"

/// Assertions that the host evaluates.
///
/// The library passes the condition on; the host decides what a false one leads to: a message, the
/// end of the process, or nothing. The module has no state. Callable from any thread from which the
/// host's `assertOptim` is callable.

namespace zktarn::assert_mod {

/// Passes `condition` to the host's assertion procedure, whether it is true or false.
///
/// @param condition  in. True if its lowest byte is nonzero: 1 is true, 0 is false, and so is 256.
///
/// If the condition is false, the host decides whether the call returns.
ZKTARN_API void tarnassert(const flag& condition) noexcept;

} // namespace zktarn::assert_mod
