#pragma once

#include "zktarn_standin/call_stack.hpp"

namespace zktarn::standin {

/// The current calls when origins are recorded, else nothing.
call_stack origin_now() noexcept;

/// Records origins as when the process started.
void reset_origins() noexcept;

} // namespace zktarn::standin
