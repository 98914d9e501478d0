#pragma once

#include <cstddef>
#include <cstdint>

#include "zktarn/zktarn_util.hpp"
#include "zktarn_util.h"

/// Conversion of C arguments and records to those of C++, and the test of addresses in a checked
/// build. records.cpp asserts that the records have the same layout.

namespace zktarn::c {

/// Whether one of the addresses is null, which the contract forbids. A checked build reports it to
/// the host; an ordinary build does not test and returns false.
template <class... Address>
bool any_null([[maybe_unused]] Address... addresses) noexcept {
#ifdef ZKTARN_CHECKED
    const bool found = (... || (addresses == nullptr));
    if (found) {
        assert_mod::tarnassert(0);
        return true;
    }
#endif
    return false;
}

/// The same for the address of `count` elements, which may be null when there are none.
template <class Count>
bool null_elements(const void* address, Count count) noexcept {
    return count >= 1 && any_null(address);
}

/// Whether there are records to work on. If there are none, the address may be null.
template <class Record>
bool has_records(const Record* first, std::int32_t count) noexcept {
    return count >= 1 && !any_null(first);
}

template <class T>
optional_ref<T> optional(T* address) noexcept {
    return address == nullptr ? optional_ref<T>{} : optional_ref<T>(*address);
}

/// The C++ record of a C record.
template <class Record>
struct counterpart;

template <>
struct counterpart<zktarn_l4_1d_array> {
    using type = array_1d<memory_mod::logical4>;
};
template <>
struct counterpart<zktarn_i8_1d_array> {
    using type = array_1d<std::int64_t>;
};
template <>
struct counterpart<zktarn_i4_1d_array> {
    using type = array_1d<std::int32_t>;
};
template <>
struct counterpart<zktarn_i2_1d_array> {
    using type = array_1d<std::int16_t>;
};
template <>
struct counterpart<zktarn_i1_1d_array> {
    using type = array_1d<std::int8_t>;
};
template <>
struct counterpart<zktarn_r8_1d_array> {
    using type = array_1d<double>;
};
template <>
struct counterpart<zktarn_i4_2d_array> {
    using type = array_2d<std::int32_t>;
};
template <>
struct counterpart<zktarn_r8_2d_array> {
    using type = array_2d<double>;
};
template <>
struct counterpart<zktarn_vector> {
    using type = vector_type::vector;
};
template <>
struct counterpart<zktarn_rng_state> {
    using type = random::rng_state;
};
template <>
struct counterpart<zktarn_cbstatusdata> {
    using type = callbacks_type_util::cbstatusdata;
};
template <>
struct counterpart<zktarn_cbdataelm> {
    using type = callbacks_type_util::cbdataelm;
};
template <>
struct counterpart<zktarn_cbdata> {
    using type = callbacks_type_util::cbdata;
};
template <>
struct counterpart<zktarn_parameter_block> {
    using type = callbacks_type_util::parameter_block;
};
template <>
struct counterpart<zktarn_value_type> {
    using type = callbacks_type_util::value_type;
};
template <>
struct counterpart<zktarn_value_slot> {
    using type = callbacks_type_util::value_slot;
};
template <>
struct counterpart<zktarn_cbdatalist> {
    using type = callbacks_type_util::cbdatalist;
};

/// The C++ record at the address of a C one.
template <class Record>
typename counterpart<Record>::type& cpp(Record* record) noexcept {
    return *reinterpret_cast<typename counterpart<Record>::type*>(record);
}

template <class Record>
const typename counterpart<Record>::type& cpp(const Record* record) noexcept {
    return *reinterpret_cast<const typename counterpart<Record>::type*>(record);
}

/// A reference to a record that the caller holds by address.
template <class Record>
typename counterpart<Record>::type*& cpp(Record** record) noexcept {
    return *reinterpret_cast<typename counterpart<Record>::type**>(record);
}

} // namespace zktarn::c
