#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "zktarn_standin/call_stack.hpp"
#include "zktarn_standin/operations.hpp"

/// What has not been released.

namespace zktarn::standin {

/// An object of the host that the solver must release: a generator, a snapshot of one, or an array
/// that no struct owns.
struct live_object {
    /// The operation that made it.
    operation made_by;
    /// Its handle, for an array; its number among the generators, or among the snapshots.
    std::int64_t number;
    /// Kind, number and operation in words.
    std::string description;
    /// The calls that made it; empty unless origins are recorded.
    call_stack origin = {};
};

/// Everything except blocks that has not been released, by kind and number.
[[nodiscard]] std::vector<live_object> live_objects();

/// The memory report, then for each live object a line, and its origin where it is recorded.
[[nodiscard]] std::string report();

/// Chooses whether the process, when it ends, checks all blocks, and writes the report to standard
/// error if anything is not released. Initially on. Returns the previous setting.
bool report_at_exit(bool on) noexcept;

} // namespace zktarn::standin
