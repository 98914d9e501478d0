#pragma once

#include <cstdint>

#include "zktarn/host/libqv.hpp"

/// What the library asks of the host's extension interface, `libqvx`.
///
/// Declarations and obligations only: the host implements them, and where there is no host the
/// stand-in does. Arguments, ownership and thread as in `libqv`.

namespace zktarn::host {

extern "C" {

/// Calls the host-language function `name` with `ninputs` inputs, which stay the caller's, and
/// fills `noutputs` output slots with new arrays, which become the caller's. Returns a status,
/// which the library ignores.
std::int32_t qvxcallquarn800_(const std::int32_t& noutputs, array_handle* outputs,
                              const std::int32_t& ninputs, const array_handle* inputs,
                              const char* name, std::int64_t name_length) noexcept;

/// Writes `text` to the host console, all of its `text_length` characters and nothing else. Returns
/// a result, which the library ignores.
std::int32_t qvxprintf800_(const char* text, std::int64_t text_length) noexcept;
}

} // namespace zktarn::host
