#pragma once

/// What the library asks of the host's utility library, `libut`.
///
/// Declarations and obligations only: the host implements them, and where there is no host the
/// stand-in does. Nothing may leave these operations by an exception.

namespace zktarn::host {

extern "C" {

/// True when the user has asked to interrupt the computation. Called on the solver's thread, often;
/// a host answers from a flag and may answer true once only, since the library remembers it.
bool utIsInterruptPending() noexcept;
}

} // namespace zktarn::host
