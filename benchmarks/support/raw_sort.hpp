#pragma once

#include <cstdint>
#include <vector>

/// Shell sorts for one kind of data, as the limit of a general sort.

namespace zktarn::bench {

/// Sorts keys upwards, and the companions with them.
void raw_sort(std::vector<double>& keys, std::vector<std::int32_t>& companions);

/// Sorts the positions first..last by a procedure behind a pointer.
void raw_sort_by(std::int64_t (*exchange)(void*, std::int32_t, std::int32_t), void* context,
                 std::int32_t first, std::int32_t last);

} // namespace zktarn::bench
