#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <new>
#include <utility>

#include "arguments.hpp"

/// Values of n bytes in the slot of a cbdatalist.
///
/// The procedures of a value type receive only the value. So the size, the procedures and the
/// context of one value are stored in a header before its bytes. The length parameters hold the
/// size of both.

using namespace zktarn;
using c::cpp;
using callbacks_type_util::cbdatalist;
using callbacks_type_util::parameter_block;
using callbacks_type_util::value_slot;
using callbacks_type_util::value_type;

namespace {

struct alignas(__STDCPP_DEFAULT_NEW_ALIGNMENT__) header {
    std::size_t size;
    zktarn_value_copy copy;
    zktarn_value_destroy destroy;
    void* context;
    /// False in a copy that the caller's procedure could not make.
    bool present;
};

void* bytes_of(void* value) noexcept {
    return static_cast<std::byte*>(value) + sizeof(header);
}

void copy_value(void* first, const std::int32_t& /*count*/) noexcept {
    auto& made = *static_cast<header*>(first);
    if (made.present && made.copy != nullptr) {
        made.present = made.copy(bytes_of(first), made.context) != 0;
    }
}

void destroy_value(void* value) noexcept {
    const auto& stored = *static_cast<const header*>(value);
    if (stored.present && stored.destroy != nullptr) {
        stored.destroy(bytes_of(value), stored.context);
    }
}

constexpr value_type bytes_type = {0, 1, copy_value, destroy_value, nullptr};

constexpr std::size_t largest =
    static_cast<std::size_t>(std::numeric_limits<std::int64_t>::max()) - sizeof(header);

parameter_block* make_parameters(std::size_t size) noexcept {
    void* const block = ::operator new(sizeof(parameter_block), std::nothrow);
    return block == nullptr ? nullptr
                            : ::new (block) parameter_block{1, 3, static_cast<std::int64_t>(size)};
}

} // namespace

zktarn_flag zktarn_store_value(zktarn_cbdatalist* list, const void* value, size_t n,
                               zktarn_value_copy copy, zktarn_value_destroy destroy,
                               void* context) {
    if (c::any_null(list) || c::null_elements(value, n) || n > largest) {
        return 0;
    }
    const std::size_t size = sizeof(header) + n;
    void* const stored = ::operator new(size, std::nothrow);
    parameter_block* const parameters = make_parameters(size);
    if (stored == nullptr || parameters == nullptr) {
        ::operator delete(stored);
        ::operator delete(parameters);
        return 0;
    }
    ::new (stored) header{n, copy, destroy, context, true};
    if (n >= 1) {
        std::memcpy(bytes_of(stored), value, n);
    }
    // The old value is destroyed last, because `value` may be a part of it.
    cbdatalist old;
    old.slot = {stored, &bytes_type, parameters};
    std::swap(cpp(list).slot, old.slot);
    return 1;
}

void* zktarn_stored_value(const zktarn_cbdatalist* list, size_t* n) {
    if (c::any_null(list)) {
        return nullptr;
    }
    const value_slot& slot = cpp(list).slot;
    const auto* const held = slot.value != nullptr && slot.type == &bytes_type
                                 ? static_cast<const header*>(slot.value)
                                 : nullptr;
    const bool present = held != nullptr && held->present;
    if (n != nullptr) {
        *n = present ? held->size : 0;
    }
    return present ? bytes_of(slot.value) : nullptr;
}
