#pragma once

#include <cstdlib>
#include <string_view>

/// A small host of its own that is right, but for the one flaw that the environment names.

namespace zktarn::broken_host {

inline bool has_flaw(std::string_view name) {
    static const char* const chosen = std::getenv("BROKEN_HOST");
    return chosen != nullptr && name == chosen;
}

} // namespace zktarn::broken_host
