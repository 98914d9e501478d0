#include "zktarn/host/libut.hpp"

#include "attempt.hpp"
#include "interrupt_poll.hpp"

namespace zktarn::host {

extern "C" {

bool utIsInterruptPending() noexcept {
    constexpr auto what = standin::operation::utIsInterruptPending;
    return standin::attempt(
        what, false, [] { return standin::host_call{what}; },
        [] { return standin::take_interrupt(); });
}
}

} // namespace zktarn::host
