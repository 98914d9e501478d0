#pragma once

#include <cstdint>

#include "via.h"
#include "zktarn/function_ref.hpp"
#include "zktarn/optional_address.hpp"

namespace zktarn::util {

using element_supplier =
    function_ref<void(const std::int32_t& index, double& value, flag& marked, flag& selected)>;

inline void supply(std::int32_t index, double* value, flag* marked, flag* selected, void* context) {
    (*static_cast<element_supplier*>(context))(index, *value, *marked, *selected);
}

inline void find_scalar_integral(const std::int32_t& n, element_supplier get_element,
                                 const double& eps, const double& max_den, const double& max_scalar,
                                 flag& found, double& scalar,
                                 optional_ref<const flag> skip_marked = {},
                                 optional_ref<const flag> selected_only = {}) {
    via_find_scalar_integral(n, supply, &get_element, eps, max_den, max_scalar, &found, &scalar,
                             address_of(skip_marked), address_of(selected_only));
}

} // namespace zktarn::util
