#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace zktarn::standin {

/// A text argument for the log, where a faulty one is empty.
inline std::string logged_text(const char* text, std::int64_t length) {
    return text == nullptr || length < 0 ? std::string()
                                         : std::string(text, static_cast<std::size_t>(length));
}

} // namespace zktarn::standin
