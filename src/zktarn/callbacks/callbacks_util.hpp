#pragma once

#include <cstdint>
#include <span>
#include <string_view>

#include "zktarn/callbacks/callbacks_type_util.hpp"
#include "zktarn/export.hpp"
#include "zktarn/host/libqv.hpp"
#include "zktarn/types.hpp"

/// The bridge between a running solver and its host.
///
/// A solve begins with `cbinit`. If there is an output function (`cbhasoutputfcn`), the solver
/// reports to it: `qvinitcbarray` makes a host struct, `addrealscalartoqvstruct` and
/// `addrealvectoqvstruct` fill it, `qvcalloutputfcn` passes it to the function and returns whether
/// to stop; the solver itself then sets status 3. `cbprintdisplay` prints lines of progress, and
/// `cbhasinterrupt` returns whether to end the solve.
///
/// Codes, 32-bit integers that the solver keeps:
///
///     status      3: stopped by the output function; any other value: not stopped
///     ctrlc       1: poll the host for interrupts; any other value: never poll
///     display     0: print nothing; 1: print final output only; any other value: print every line
///     indicator   above 0: there is an output function
///
/// Each loaded copy of the library has one process-wide flag for interrupts. A poll that reports an
/// interrupt sets it; the next `cbinit` clears it. The flag is neither locked nor atomic, so the
/// bridge serves one solve at a time, from the solver's thread.
///
/// Nothing here reports an error: failure values of the host are passed on to its next operation,
/// as the host's headers (host/libqv.hpp, host/libqvx.hpp) say.

namespace zktarn::callbacks_util {

using callbacks_type_util::cbdata;
using host::array_handle;

namespace code {

/// A value of `status`.
inline constexpr std::int32_t stopped_by_output_function = 3;
/// A value of `ctrlc`.
inline constexpr std::int32_t poll_for_interrupts = 1;
/// Values of `display`.
inline constexpr std::int32_t display_off = 0;
inline constexpr std::int32_t display_final = 1;

} // namespace code

/// Begins a solve: makes a new record and clears the interrupt flag.
///
/// @param cb  out. The record, with the defaults of `cbdata` except `nodes_explored` 0; release it
///            by `delete`. Null if memory for it is missing. The previous record is not released.
ZKTARN_API void cbinit(cbdata*& cb) noexcept;

/// Makes a 1-by-1 host struct with the field "phase".
///
/// @param phase  in. The value of the field, trailing blanks included.
///
/// Returns its handle; 0 when the host could not make it. The caller destroys the struct, and all
/// it owns, by the host's `qvdestroyarray800_`.
[[nodiscard]] ZKTARN_API array_handle qvinitcbarray(std::string_view phase) noexcept;

/// Sets a field of a struct to a real scalar. Adds the field when there is none of that name.
///
/// @param structure  in. Made by `qvinitcbarray`.
/// @param name       in. Name of the field.
/// @param value      in. Any real.
ZKTARN_API void addrealscalartoqvstruct(const array_handle& structure, std::string_view name,
                                        const double& value) noexcept;

/// Sets a field of a struct to a real column. Adds the field when there is none of that name.
///
/// @param structure  in. Made by `qvinitcbarray`.
/// @param name       in. Name of the field.
/// @param values     in. At least n reals.
/// @param n          in. Number of rows, 0 or more; passed to the host unchanged.
ZKTARN_API void addrealvectoqvstruct(const array_handle& structure, std::string_view name,
                                     const double* values, const std::int64_t& n) noexcept;

/// Calls the host-language function "tarnCallback" with a struct and returns whether to stop.
///
/// @param structure  in. The caller keeps it.
/// @param stop       out. 1 when the first element of the result, truncated toward zero, is 1; else
///                   0, for NaN too. An interrupt never sets it.
/// @param status     in. See the codes above.
/// @param ctrlc      in. See the codes above.
///
/// The function must return a real array of at least one element. It is not called, and stop is 0,
/// in these cases, which are tested in this order:
///
///   1. the interrupt flag is set;
///   2. the status is 3;
///   3. a poll reports an interrupt.
///
/// When the call fails, stop is 0.
ZKTARN_API void qvcalloutputfcn(const array_handle& structure, flag& stop,
                                const std::int32_t& status, const std::int32_t& ctrlc) noexcept;

/// Prints a line on the host's console and flushes it.
///
/// @param status   in. See the codes above.
/// @param ctrlc    in. See the codes above.
/// @param display  in. See the codes above.
/// @param line     in. Of any length, trailing blanks included; a line feed is added.
///
/// Prints nothing when display is 0, which is tested first, or in one of the three cases of
/// `qvcalloutputfcn`. The line and its line feed go to the host in one call. A line of 512
/// characters or more is copied for that; if memory for the copy is missing, it goes in several
/// calls, in order.
ZKTARN_API void cbprintdisplay(const std::int32_t& status, const std::int32_t& ctrlc,
                               const std::int32_t& display, std::string_view line) noexcept;

/// Returns whether to end the solve: 1 in the three cases of `qvcalloutputfcn`, tested in that
/// order; else 0. Status 3 does not set the interrupt flag.
///
/// @param status  in. See the codes above.
/// @param ctrlc   in. See the codes above.
[[nodiscard]] ZKTARN_API flag cbhasinterrupt(const std::int32_t& status,
                                             const std::int32_t& ctrlc) noexcept;

/// 1 when the output function has stopped the solve: status 3.
[[nodiscard]] ZKTARN_API_INLINE flag cbstopfromoutputfcn(const std::int32_t& status) noexcept {
    return status == code::stopped_by_output_function ? 1 : 0;
}

/// 1 when there is an output function: indicator above 0.
[[nodiscard]] ZKTARN_API_INLINE flag cbhasoutputfcn(const std::int32_t& indicator) noexcept {
    return indicator > 0 ? 1 : 0;
}

/// 1 when nothing is displayed: display 0.
[[nodiscard]] ZKTARN_API_INLINE flag cbisdisplayoff(const std::int32_t& display) noexcept {
    return display == code::display_off ? 1 : 0;
}

/// 1 when only the final output is displayed: display 1.
[[nodiscard]] ZKTARN_API_INLINE flag cbisdisplayfinal(const std::int32_t& display) noexcept {
    return display == code::display_final ? 1 : 0;
}

/// 1 when the host is polled for interrupts: ctrlc 1.
[[nodiscard]] ZKTARN_API_INLINE flag cbisctrlcon(const std::int32_t& ctrlc) noexcept {
    return ctrlc == code::poll_for_interrupts ? 1 : 0;
}

/// Replaces every "E" of a text by "e", in exponents and elsewhere. Other characters stay.
///
/// @param text  in/out. Of any length.
ZKTARN_API_INLINE void lowercasee(std::span<char> text) noexcept {
    for (char& each : text) {
        if (each == 'E') {
            each = 'e';
        }
    }
}

} // namespace zktarn::callbacks_util
