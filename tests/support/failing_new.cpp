#include "support/failing_new.hpp"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <new>

namespace {

std::int64_t countdown = 0;

// A record or two at a time is all that the library creates; nothing else uses the nothrow form.
std::array<void*, 64> objects = {};
std::array<std::size_t, objects.size()> sizes = {};

// Stands behind each object, so that whoever writes more than was asked for is found out.
constexpr std::array<unsigned char, 8> guard = {0xB5, 0xB5, 0xB5, 0xB5, 0xB5, 0xB5, 0xB5, 0xB5};

void check_guard(const void* object, std::size_t size) {
    const auto* const behind = static_cast<const unsigned char*>(object) + size;
    if (std::memcmp(behind, guard.data(), guard.size()) != 0) {
        std::fprintf(stderr, "something was written behind an object of %zu bytes\n", size);
        std::abort();
    }
}

} // namespace

namespace zktarn::testing {

void refuse_new(std::int64_t k) {
    countdown = k;
}

bool refusal_is_due() {
    return countdown > 0;
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
    void* const object = std::malloc(size + guard.size());
    if (object != nullptr) {
        std::memcpy(static_cast<unsigned char*>(object) + size, guard.data(), guard.size());
    }
    *slot = object;
    sizes[static_cast<std::size_t>(slot - objects.begin())] = size;
    return object;
}

void operator delete(void* object) noexcept {
    const auto slot = std::find(objects.begin(), objects.end(), object);
    if (object != nullptr && slot != objects.end()) {
        check_guard(object, sizes[static_cast<std::size_t>(slot - objects.begin())]);
        *slot = nullptr;
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
