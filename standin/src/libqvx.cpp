#include "zktarn/host/libqvx.hpp"

#include "core.hpp"

namespace zktarn::host {

using standin::missing;
using standin::operation;

extern "C" {

std::int32_t qvxcallquarn800_(const std::int32_t&, array_handle*, const std::int32_t&,
                              const array_handle*, const char*, std::int64_t) noexcept {
    missing(operation::qvxcallquarn800_);
}

std::int32_t qvxprintf800_(const char*, std::int64_t) noexcept {
    missing(operation::qvxprintf800_);
}
}

} // namespace zktarn::host
