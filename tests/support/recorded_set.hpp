#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "zktarn/types.hpp"

namespace zktarn::testing {

/// The data of one element.
struct element {
    double value;
    flag marked = 0;
    flag selected = 1;
};

/// A supplier of elements that records each requested index in `calls`.
struct recorded_set {
    std::vector<element> elements;
    std::vector<std::int32_t> calls = {};

    std::int32_t size() const { return static_cast<std::int32_t>(elements.size()); }

    void operator()(const std::int32_t& index, double& value, flag& marked, flag& selected) {
        calls.push_back(index);
        const element& each = elements.at(static_cast<std::size_t>(index - 1));
        value = each.value;
        marked = each.marked;
        selected = each.selected;
    }
};

} // namespace zktarn::testing
