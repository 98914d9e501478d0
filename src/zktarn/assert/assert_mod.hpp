#pragma once

#include "zktarn/export.hpp"
#include "zktarn/types.hpp"

/// Reporting of internal consistency conditions to the host.
///
/// What a false condition leads to (a report, the end of the process, nothing) is the host's
/// decision; the library only passes the condition on. No state; callable from any thread from
/// which the host's `assertOptim` is.

namespace zktarn::assert_mod {

/// Hands `condition` to the host's assertion facility, whether it is true or false.
///
/// @param condition  in. Only its lowest byte is looked at: true when that byte is nonzero, so 1
///                   is true, 0 is false, and 256 is false.
///
/// Returns nothing; whether it returns at all on a false condition is up to the host.
ZKTARN_API void tarnassert(const flag& condition) noexcept;

} // namespace zktarn::assert_mod
