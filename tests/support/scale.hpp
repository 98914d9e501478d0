#pragma once

#include <algorithm>
#include <cstdint>
#include <cstdlib>

namespace zktarn::testing {

/// A number of random cases, scaled by the environment variable ZKTARN_TEST_SCALE: emulators and
/// instrumented builds run fewer.
inline std::int64_t scaled(std::int64_t cases) {
    const char* const scale = std::getenv("ZKTARN_TEST_SCALE");
    if (scale == nullptr) {
        return cases;
    }
    const double product = static_cast<double>(cases) * std::strtod(scale, nullptr);
    return std::max<std::int64_t>(1, static_cast<std::int64_t>(product));
}

} // namespace zktarn::testing
