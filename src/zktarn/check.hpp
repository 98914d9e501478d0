#pragma once

/// ZKTARN_CHECK verifies a precondition.
///
/// In a checked build (ZKTARN_CHECKED defined, for the library and for everything that links it) a
/// false condition is reported to the host through `tarnassert`. In every other build the macro
/// expands to nothing: the condition is not evaluated, and no branch or symbol remains.
///
/// The condition must be free of side effects.

#ifdef ZKTARN_CHECKED

#include <cstdint>

#include "zktarn/export.hpp"

// Declared here, since types.hpp has checks and assert_mod.hpp needs types.hpp.
namespace zktarn::assert_mod {
ZKTARN_API void tarnassert(const std::int64_t& condition) noexcept;
}

#define ZKTARN_CHECK(condition)                                                                    \
    ((condition) ? static_cast<void>(0) : ::zktarn::assert_mod::tarnassert(0))

#else

#define ZKTARN_CHECK(condition) static_cast<void>(0)

#endif
