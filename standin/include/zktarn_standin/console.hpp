#pragma once

#include <string>

/// The console of the stand-in host: standard output, unless it is captured.

namespace zktarn::standin {

enum class console {
    /// Text goes to standard output.
    show,
    /// Text is kept.
    capture,
    /// Both.
    mirror,
};

/// Chooses where text of the console goes and returns the previous choice. `show` at the beginning.
/// What has been kept stays.
console set_console(console where);

/// The text kept so far.
[[nodiscard]] std::string console_text();

/// The part of that text that was there at the last flush. The console itself is flushed then.
[[nodiscard]] std::string flushed_console_text();

/// Forgets the text.
void clear_console();

} // namespace zktarn::standin
