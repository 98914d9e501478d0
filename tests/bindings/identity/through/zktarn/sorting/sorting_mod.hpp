#pragma once

#include <cstdint>

#include "via.h"
#include "zktarn/function_ref.hpp"
#include "zktarn/types.hpp"

namespace zktarn::sorting_mod {

using exchange_procedure = function_ref<flag(std::int32_t a, std::int32_t b)>;

inline flag exchange_by(std::int32_t a, std::int32_t b, void* context) {
    return (*static_cast<exchange_procedure*>(context))(a, b);
}

inline void sort(const std::int32_t& first, const std::int32_t& last, exchange_procedure exchange) {
    via_sort(first, last, exchange_by, &exchange);
}

} // namespace zktarn::sorting_mod
