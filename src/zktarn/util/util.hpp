#pragma once

/// All numeric utilities.

#include "zktarn/util/array_copy.hpp"    // IWYU pragma: export
#include "zktarn/util/gcd.hpp"           // IWYU pragma: export
#include "zktarn/util/integrality.hpp"   // IWYU pragma: export
#include "zktarn/util/rational.hpp"      // IWYU pragma: export
#include "zktarn/util/scalar_search.hpp" // IWYU pragma: export
