#pragma once

#include <atomic>
#include <cstdint>
#include <optional>

#include "zktarn_standin/call_log.hpp"
#include "zktarn_standin/operations.hpp"

/// What happens around each call: counts and planned failures, the log, the scripts.

namespace zktarn::standin {

/// Counts a call of an operation. Returns whether the call is planned to fail.
bool fails(operation what) noexcept;

/// Records that an operation has failed, as planned or not.
void note_failure(operation what) noexcept;

/// Whether an operation that returns a handle, a number or an address has failed since the last
/// `reset`: a failure value that a caller passes on is then not a fault.
bool has_failed() noexcept;

void reset_call_counts() noexcept;

/// How many observers there are: the log, when it is on, and each script.
extern std::atomic<int> observers;

/// Whether a call needs its arguments collected.
inline bool is_observed() noexcept {
    return observers.load(std::memory_order_relaxed) != 0;
}

/// Logs a call when the log is on, and returns its position in the log; -1 when it is not logged.
std::int64_t log_call(const host_call& call);

/// Adds the result to a call at a position of the log.
void log_result(std::int64_t position, const answer& result);

/// The answer of the operation's script. Empty without a script, or when the script leaves the call
/// to the stand-in.
std::optional<answer> scripted_answer(const host_call& call);

void reset_call_observers();

} // namespace zktarn::standin
