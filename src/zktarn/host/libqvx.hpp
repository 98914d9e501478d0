#pragma once

#include <cstdint>

#include "zktarn/host/libqv.hpp"

/// The host's extension interface, `libqvx`, as far as the library calls it: functions of the
/// host's language, and the console.
///
/// Declarations and obligations only; the host implements them. Arguments, ownership, failure and
/// thread as in `libqv`.

namespace zktarn::host {

extern "C" {

/// Calls the host-language function `name` with `ninputs` inputs, which the caller keeps, and fills
/// `noutputs` outputs with new arrays, which the caller owns. The library passes one input, the
/// struct; one output, which holds 0 before the call; and the name "tarnCallback". It ignores the
/// status that is returned.
///
/// The function must return a real array of at least one element. Its first element, truncated
/// toward zero, stops the solve when it is 1.
///
/// Failure: leaves the output 0. `qvcalloutputfcn` then does not stop the solve.
std::int32_t qvxcallquarn800_(const std::int32_t& noutputs, array_handle* outputs,
                              const std::int32_t& ninputs, const array_handle* inputs,
                              const char* name, std::int64_t name_length) noexcept;

/// Writes `text` to the host's console: all of its characters, as text and not as a format, and
/// nothing else. The host prints or copies it during the call. The library passes a line with its
/// line feed in one call, or in several, as `cbprintdisplay` states. It ignores the result.
std::int32_t qvxprintf800_(const char* text, std::int64_t text_length) noexcept;
}

} // namespace zktarn::host
