#include "support/failing_new.hpp"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <new>

namespace {

std::int64_t countdown = 0;

// A record or two at a time is all that the library creates; nothing else uses the nothrow form.
std::array<void*, 64> objects = {};

} // namespace

namespace zktarn::testing {

void refuse_new(std::int64_t k) {
    countdown = k;
}

std::int64_t live_objects() {
    return std::count_if(objects.begin(), objects.end(),
                         [](const void* object) { return object != nullptr; });
}

} // namespace zktarn::testing

void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    if (countdown > 0 && --countdown == 0) {
        return nullptr;
    }
    const auto slot = std::find(objects.begin(), objects.end(), nullptr);
    if (slot == objects.end()) {
        return nullptr;
    }
    *slot = std::malloc(size);
    return *slot;
}

void operator delete(void* object) noexcept {
    if (object != nullptr) {
        std::replace(objects.begin(), objects.end(), object, static_cast<void*>(nullptr));
    }
    std::free(object);
}

void operator delete(void* object, std::size_t) noexcept {
    operator delete(object);
}

void operator delete(void* object, const std::nothrow_t&) noexcept {
    operator delete(object);
}

void* operator new(std::size_t size) {
    if (void* const object = std::malloc(size)) {
        return object;
    }
    std::abort();
}
