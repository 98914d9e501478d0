#pragma once

#include <functional>
#include <string>
#include <type_traits>
#include <utility>
#include <variant>
#include <vector>

#include "zktarn_standin/arrays.hpp"

/// Functions of the host's language, written in C++.

namespace zktarn::standin {

/// What a function of the host's language returns: a real scalar, a real column (an empty one is
/// allowed) or a text.
class reply {
public:
    /// A scalar, a column or a text.
    using content = std::variant<double, std::vector<double>, std::string>;

    /// Any number; a logical value becomes 1 or 0.
    template <class Number>
    reply(Number scalar) requires std::is_arithmetic_v<Number>
        : content_(static_cast<double>(scalar)) {}
    /// A column of numbers, or a text.
    reply(std::vector<double> column) : content_(std::move(column)) {}
    reply(std::string text) : content_(std::move(text)) {}
    reply(const char* text) : content_(std::string(text)) {}

    /// The value to return.
    [[nodiscard]] const content& contents() const { return content_; }

private:
    content content_;
};

/// A function of the host's language: one input, one output. It runs on the thread that calls it,
/// with no lock of the stand-in held. If it throws, that is a fault and the call fails.
using host_function = std::function<reply(const array_value& input)>;

/// Registers a function under a name and returns the previous one of that name, if any. An empty
/// function removes the name. The library calls "tarnCallback".
host_function set_function(const std::string& name, host_function function);

} // namespace zktarn::standin
