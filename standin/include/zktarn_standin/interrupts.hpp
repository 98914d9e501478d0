#pragma once

#include <cstdint>

/// Interrupts of the computation by the user.
///
/// A poll (`utIsInterruptPending`) answers true once for an interrupt, whatever it came from, and
/// false until there is another one.

namespace zktarn::standin {

/// Asks for an interrupt, as a user would. Callable from a signal handler.
void raise_interrupt() noexcept;

/// Makes the k-th poll from now answer true: 1 is the next one. Replaces what was planned before;
/// k < 1 plans none.
void interrupt_at_poll(std::int64_t k) noexcept;

/// Whether Ctrl-C (SIGINT) asks for an interrupt instead of ending the process. The first poll
/// turns it on, unless it has been turned off or on before or SIGINT is ignored. Turning it off
/// restores the handler that was there, unless the program has installed another one since. Returns
/// the previous setting.
///
/// A second SIGINT within two seconds restores that handler and goes to it: by default it ends the
/// process.
bool listen_for_sigint(bool on) noexcept;

} // namespace zktarn::standin
