#pragma once

/// Everything the library offers. The conventions of all procedures are in types.hpp.

#include "zktarn/assert/assert_mod.hpp"  // IWYU pragma: export
#include "zktarn/memory/memory_mod.hpp"  // IWYU pragma: export
#include "zktarn/types.hpp"              // IWYU pragma: export
#include "zktarn/util/util.hpp"          // IWYU pragma: export
#include "zktarn/vector/vector_mod.hpp"  // IWYU pragma: export
#include "zktarn/vector/vector_type.hpp" // IWYU pragma: export
