#pragma once

#include "zktarn/types.hpp"

namespace zktarn {

/// The address of an optional argument; null if it is absent.
template <class T>
T* address_of(optional_ref<T> argument) {
    return argument.present() ? &*argument : nullptr;
}

} // namespace zktarn
