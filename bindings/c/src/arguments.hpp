#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

#include "zktarn/zktarn_util.hpp"

/// Arguments of C as arguments of C++, and the test of their addresses in a checked build.

namespace zktarn::c {

/// Whether one of the addresses, none of which may be null, is null. A checked build reports it to
/// the host; an ordinary build does not look.
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

/// Whether there are records to work on; the address of none may be null.
template <class Record>
bool has_records(const Record* first, std::int32_t count) noexcept {
    return count >= 1 && !any_null(first);
}

template <class T>
optional_ref<T> optional(T* address) noexcept {
    return address == nullptr ? optional_ref<T>{} : optional_ref<T>(*address);
}

} // namespace zktarn::c
