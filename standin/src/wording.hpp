#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "zktarn_standin/call_stack.hpp"

/// Parts of sentences, and texts for the log.

namespace zktarn::standin {

/// "1 byte", "2 bytes".
inline std::string counted(std::int64_t n, const char* noun) {
    return std::to_string(n) + " " + noun + (n == 1 ? "" : "s");
}

/// The lines of a call stack below a heading, all indented; nothing for an empty stack.
inline std::string indented(const char* heading, const call_stack& stack) {
    if (stack.empty()) {
        return {};
    }
    std::string text = std::string("    ") + heading + "\n";
    for (const std::string& line : stack.lines()) {
        text += "      " + line + "\n";
    }
    return text;
}

/// A text argument for the log, where a faulty one is empty.
inline std::string logged_text(const char* text, std::int64_t length) {
    return text == nullptr || length < 0 ? std::string()
                                         : std::string(text, static_cast<std::size_t>(length));
}

} // namespace zktarn::standin
