#pragma once

namespace zktarn::standin {

/// Whether there is an interrupt; the next poll no longer sees it.
bool take_interrupt() noexcept;

void reset_interrupts() noexcept;

} // namespace zktarn::standin
