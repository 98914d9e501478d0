#pragma once

#include <cstdint>
#include <cstdlib>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "zktarn/host/libqv.hpp"

/// A small host, correct except for the flaw that the environment variable BROKEN_HOST names.
/// flaws.txt describes the flaws.

namespace zktarn::broken_host {

inline bool has_flaw(std::string_view name) {
    static const char* const chosen = std::getenv("BROKEN_HOST");
    return chosen != nullptr && name == chosen;
}

struct array {
    std::vector<double> reals = {};
    std::string text = {};
    std::vector<std::string> names = {};
    std::vector<host::array_handle> values = {};
};

inline std::map<host::array_handle, array> arrays;

host::array_handle add(array made);

} // namespace zktarn::broken_host
