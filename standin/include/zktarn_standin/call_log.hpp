#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include "zktarn_standin/operations.hpp"

/// A log of the calls of host operations, and scripts that answer them in place of the stand-in.

namespace zktarn::standin {

/// What an operation returns or writes. Each operation uses one part, `qvxcallquarn800_` two; the
/// others stay empty.
struct answer {
    /// A handle, a field number, a status, or a logical value as 1 or 0.
    std::int64_t number = 0;
    /// A block, a generator, a snapshot, or the data of an array.
    void* address = nullptr;
    /// The numbers written by `getRandUniformOptim` and `qvcopyptrtoreal8800_`.
    std::vector<double> reals = {};
    /// The outputs of `qvxcallquarn800_`.
    std::vector<std::int64_t> handles = {};
};

/// One call of a host operation: its arguments, sorted by kind, in the order of the declaration.
/// Lengths of texts and what the operation writes to are left out.
struct host_call {
    /// The operation.
    operation what;
    /// Sizes, counts, indices, extents, handles, seeds, and logical values as 1 or 0.
    std::vector<std::int64_t> integers = {};
    /// Texts; a list of fixed-width slots is one text.
    std::vector<std::string> texts = {};
    /// A real argument, and the numbers that `qvcopyreal8toptr800_` copies.
    std::vector<double> reals = {};
    /// Blocks, generators, snapshots, and data of arrays.
    std::vector<const void*> addresses = {};
    /// What the operation returned and wrote; empty while it runs.
    answer result = {};
};

/// Whether operation and arguments are the same. Results are not compared.
[[nodiscard]] bool operator==(const host_call& a, const host_call& b);

/// The call as text, for example `qvcreatestring800_("cutting") = 3`; a line feed in a text is
/// `\n`.
[[nodiscard]] std::string text_of(const host_call& logged);
std::ostream& operator<<(std::ostream& out, const host_call& logged);

/// Switches the log on or off and returns the previous setting. Initially off, and then a call
/// costs one test of a flag. What is logged stays until `clear_call_log` or `reset`.
bool log_calls(bool on) noexcept;

/// The logged calls in the order in which they began; calls that fail or are faulty included.
[[nodiscard]] std::vector<host_call> logged_calls();

/// Empties the log.
void clear_call_log();

/// Answers a call in place of the stand-in. An empty result leaves the call to the stand-in. Runs
/// on the thread that calls, with no lock of the stand-in held. Must not throw.
using call_script = std::function<std::optional<answer>(const host_call&)>;

/// Lets a script answer the calls of an operation, and returns the previous script, if any. An
/// empty script returns the operation to the stand-in. A planned failure takes precedence over a
/// script. The stand-in does not know the objects that a script returns: other operations on them
/// need scripts, too.
call_script answer_calls(operation what, call_script script);

} // namespace zktarn::standin
