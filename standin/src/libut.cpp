#include "zktarn/host/libut.hpp"

#include "attempt.hpp"
#include "interrupts.hpp"

namespace zktarn::host {

extern "C" {

bool utIsInterruptPending() noexcept {
    return standin::attempt(standin::operation::utIsInterruptPending, false,
                            [] { return standin::take_interrupt(); });
}
}

} // namespace zktarn::host
