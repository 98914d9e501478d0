#pragma once

#include "zktarn_standin/call_stack.hpp"

namespace zktarn::standin {

/// The current calls if origins are recorded, else an empty stack.
call_stack origin_now() noexcept;

/// Records origins as when the process started.
void reset_origins() noexcept;

} // namespace zktarn::standin
