#pragma once

#include "errors.hpp"
#include "host/python_host.hpp"

namespace zktarn::python {

/// Raises what the host stored while the library ran: the exception of an output function, of the
/// console, of Ctrl-C, of an assertion.
inline void raise_pending() {
    if (zktarn_python_raise() != 0) {
        throw python_error{};
    }
}

} // namespace zktarn::python
