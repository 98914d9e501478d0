#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

#include "zktarn/zktarn_util.hpp"

/// Conversion of C arguments to C++ arguments, and the test of addresses in a checked build.

namespace zktarn::c {

/// Whether one of the addresses is null, which the contract forbids. A checked build reports it to
/// the host; an ordinary build does not test and returns false.
template <class... Address>
bool any_null([[maybe_unused]] Address... addresses) noexcept {
#ifdef ZKTARN_CHECKED
    const bool found = (... || (addresses == nullptr));
    if (found) {
        assert_mod::tarnassert(0);
        return true;
    }
#endif
    return false;
}

/// The same for the address of `count` elements, which may be null when there are none.
template <class Count>
bool null_elements(const void* address, Count count) noexcept {
    return count >= 1 && any_null(address);
}

/// Whether there are records to work on. If there are none, the address may be null.
template <class Record>
bool has_records(const Record* first, std::int32_t count) noexcept {
    return count >= 1 && !any_null(first);
}

template <class T>
optional_ref<T> optional(T* address) noexcept {
    return address == nullptr ? optional_ref<T>{} : optional_ref<T>(*address);
}

} // namespace zktarn::c
