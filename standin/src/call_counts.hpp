#pragma once

#include "zktarn_standin/operations.hpp"

/// Counts of calls, and planned failures.

namespace zktarn::standin {

/// Counts a call of an operation. Returns whether the call is planned to fail.
bool fails(operation what) noexcept;

/// Records that an operation has failed, as planned or not.
void note_failure(operation what) noexcept;

/// Whether an operation that returns a handle, a number or an address has failed since the last
/// `reset`: a failure value that a caller passes on is then not a fault.
bool has_failed() noexcept;

void reset_call_counts() noexcept;

} // namespace zktarn::standin
