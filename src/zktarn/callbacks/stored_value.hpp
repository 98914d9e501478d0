#pragma once

#include <new>
#include <type_traits>
#include <utility>

#include "zktarn/callbacks/callbacks_type_util.hpp"

/// C++ objects in the value slot of a `cbdatalist`.
///
///     const bool kept = store(list, progress{0.5, "cutting"});   // any copyable type
///     if (progress* p = stored<progress>(list)) ...              // null for any other type
///
/// The address of a descriptor identifies the type, so only the program or shared library that
/// stored a value can retrieve it.

namespace zktarn::callbacks_type_util {

namespace detail {

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

} // namespace detail

/// Stores an object in the slot and destroys the previous value. If memory is missing or the
/// object's move constructor throws, returns false and leaves the slot unchanged.
template <class T>
[[nodiscard]] bool store(cbdatalist& list, T object) noexcept {
    using held = typename detail::descriptor<T>::held;
    cbdatalist made;
    made.slot.type = &detail::descriptor<T>::type;
    if constexpr (detail::is_held_directly<T>) {
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

/// The object in the slot. Null if the slot is empty, if its value is of another type, and in a
/// copy for which memory was missing.
template <class T>
[[nodiscard]] T* stored(cbdatalist& list) noexcept {
    if (list.slot.value == nullptr || list.slot.type != &detail::descriptor<T>::type) {
        return nullptr;
    }
    if constexpr (detail::is_held_directly<T>) {
        return static_cast<T*>(list.slot.value);
    } else {
        return *static_cast<T**>(list.slot.value);
    }
}

/// The same for a constant record.
template <class T>
[[nodiscard]] const T* stored(const cbdatalist& list) noexcept {
    return stored<T>(const_cast<cbdatalist&>(list));
}

} // namespace zktarn::callbacks_type_util
