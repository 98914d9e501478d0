#pragma once

#include <new>
#include <type_traits>
#include <utility>

#include "zktarn/callbacks/callbacks_type_util.hpp"

/// C++ objects in the value slot of a `cbdatalist`.
///
///     store(list, progress{0.5, "cutting"});          // any copyable type
///     if (progress* p = stored<progress>(list)) ...   // null for an empty slot and any other type
///
/// The type is known by the address of its descriptor, so ask for a value in the program or shared
/// library that stored it.

namespace zktarn::callbacks_type_util {

namespace detail {

/// Whether an object lies in the slot's storage itself: its bits are all there is to it. Any other
/// may know its own address, so the slot holds a pointer to it.
template <class T>
inline constexpr bool lies_in_slot = std::is_trivially_copyable_v<T> &&
                                     alignof(T) <= __STDCPP_DEFAULT_NEW_ALIGNMENT__;

/// A new object; null when there is no memory for it, or when its constructor throws.
template <class T, class From>
T* make(From&& from) noexcept {
#ifdef __cpp_exceptions
    try {
#endif
        return ::new (std::nothrow) T(std::forward<From>(from));
#ifdef __cpp_exceptions
    } catch (...) {
        return nullptr;
    }
#endif
}

template <class T>
struct descriptor {
    using held = std::conditional_t<lies_in_slot<T>, T, T*>;

    static void copy(void* first, const std::int32_t& count) noexcept {
        T** const objects = static_cast<T**>(first);
        for (std::int32_t i = 0; i < count; ++i) {
            objects[i] = objects[i] == nullptr ? nullptr : make<T>(std::as_const(*objects[i]));
        }
    }
    static void destroy(void* value) noexcept { ::delete *static_cast<T**>(value); }

    static constexpr value_type type = {sizeof(held), 0, lies_in_slot<T> ? nullptr : copy,
                                        lies_in_slot<T> ? nullptr : destroy, nullptr};
};

} // namespace detail

/// Stores an object in the slot, in place of the value it had. Returns false, and changes nothing,
/// when there is no memory for it or its move constructor throws.
template <class T>
bool store(cbdatalist& list, T object) noexcept {
    using held = typename detail::descriptor<T>::held;
    cbdatalist made;
    made.slot.type = &detail::descriptor<T>::type;
    if constexpr (detail::lies_in_slot<T>) {
        made.slot.value = detail::make<held>(object);
    } else {
        T* const boxed = detail::make<T>(std::move(object));
        made.slot.value = boxed == nullptr ? nullptr : detail::make<held>(boxed);
        if (made.slot.value == nullptr) {
            ::delete boxed;
        }
    }
    if (made.slot.value == nullptr) {
        return false;
    }
    std::swap(list.slot, made.slot);
    return true;
}

/// The object in the slot; null when the slot is empty, holds a value of another type, or is a copy
/// for whose object there was no memory.
template <class T>
T* stored(cbdatalist& list) noexcept {
    if (list.slot.value == nullptr || list.slot.type != &detail::descriptor<T>::type) {
        return nullptr;
    }
    if constexpr (detail::lies_in_slot<T>) {
        return static_cast<T*>(list.slot.value);
    } else {
        return *static_cast<T**>(list.slot.value);
    }
}

template <class T>
const T* stored(const cbdatalist& list) noexcept {
    return stored<T>(const_cast<cbdatalist&>(list));
}

} // namespace zktarn::callbacks_type_util
