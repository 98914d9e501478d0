// Has a defect only in a checked build.
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
