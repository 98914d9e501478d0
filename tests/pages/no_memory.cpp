// Linked into an example, this makes its host refuse the first request.

#include "zktarn_standin/control.hpp"

namespace {

[[maybe_unused]] const bool planned = (zktarn::standin::fail_request(1), true);

} // namespace
