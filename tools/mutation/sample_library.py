"""A library with known mutants and its test, for the tests of the tool."""

FILES = {}

FILES["CMakeLists.txt"] = """\
cmake_minimum_required(VERSION 3.24)
project(sample LANGUAGES CXX)
set(CMAKE_CXX_STANDARD 20)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)

add_library(sample SHARED src/sample/sums/sums.cpp)
target_include_directories(sample PUBLIC src)

add_executable(sums_test tests/unit/sums/sums_test.cpp)
target_link_libraries(sums_test PRIVATE sample)
set_target_properties(sums_test PROPERTIES RUNTIME_OUTPUT_DIRECTORY tests/unit/sums)
"""

FILES["src/sample/sums/sums.hpp"] = """\
#pragma once

namespace sample {

/// The sum of values, but at most cap.
int capped_sum(const int* values, int count, int cap) noexcept;

/// The number of steps of 2 from n to 0 or below.
int steps(int n) noexcept;

inline int triple(int value) noexcept {
    return 3 * value;
}

} // namespace sample
"""

FILES["src/sample/sums/sums.cpp"] = """\
#include "sample/sums/sums.hpp"

namespace sample {

int capped_sum(const int* values, int count, int cap) noexcept {
    int sum = 0;
    for (int k = 0; k < count; ++k) {
        sum += values[k];
    }
    return sum > cap ? cap : sum;
}

int steps(int n) noexcept {
    int taken = 0;
    while (n > 0) {
        n -= 2;
        taken += 1;
    }
    return taken;
}

#ifdef NEVER_DEFINED
int never() {
    return 7;
}
#endif

} // namespace sample
"""

FILES["tests/unit/sums/sums_test.cpp"] = """\
#include "sample/sums/sums.hpp"

int main() {
    const int values[] = {1, 2, 4, 100}; // the calls do not include the last one
    const bool passes = sample::capped_sum(values, 3, 10) == 7 &&
                        sample::capped_sum(values, 3, 5) == 5 && sample::steps(4) == 2 &&
                        sample::steps(3) == 2 && sample::triple(0) == 0;
    return passes ? 0 : 1;
}
"""


def write(folder):
    """Writes the files of the library into the folder."""
    for name, text in FILES.items():
        path = folder / name
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_text(text, encoding="utf-8")
