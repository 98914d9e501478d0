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
/// A solve begins with `cbinit`. Where `cbhasoutputfcn` says that there is an output function, the
/// solver reports to it: `qvinitcbarray` makes a host struct, `addrealscalartoqvstruct` and
/// `addrealvectoqvstruct` fill it, `qvcalloutputfcn` hands it over and tells whether to stop; the
/// solver then records status 3 itself. Lines of progress go through `cbprintdisplay`, and
/// `cbhasinterrupt` tells whether to end the solve.
///
/// Codes, each a 32-bit integer of the solver's own:
///
///     status      3: stopped by the output function. Any other value: not stopped
///     ctrlc       1: poll the host for interrupts. Any other value: never poll
///     display     0: print nothing. 1: final output only. Any other value: more of it
///     indicator   above 0: there is an output function
///
/// There is one flag for the whole process, one in each copy of the library: an interrupt, once a
/// poll has answered true, is remembered until the next `cbinit`. It is neither locked nor atomic,
/// so the bridge serves one solve at a time, from the solver's thread. What the host's operations
/// answer to failures is passed on, not judged; nothing here reports an error.

namespace zktarn::callbacks_util {

using callbacks_type_util::cbdata;
using host::array_handle;

namespace code {

inline constexpr std::int32_t stopped_by_output_function = 3;
inline constexpr std::int32_t poll_for_interrupts = 1;
inline constexpr std::int32_t display_off = 0;
inline constexpr std::int32_t display_final = 1;

} // namespace code

/// Begins a solve: makes a new record with the defaults of `cbdata` but `nodes_explored` 0, and
/// forgets an interrupt that an earlier solve has seen.
///
/// @param cb  out. The record, to be released by `delete`; null when there is no memory for it. A
///            record that it referred to before is not released.
ZKTARN_API void cbinit(cbdata*& cb) noexcept;

/// Makes a 1-by-1 host struct with the field "phase".
///
/// @param phase  in. What the field holds, trailing blanks included.
///
/// Returns its handle. The struct is the caller's, who destroys it, with what it owns, by the
/// host's `qvdestroyarray800_`.
[[nodiscard]] ZKTARN_API array_handle qvinitcbarray(std::string_view phase) noexcept;

/// Sets a field of a struct to a real scalar. The field is added when there is none of that name.
///
/// @param structure  in. Made by `qvinitcbarray`.
/// @param name       in. Name of the field.
/// @param value      in.
ZKTARN_API void addrealscalartoqvstruct(const array_handle& structure, std::string_view name,
                                        const double& value) noexcept;

/// Sets a field of a struct to a real column. The field is added when there is none of that name.
///
/// @param structure  in. Made by `qvinitcbarray`.
/// @param name       in. Name of the field.
/// @param values     in. At least n reals.
/// @param n          in. Number of rows, 0 or more; goes to the host as it is.
ZKTARN_API void addrealvectoqvstruct(const array_handle& structure, std::string_view name,
                                     const double* values, const std::int64_t& n) noexcept;

/// Calls the host function "tarnCallback" with a struct and learns whether it asks to stop.
///
/// @param structure  in. Stays the caller's.
/// @param stop       out. 1 when the answer, truncated toward zero, is 1; else 0. An interrupt
///                   never sets it.
/// @param status     in. See the codes above.
/// @param ctrlc      in. See the codes above.
///
/// The function is not called, and stop is 0, when an interrupt has been seen, when the status is
/// 3, and when a poll sees an interrupt now; in this order. It must return a real array with at
/// least one element; the first one is its answer, and one that is not a number counts as 0.
ZKTARN_API void qvcalloutputfcn(const array_handle& structure, flag& stop,
                                const std::int32_t& status, const std::int32_t& ctrlc) noexcept;

/// Prints a line on the host's console and flushes it.
///
/// @param status   in. See the codes above.
/// @param ctrlc    in. See the codes above.
/// @param display  in. See the codes above.
/// @param line     in. Of any length, trailing blanks included; a line feed is added.
///
/// Nothing is printed when display is 0, when an interrupt has been seen, when the status is 3, and
/// when a poll sees an interrupt now; in this order. The line goes to the host in one piece; only a
/// long one for which there is no memory goes in several, one after the other.
ZKTARN_API void cbprintdisplay(const std::int32_t& status, const std::int32_t& ctrlc,
                               const std::int32_t& display, std::string_view line) noexcept;

/// Whether to end the solve: 1 when an interrupt has been seen, when the status is 3, or when a
/// poll sees an interrupt now; in this order. Status 3 is not remembered.
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

/// Makes every "E" of a text an "e", be it of an exponent or not, and leaves every other character.
///
/// @param text  in/out.
ZKTARN_API_INLINE void lowercasee(std::span<char> text) noexcept {
    for (char& each : text) {
        if (each == 'E') {
            each = 'e';
        }
    }
}

} // namespace zktarn::callbacks_util
