#pragma once

/// ZKTARN_CHECK verifies what a procedure otherwise trusts its caller to keep.
///
/// In a checked build (ZKTARN_CHECKED defined, for the library and for everything that links it) a
/// false condition is reported to the host through `tarnassert`. In every other build it expands to
/// nothing: the condition is not evaluated, and no branch or symbol remains.
///
/// The condition must be free of side effects.

#ifdef ZKTARN_CHECKED

#include "zktarn/assert/assert_mod.hpp"

#define ZKTARN_CHECK(condition)                                                                    \
    ((condition) ? static_cast<void>(0) : ::zktarn::assert_mod::tarnassert(0))

#else

#define ZKTARN_CHECK(condition) static_cast<void>(0)

#endif
