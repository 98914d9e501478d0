#pragma once

namespace zktarn::python_host {

/// Makes what a call of a function needs even when memory is missing. Returns false with an
/// exception set when memory is missing.
[[nodiscard]] bool prepare_functions() noexcept;

} // namespace zktarn::python_host
