// A defect for each analyser, behind the macro of its name. Without a macro the defects are inside
// checks, so that only a checked build has them.

#if defined(CLANG_TIDY)

#include <string>
#include <utility>

std::string broken(std::string text) {
    const std::string kept = std::move(text);
    return kept + text;
}

#elif defined(CPPCHECK)

int broken(int n) {
    int entries[4] = {};
    for (int i = 0; i <= 4; ++i) {
        entries[i] = n;
    }
    return entries[n & 3];
}

#elif defined(GCC_ANALYZER)

#include <cstdlib>

int broken(int n) {
    int* const entry = static_cast<int*>(std::malloc(sizeof(int)));
    if (entry == nullptr) {
        return 0;
    }
    *entry = n;
    std::free(entry);
    return *entry;
}

#else

#include <cstdlib>

#include "zktarn/check.hpp"

void halved(int n, double half) {
    ZKTARN_CHECK(half == n / 2);
}

void freed(int n) {
    int* const entry = static_cast<int*>(std::malloc(sizeof(int)));
    if (entry != nullptr) {
        *entry = n;
        std::free(entry);
        ZKTARN_CHECK(*entry == n);
    }
}

#endif
