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
