#pragma once

/// The complete control of the stand-in host.
///
/// The stand-in supplies the host's operations on machines without a host. A solver links
/// `zktarn::standin` beside `zktarn::util` and runs as it would inside the host. Its tests include
/// this header to make the host fail on purpose, to count and log the calls of its operations, and
/// to check that everything is released.
///
/// Everything is process-wide and callable from any thread. Nothing here counts as a call of a host
/// operation. Procedures that are not `noexcept` throw `std::bad_alloc` if memory is missing, and
/// nothing else.

#include "zktarn_standin/arrays.hpp"     // IWYU pragma: export
#include "zktarn_standin/blocks.hpp"     // IWYU pragma: export
#include "zktarn_standin/call_log.hpp"   // IWYU pragma: export
#include "zktarn_standin/call_stack.hpp" // IWYU pragma: export
#include "zktarn_standin/console.hpp"    // IWYU pragma: export
#include "zktarn_standin/faults.hpp"     // IWYU pragma: export
#include "zktarn_standin/functions.hpp"  // IWYU pragma: export
#include "zktarn_standin/interrupts.hpp" // IWYU pragma: export
#include "zktarn_standin/leaks.hpp"      // IWYU pragma: export
#include "zktarn_standin/operations.hpp" // IWYU pragma: export
