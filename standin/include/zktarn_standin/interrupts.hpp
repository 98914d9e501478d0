#pragma once

#include <cstdint>

/// Interrupts of the computation by the user.
///
/// A poll (`utIsInterruptPending`) returns true once for each interrupt, whatever caused it.

namespace zktarn::standin {

/// Requests an interrupt, as a user would. Callable from a signal handler.
void raise_interrupt() noexcept;

/// Makes the k-th poll from now return true: 1 is the next one. Replaces an earlier plan; k < 1
/// plans no interrupt.
void interrupt_at_poll(std::int64_t k) noexcept;

/// Chooses whether Ctrl-C (SIGINT) requests an interrupt instead of ending the process. Returns the
/// previous setting.
///
/// The first poll switches it on, unless this procedure was called before or SIGINT is ignored.
/// Switching it off restores the previous handler of SIGINT, unless the program has installed
/// another one since.
///
/// A second SIGINT within two seconds restores that handler and runs it: by default it ends the
/// process.
bool listen_for_sigint(bool on) noexcept;

} // namespace zktarn::standin
