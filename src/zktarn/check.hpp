#pragma once

/// ZKTARN_CHECK verifies a precondition.
///
/// In a checked build (ZKTARN_CHECKED defined, for the library and for everything that links it) a
/// false condition is reported to the host: first as a line on its console, with the condition, the
/// procedure and the place, then through `tarnassert`. `cbprintdisplay` prints the line, so it is
/// not printed after an interrupt. If the host's console serves one thread only, checked procedures
/// must be called on that thread.
///
/// In every other build the macro expands to nothing: the condition is not evaluated, and no branch
/// or symbol remains.
///
/// The condition must be free of side effects.

#ifdef ZKTARN_CHECKED

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <string_view>

#include "zktarn/export.hpp"

// Declared here, because types.hpp has checks and the headers of both procedures need types.hpp.
namespace zktarn::assert_mod {
ZKTARN_API void tarnassert(const std::int64_t& condition) noexcept;
}
namespace zktarn::callbacks_util {
ZKTARN_API void cbprintdisplay(const std::int32_t& status, const std::int32_t& ctrlc,
                               const std::int32_t& display, std::string_view line) noexcept;
}

namespace zktarn::detail {

/// Prints "violated: CONDITION, in PROCEDURE (FILE:LINE)" and asserts false.
inline void report_violation(const char* condition, const char* procedure, std::string_view file,
                             int line) noexcept {
    // Keeps the path below the include root. The part before it differs between machines.
    const std::size_t root = file.rfind("zktarn/");
    file.remove_prefix(root == std::string_view::npos ? 0 : root);
    std::array<char, 512> text{};
    const int wanted =
        std::snprintf(text.data(), text.size(), "violated: %s, in %s (%.*s:%d)", condition,
                      procedure, static_cast<int>(file.size()), file.data(), line);
    const int shown = std::clamp(wanted, 0, static_cast<int>(text.size()) - 1);
    const std::string_view sentence(text.data(), static_cast<std::size_t>(shown));
    callbacks_util::cbprintdisplay(0, 0, 2, sentence);
    assert_mod::tarnassert(0);
}

} // namespace zktarn::detail

#define ZKTARN_CHECK(condition)                                                                    \
    ((condition) ? static_cast<void>(0)                                                            \
                 : ::zktarn::detail::report_violation(#condition, __func__, __FILE__, __LINE__))

#else

/// Verifies a precondition in a checked build; this is the macro of every other build.
#define ZKTARN_CHECK(condition) static_cast<void>(0)

#endif
