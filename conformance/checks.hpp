#pragma once

#include <functional>
#include <string>

#include "zktarn_conformance/check_host.hpp"

/// The checks, by subject: each function checks some operations of the host. Each check prints one
/// line on standard output.

namespace zktarn::host_conformance {

/// The violation that a check found; empty if it passed.
using finding = std::string;

/// Checks one obligation of an operation and prints `ok` or `FAIL`, the operation and the
/// obligation. If the host ends the process during the check, the check fails and is the last one.
void check(const std::string& operation, const std::string& obligation,
           const std::function<finding()>& look);

/// Prints an operation that was not checked, with a remark. Does not count as a check.
void note(const std::string& operation, const std::string& remark);

/// An empty finding if the condition holds, else `violation`.
inline finding expect(bool condition, const char* violation) {
    return condition ? finding() : finding(violation);
}

void check_memory();
void check_generators();
void check_arrays();
void check_function(const settings& wanted);
void check_console(const settings& wanted);
void check_interrupts_and_assertions();

/// Null addresses. A host that does not accept them may end the process, so this comes last.
void check_nulls();

} // namespace zktarn::host_conformance
