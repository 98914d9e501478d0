#pragma once

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <new>
#include <string>
#include <string_view>

#include "zktarn_standin/call_stack.hpp"

/// Texts and lists in buffers of the caller. C has no exceptions, so if memory is missing the text
/// or list is empty.

namespace zktarn::standin_c {

/// Copies as much of a text as fits, followed by a zero byte. Returns the length of the whole text.
inline std::size_t copy_text(char* buffer, std::size_t capacity, std::string_view text) noexcept {
    if (capacity >= 1) {
        const std::size_t length = std::min(text.size(), capacity - 1);
        std::memcpy(buffer, text.data(), length);
        buffer[length] = '\0';
    }
    return text.size();
}

template <class Make>
std::size_t text_into(char* buffer, std::size_t capacity, Make make) noexcept {
    try {
        return copy_text(buffer, capacity, make());
    } catch (const std::bad_alloc&) {
        return copy_text(buffer, capacity, {});
    }
}

template <class Element, class Make, class Convert>
std::size_t list_into(Element* elements, std::size_t capacity, Make make,
                      Convert convert) noexcept {
    try {
        const auto all = make();
        std::transform(all.begin(),
                       all.begin() + static_cast<std::ptrdiff_t>(std::min(all.size(), capacity)),
                       elements, convert);
        return all.size();
    } catch (const std::bad_alloc&) {
        return 0;
    }
}

/// One line for each call; empty if memory is missing.
inline std::string lines_of(const standin::call_stack& stack) noexcept {
    try {
        std::string text;
        for (const std::string& line : stack.lines()) {
            text += line + '\n';
        }
        return text;
    } catch (const std::bad_alloc&) {
        return {};
    }
}

} // namespace zktarn::standin_c
