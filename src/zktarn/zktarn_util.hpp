#pragma once

/// All modules. types.hpp states the conventions of every procedure.

#include "zktarn/detail/require_cpp20.hpp"

// In an older standard of C++ nothing else is included, so the message of that header is the only
// one.
#if __cplusplus > 201703L

#include "zktarn/assert/assert_mod.hpp"             // IWYU pragma: export
#include "zktarn/callbacks/callbacks_type_util.hpp" // IWYU pragma: export
#include "zktarn/callbacks/callbacks_util.hpp"      // IWYU pragma: export
#include "zktarn/callbacks/stored_value.hpp"        // IWYU pragma: export
#include "zktarn/function_ref.hpp"                  // IWYU pragma: export
#include "zktarn/memory/memory_mod.hpp"             // IWYU pragma: export
#include "zktarn/owners.hpp"                        // IWYU pragma: export
#include "zktarn/random/random.hpp"                 // IWYU pragma: export
#include "zktarn/sorting/sorting_mod.hpp"           // IWYU pragma: export
#include "zktarn/types.hpp"                         // IWYU pragma: export
#include "zktarn/util/util.hpp"                     // IWYU pragma: export
#include "zktarn/vector/vector_mod.hpp"             // IWYU pragma: export
#include "zktarn/vector/vector_type.hpp"            // IWYU pragma: export
#include "zktarn/version.hpp"                       // IWYU pragma: export

#endif
