#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "zktarn_standin/control.hpp"

/// What the four libraries of the stand-in share.

namespace zktarn::standin {

/// Counts a call of an operation. Returns whether the call is to fail.
bool fails(operation what) noexcept;

/// Notes that an operation has failed, on demand or not.
void note_failure(operation what) noexcept;

/// Whether an operation that hands something out has failed since the last `reset`, so that callers
/// have nulls that are no mistake of theirs.
bool has_failed() noexcept;

/// Ends the process with a sentence on standard error.
[[noreturn]] void stop(const std::string& sentence) noexcept;

/// Hands a fault to the handler.
void report_fault(const fault& found) noexcept;

/// Hands a failed assertion to the handler.
void report_failed_assertion() noexcept;

/// Throws the fault of a call: its sentence begins with who was called.
[[noreturn]] void refuse(fault_kind kind, const char* by, const std::string& why);
[[noreturn]] void refuse(fault_kind kind, operation by, const std::string& why);

/// A text as an operation is given it. Refuses one of negative length.
std::string_view text_of(operation by, const char* text, std::int64_t length);

/// "1 byte", "2 bytes".
std::string counted(std::int64_t n, const char* what);

// The parts of `reset`, and those of `live_objects`.
void reset_operations() noexcept;
void reset_memory_manager() noexcept;
void reset_functions();
void reset_console();
void reset_interrupts() noexcept;
void list_arrays(std::vector<live_object>& all);
void list_generators(std::vector<live_object>& objects);

} // namespace zktarn::standin
