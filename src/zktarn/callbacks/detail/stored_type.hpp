#pragma once

#include <cstdint>
#include <new>
#include <type_traits>
#include <utility>

#include "zktarn/callbacks/callbacks_type_util.hpp"

/// How a slot holds, copies and destroys a value of a C++ type.

namespace zktarn::callbacks_type_util::detail {

/// Whether the slot's storage holds the object itself, which is possible when a copy of its bits is
/// a copy of the object. For any other type the slot holds a pointer to it, because the object may
/// depend on its own address.
template <class T>
inline constexpr bool is_held_directly = std::is_trivially_copyable_v<T> &&
                                         alignof(T) <= __STDCPP_DEFAULT_NEW_ALIGNMENT__;

/// A new object; null if memory for it is missing or its constructor throws.
template <class T, class Source>
T* make(Source&& source) noexcept {
#ifdef __cpp_exceptions
    try {
#endif
        return ::new (std::nothrow) T(std::forward<Source>(source));
#ifdef __cpp_exceptions
    } catch (...) {
        return nullptr;
    }
#endif
}

template <class T>
struct descriptor {
    using held = std::conditional_t<is_held_directly<T>, T, T*>;

    static void copy(void* first, const std::int32_t& count) noexcept {
        T** const objects = static_cast<T**>(first);
        for (std::int32_t i = 0; i < count; ++i) {
            objects[i] = objects[i] == nullptr ? nullptr : make<T>(std::as_const(*objects[i]));
        }
    }
    static void destroy(void* value) noexcept { ::delete *static_cast<T**>(value); }

    static constexpr value_type type = {sizeof(held), 0, is_held_directly<T> ? nullptr : copy,
                                        is_held_directly<T> ? nullptr : destroy, nullptr};
};

} // namespace zktarn::callbacks_type_util::detail
