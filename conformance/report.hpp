#pragma once

#include <functional>
#include <string>

/// Findings: one line a check on standard output.

namespace zktarn::host_conformance {

/// The violation that a check found; empty without one.
using finding = std::string;

/// Checks one obligation of an operation and prints `ok` or `FAIL` with both. If the host ends the
/// process during the check, this check fails and is the last one.
void check(const std::string& operation, const std::string& obligation,
           const std::function<finding()>& look);

/// Prints what was not checked, and why. Does not count.
void note(const std::string& operation, const std::string& what);

/// An empty finding if the condition holds, else `violation`.
inline finding expect(bool condition, const char* violation) {
    return condition ? finding() : finding(violation);
}

} // namespace zktarn::host_conformance
