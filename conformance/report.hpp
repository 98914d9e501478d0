#pragma once

#include <functional>
#include <string>

/// Prints one line for each check on standard output.

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

} // namespace zktarn::host_conformance
