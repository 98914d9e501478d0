#pragma once

#include <new>
#include <string>

#include "zktarn_standin/call_stack.hpp"

namespace zktarn::standin_c {

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
