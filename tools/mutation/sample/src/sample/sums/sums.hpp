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
