#pragma once

#include <utility>

#include "zktarn/callbacks/callbacks_type_util.hpp"
#include "zktarn/callbacks/detail/stored_type.hpp"

/// C++ objects in the value slot of a `cbdatalist`.
///
///     const bool kept = store(list, progress{0.5, "cutting"});   // any copyable type
///     if (progress* p = stored<progress>(list)) ...              // null for any other type
///
/// The address of a descriptor identifies the type, so only the program or shared library that
/// stored a value can retrieve it.

namespace zktarn::callbacks_type_util {

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
