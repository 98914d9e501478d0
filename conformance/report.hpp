#pragma once

#include <functional>
#include <string>

/// Where the findings go: one line a check on standard output.

namespace zktarn::host_conformance {

/// What is wrong; empty when all is well.
using finding = std::string;

/// Looks at one obligation of an operation and prints `ok` or `FAIL` with the operation and the
/// obligation. A host that ends the process meanwhile fails this check as the last one.
void check(const std::string& operation, const std::string& obligation,
           const std::function<finding()>& look);

/// Prints something that was not checked, and why. Does not count.
void note(const std::string& operation, const std::string& what);

/// The process ended by a signal ends with a line about it, and a summary, from now on.
void report_signals();

/// Prints the last line and returns whether every check passed.
bool summary();

/// Nothing when the condition holds, else the complaint.
inline finding expect(bool condition, const char* complaint) {
    return condition ? finding() : finding(complaint);
}

} // namespace zktarn::host_conformance
