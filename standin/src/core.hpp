#pragma once

#include <string>
#include <vector>

#include "zktarn_standin/control.hpp"

/// What the four libraries of the stand-in share.

namespace zktarn::standin {

/// Counts a call of an operation. Returns whether the call is to fail.
bool fails(operation what) noexcept;

/// Whether a call has been made to fail since the last `reset`, so that nulls are about.
bool has_failed() noexcept;

/// Ends the process with a sentence on standard error.
[[noreturn]] void stop(const std::string& sentence) noexcept;

/// Hands a fault to the handler.
void report_fault(const fault& found);

/// Hands a failed assertion to the handler.
void report_failed_assertion();

/// "1 byte", "2 bytes".
std::string counted(std::int64_t n, const char* what);

// The parts of `reset`, and those of `live_objects`.
void reset_operations() noexcept;
void reset_memory_manager() noexcept;
void reset_functions();
void reset_console();
void reset_interrupts() noexcept;
void list_arrays(std::vector<live_object>& all);
void list_generators(std::vector<live_object>& all);

} // namespace zktarn::standin
