#pragma once

#include <string>

#include "zktarn_standin/control.hpp"

/// What the four libraries of the stand-in share.

namespace zktarn::standin {

/// Counts a call of an operation.
void count(operation what) noexcept;

/// Ends the process: the operation has no implementation.
[[noreturn]] void missing(operation what) noexcept;

/// Ends the process with a sentence on standard error.
[[noreturn]] void stop(const std::string& sentence) noexcept;

/// Hands a fault to the handler.
void report_fault(const fault& found);

/// Hands a failed assertion to the handler.
void report_failed_assertion();

// The parts of `reset`.
void reset_operations() noexcept;
void reset_memory_manager() noexcept;

} // namespace zktarn::standin
