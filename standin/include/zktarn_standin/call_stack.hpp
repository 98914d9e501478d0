#pragma once

#include <memory>
#include <string>
#include <vector>

/// Call stacks: where a fault happened, and where the block or object it concerns was made.

namespace zktarn::standin {

/// The calls that were active at one moment, innermost first. Empty on systems without a
/// `backtrace`. Cheap to copy.
class call_stack {
public:
    /// No calls.
    call_stack() noexcept = default;

    /// The calls that are active now, without the innermost ones, which are the stand-in's own.
    [[nodiscard]] static call_stack current() noexcept;

    /// Whether it holds no calls.
    [[nodiscard]] bool empty() const noexcept { return addresses_ == nullptr; }

    /// One line a call: the function, where the loader knows its name, and the file it is in. A
    /// program shows the names of its own functions when it is linked with `-rdynamic` (CMake:
    /// ENABLE_EXPORTS); else its lines have the offset that `addr2line` understands.
    [[nodiscard]] std::vector<std::string> lines() const;

private:
    std::shared_ptr<const std::vector<void*>> addresses_;
};

/// Chooses whether the call stack is recorded for every new block, array, generator and snapshot,
/// for reports of leaks and of faults that concern them. Returns the previous setting.
///
/// Initially off, unless the environment variable ZKTARN_STANDIN_ORIGINS is 1 when the process
/// starts. Off, it costs nothing. On, each object costs one walk of the stack, many times the cost
/// of a small block, and up to 32 addresses of memory.
///
/// The call stack of a fault or a failed assertion is always recorded, because it costs nothing
/// before.
bool record_origins(bool on) noexcept;

} // namespace zktarn::standin
