#pragma once

#include <string>
#include <string_view>

#include "zktarn_standin/faults.hpp"
#include "zktarn_standin/operations.hpp"

/// How the operations report faults and failed assertions.

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

/// A text argument. Refuses a negative length.
std::string_view text_argument(operation caller, const char* text, std::int64_t length);

} // namespace zktarn::standin
