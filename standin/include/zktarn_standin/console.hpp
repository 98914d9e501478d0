#pragma once

#include <string>

/// The console of the stand-in host: standard output, unless it is captured.

namespace zktarn::standin {

/// Where console text goes.
enum class console {
    /// Text goes to standard output.
    show,
    /// Text is captured.
    capture,
    /// Both.
    mirror,
};

/// Chooses the destination of console text and returns the previous one. Initially `show`. Text
/// captured so far stays; `reset` discards the text and keeps the destination.
console set_console(console destination);

/// The text captured so far.
[[nodiscard]] std::string console_text();

/// The part of that text that had been captured at the last flush. A flush also flushes standard
/// output.
[[nodiscard]] std::string flushed_console_text();

/// Discards the captured text.
void clear_console();

} // namespace zktarn::standin
