#pragma once

namespace zktarn::standin {

/// Returns whether an interrupt is pending, and clears it.
bool take_interrupt() noexcept;

void reset_interrupts() noexcept;

} // namespace zktarn::standin
