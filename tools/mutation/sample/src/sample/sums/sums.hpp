#pragma once

namespace sample {

/// The sum of values, but at most cap.
int capped_sum(const int* values, int count, int cap) noexcept;

/// How many steps of 2 lead from n down to 0 or beyond.
int steps(int n) noexcept;

inline int triple(int value) noexcept {
    return 3 * value;
}

} // namespace sample
