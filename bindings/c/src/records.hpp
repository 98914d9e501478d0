#pragma once

#include "zktarn/zktarn_util.hpp"
#include "zktarn_util.h"

/// Conversion of C records to C++ records. records.cpp asserts that they have the same layout.

namespace zktarn::c {

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
