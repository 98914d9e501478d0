#pragma once

namespace zktarn::standin {

/// Whether there is an interrupt; it is then forgotten.
bool take_interrupt() noexcept;

} // namespace zktarn::standin
