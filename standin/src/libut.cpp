#include "zktarn/host/libut.hpp"

#include "core.hpp"

namespace zktarn::host {

extern "C" {

bool utIsInterruptPending() noexcept {
    standin::missing(standin::operation::utIsInterruptPending);
}
}

} // namespace zktarn::host
