#pragma once

#include <string>

#include "array_table.hpp"

namespace zktarn::standin {

/// Calls a host-language function and returns the array that it makes.
array_handle call_function(const std::string& name, array_handle input);

void reset_functions();

} // namespace zktarn::standin
