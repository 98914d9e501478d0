#include "zktarn/callbacks/callbacks_type_util.hpp"

#include <cstring>
#include <new>
#include <span>

namespace zktarn::callbacks_type_util {

namespace {

/// The records of an array.
template <class Record>
std::span<Record> records(Record& first, std::int32_t count) noexcept {
    return {&first, count < 1 ? std::size_t{0} : static_cast<std::size_t>(count)};
}

/// A copy of `size` bytes in new storage; null if memory for it is missing.
void* duplicate(const void* bytes, std::int64_t size) noexcept {
    const auto length = static_cast<std::size_t>(size);
    void* const copy = ::operator new(length, std::nothrow);
    if (copy != nullptr) {
        std::memcpy(copy, bytes, length);
    }
    return copy;
}

std::int64_t size_of_value(const value_slot& slot) noexcept {
    return slot.type->has_parameters != 0 ? slot.parameters->value_size : slot.type->size;
}

bool owns_parameters(const value_slot& slot) noexcept {
    return slot.parameters != nullptr && slot.parameters->owned != 0;
}

void release_parameters(value_slot& slot) noexcept {
    if (owns_parameters(slot)) {
        ::operator delete(slot.parameters);
        slot.parameters = nullptr;
    }
}

/// Gives a slot that was copied bit for bit its own copies of the value and of an owned block. If
/// memory is missing, the slot is empty and owns nothing.
void clone(value_slot& slot) noexcept {
    if (owns_parameters(slot)) {
        const auto size = slot.parameters->count * static_cast<std::int64_t>(sizeof(std::int64_t));
        slot.parameters = static_cast<parameter_block*>(duplicate(slot.parameters, size));
        if (slot.parameters == nullptr) {
            slot.value = nullptr;
            return;
        }
        slot.parameters->owned = 1;
    }
    slot.value = duplicate(slot.value, size_of_value(slot));
    if (slot.value == nullptr) {
        release_parameters(slot);
    } else if (slot.type->copy != nullptr) {
        slot.type->copy(slot.value, 1);
    }
}

} // namespace

void _cbstatusdatainitialise(cbstatusdata& first, const std::int32_t& count) noexcept {
    const auto all = records(first, count);
    if (!all.empty()) {
        std::memset(static_cast<void*>(&first), 0, all.size_bytes());
    }
}

void _cbdatainitialise(cbdata& first, const std::int32_t& count) noexcept {
    for (cbdata& each : records(first, count)) {
        each = cbdata{};
    }
}

void _cbdatalistinitialise(cbdatalist& first, const std::int32_t& count) noexcept {
    for (cbdatalist& each : records(first, count)) {
        each.slot.value = nullptr;
        each.first_handle = 0;
        each.second_handle = 0;
    }
}

void _cbdatalistcopy(cbdatalist& first, const std::int32_t& count) noexcept {
    for (cbdatalist& each : records(first, count)) {
        if (each.slot.value != nullptr) {
            clone(each.slot);
        }
    }
}

void _cbdatalistfinalise(cbdatalist& first, const std::int32_t& count) noexcept {
    for (cbdatalist& each : records(first, count)) {
        value_slot& slot = each.slot;
        if (slot.value == nullptr) {
            continue;
        }
        const value_type& type = *slot.type;
        if (type.final != nullptr) {
            type.final(slot.value);
        } else if (type.finalise != nullptr) {
            type.finalise(slot.value, 1, type.has_parameters != 0 ? slot.parameters : nullptr);
        }
        ::operator delete(slot.value);
        release_parameters(slot);
        slot.value = nullptr;
    }
}

} // namespace zktarn::callbacks_type_util
