#pragma once

#include "interpreter.hpp"

/// Exceptions that wait for the library to return (python_host.hpp says which, and which thread
/// gets them).

namespace zktarn::python_host {

/// Makes what the procedures below need. Returns false with an exception set when memory is
/// missing.
[[nodiscard]] bool prepare_exceptions() noexcept;

/// Stores the exception that is set, and clears it. Does nothing when none is set.
void store_exception(const interpreter_lock& lock) noexcept;

/// Whether an exception is stored that `zktarn_python_raise` would raise on this thread.
[[nodiscard]] bool has_stored_exception(const interpreter_lock& lock) noexcept;

} // namespace zktarn::python_host
