#pragma once

/// Numeric utilities.

#include "zktarn/util/array_copy.hpp"  // IWYU pragma: export
#include "zktarn/util/integrality.hpp" // IWYU pragma: export
