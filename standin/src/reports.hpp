#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "zktarn_standin/faults.hpp"
#include "zktarn_standin/operations.hpp"

/// How the operations report faults and failed assertions, and what the sentences of reports are
/// made of.

namespace zktarn::standin {

/// A fault that concerns no block.
fault fault_without_block(fault_kind kind, std::string sentence, const call_stack& origin = {});

/// Adds the current call stack to a fault and calls its handler.
void report_fault(fault found) noexcept;

/// Calls the handler of failed assertions.
void report_failed_assertion() noexcept;

/// Throws the fault of a call: its sentence begins with the operation.
[[noreturn]] void refuse(fault_kind kind, const char* caller, const std::string& reason,
                         const call_stack& origin = {});
[[noreturn]] void refuse(fault_kind kind, operation caller, const std::string& reason,
                         const call_stack& origin = {});

// Text arguments
// -------------------------------------------------------------------------------------------

/// A text argument. Refuses a negative length.
std::string_view text_argument(operation caller, const char* text, std::int64_t length);

/// A text argument for the log, where a faulty one is empty.
inline std::string logged_text(const char* text, std::int64_t length) {
    return text == nullptr || length < 0 ? std::string()
                                         : std::string(text, static_cast<std::size_t>(length));
}

// Parts of sentences
// -------------------------------------------------------------------------------------------

/// "1 byte", "2 bytes".
inline std::string counted(std::int64_t n, const char* noun) {
    return std::to_string(n) + " " + noun + (n == 1 ? "" : "s");
}

/// The lines of a call stack below a heading, all indented; nothing for an empty stack.
std::string indented(const char* heading, const call_stack& stack);

// Origins of objects: call_stack.cpp
// -------------------------------------------------------------------------------------------

/// The current calls if origins are recorded, else an empty stack.
call_stack origin_now() noexcept;

/// Records origins as when the process started.
void reset_origins() noexcept;

} // namespace zktarn::standin
