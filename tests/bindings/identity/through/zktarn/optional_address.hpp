#pragma once

#include "zktarn/types.hpp"

namespace zktarn {

/// Where an optional argument is; null when it is absent.
template <class T>
T* address_of(optional_ref<T> argument) {
    return argument.present() ? &*argument : nullptr;
}

} // namespace zktarn
