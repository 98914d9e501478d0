#include "zktarn/callbacks/callbacks_util.hpp"

#include <algorithm>
#include <array>
#include <cstddef>
#include <new>

#include "zktarn/host/libqvx.hpp"
#include "zktarn/host/libut.hpp"
#include "zktarn/host/libzkoptimutil.hpp"
#include "zktarn/util/detail/to_integer.hpp"

namespace zktarn::callbacks_util {

namespace {

flag interrupt_seen = 0;

/// Polls the host if ctrlc is 1. Returns whether the host reported an interrupt.
bool poll(std::int32_t ctrlc) noexcept {
    if (cbisctrlcon(ctrlc) == 0) {
        return false;
    }
    interrupt_seen = host::utIsInterruptPending();
    return interrupt_seen != 0;
}

/// Whether the solve ends. The output function is not called and nothing is printed after that.
bool is_over(std::int32_t status, std::int32_t ctrlc) noexcept {
    return interrupt_seen != 0 || cbstopfromoutputfcn(status) != 0 || poll(ctrlc);
}

std::int64_t length(std::string_view text) noexcept {
    return static_cast<std::int64_t>(text.size());
}

// Elements of host arrays are counted from 1.
constexpr std::int64_t first_element = 1;

/// Stores a new array in a field, and adds the field if it does not exist. Looks the field up
/// before it makes the array.
template <class Make>
void set_field(array_handle structure, std::string_view name, Make make) noexcept {
    std::int32_t number = host::qvgetfieldnumber800_(structure, name.data(), length(name));
    if (number == 0) {
        number = host::qvaddfield800_(structure, name.data(), length(name));
    }
    const array_handle value = make();
    host::qvsetfieldbynumber800_(structure, first_element, number, value);
}

void print(const char* text, std::size_t size) noexcept {
    host::qvxprintf800_(text, static_cast<std::int64_t>(size));
}

/// Prints a line with its line feed, from a buffer that has room for both.
void print_from(char* buffer, std::string_view line) noexcept {
    *std::copy(line.begin(), line.end(), buffer) = '\n';
    print(buffer, line.size() + 1);
}

/// Prints a line in one piece, or, if it is long and memory for a copy is missing, in several.
void print_line(std::string_view line) noexcept {
    std::array<char, 512> piece;
    if (line.size() >= piece.size()) {
        if (auto* const copy = static_cast<char*>(::operator new(line.size() + 1, std::nothrow))) {
            print_from(copy, line);
            ::operator delete(copy);
            return;
        }
    }
    for (; line.size() >= piece.size(); line.remove_prefix(piece.size())) {
        print(line.data(), piece.size());
    }
    print_from(piece.data(), line);
}

} // namespace

void cbinit(cbdata*& cb) noexcept {
    cb = new (std::nothrow) cbdata;
    if (cb != nullptr) {
        cb->nodes_explored = 0;
        cb->feasible_points = 0;
    }
    interrupt_seen = 0;
}

array_handle qvinitcbarray(std::string_view phase) noexcept {
    constexpr std::int64_t ndims = 1;
    constexpr std::int64_t extents[] = {1, 1};
    constexpr std::int32_t nfields = 1;
    constexpr std::string_view slot = "phase     ";
    constexpr std::string_view name = "phase";
    const array_handle structure =
        host::qvcreatestructarray800_(ndims, extents, nfields, slot.data(), length(slot));
    const array_handle text = host::qvcreatestring800_(phase.data(), length(phase));
    host::qvsetfield800_(structure, first_element, name.data(), text, length(name));
    return structure;
}

void addrealscalartoqvstruct(const array_handle& structure, std::string_view name,
                             const double& value) noexcept {
    set_field(structure, name, [&] { return host::qvcreatedoublescalar800_(value); });
}

void addrealvectoqvstruct(const array_handle& structure, std::string_view name,
                          const double* values, const std::int64_t& n) noexcept {
    set_field(structure, name, [&] {
        constexpr std::int64_t columns = 1;
        constexpr std::int32_t real_only = 0;
        const array_handle column = host::qvcreatedoublematrix800_(n, columns, real_only);
        host::qvcopyreal8toptr800_(values, host::qvgetpr800_(column), n);
        return column;
    });
}

void qvcalloutputfcn(const array_handle& structure, flag& stop, const std::int32_t& status,
                     const std::int32_t& ctrlc) noexcept {
    if (is_over(status, ctrlc)) {
        stop = 0;
        return;
    }
    constexpr std::string_view function = "tarnCallback";
    constexpr std::int32_t noutputs = 1;
    constexpr std::int32_t ninputs = 1;
    constexpr std::int64_t count = 1;
    array_handle output = 0;
    host::qvxcallquarn800_(noutputs, &output, ninputs, &structure, function.data(),
                           length(function));
    // The result when the host copies nothing.
    double answer = 0.0;
    host::qvcopyptrtoreal8800_(host::qvgetpr800_(output), &answer, count);
    host::qvdestroyarray800_(output);
    stop = util::detail::truncate_i32(answer) == 1 ? 1 : 0;
}

void cbprintdisplay(const std::int32_t& status, const std::int32_t& ctrlc,
                    const std::int32_t& display, std::string_view line) noexcept {
    if (cbisdisplayoff(display) != 0 || is_over(status, ctrlc)) {
        return;
    }
    print_line(line);
    host::ioFlushOptim();
}

flag cbhasinterrupt(const std::int32_t& status, const std::int32_t& ctrlc) noexcept {
    return is_over(status, ctrlc) ? 1 : 0;
}

} // namespace zktarn::callbacks_util
