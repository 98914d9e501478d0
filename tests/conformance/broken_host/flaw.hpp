#pragma once

#include <cstdlib>
#include <string_view>

/// A small host, correct except for the flaw that the environment variable BROKEN_HOST names.
/// flaws.txt describes the flaws.

namespace zktarn::broken_host {

inline bool has_flaw(std::string_view name) {
    static const char* const chosen = std::getenv("BROKEN_HOST");
    return chosen != nullptr && name == chosen;
}

} // namespace zktarn::broken_host
