#pragma once

/// The host's utility library, `libut`, as far as the library calls it: interrupts.
///
/// Declarations and obligations only; the host implements them. No exception may leave an
/// operation.

namespace zktarn::host {

extern "C" {

/// Returns whether the user has asked to interrupt the computation. Called by `callbacks_util` on
/// the solver's thread, often, and only for a solve that polls; so it should return a flag and do
/// nothing else. It need not return true twice for one interrupt, because the library stores the
/// first report.
bool utIsInterruptPending() noexcept;
}

} // namespace zktarn::host
