#include "arguments.hpp"

#include <cstddef>
#include <type_traits>

#include "zktarn/version.hpp"

/// Agreement of the C header with the library: the version that programs compare, and assertions
/// that each C record has the size, the alignment and the component offsets of its C++ counterpart.

namespace zktarn::c {

namespace {

template <class Record>
constexpr bool same_record = sizeof(Record) == sizeof(typename counterpart<Record>::type) &&
                             alignof(Record) == alignof(typename counterpart<Record>::type) &&
                             std::is_standard_layout_v<Record>&& std::is_standard_layout_v<
                                 typename counterpart<Record>::type>;

#define ZKTARN_SAME_COMPONENT(record, component)                                                   \
    static_assert(offsetof(record, component) ==                                                   \
                      offsetof(typename counterpart<record>::type, component) &&                   \
                  sizeof(record::component) == sizeof(counterpart<record>::type::component))

#define ZKTARN_SAME_ARRAY(record)                                                                  \
    static_assert(same_record<record>);                                                            \
    static_assert(                                                                                 \
        std::is_same_v<decltype(record::data), decltype(counterpart<record>::type::data)>);        \
    ZKTARN_SAME_COMPONENT(record, data);                                                           \
    ZKTARN_SAME_COMPONENT(record, extent);                                                         \
    ZKTARN_SAME_COMPONENT(record, lower_bound)

ZKTARN_SAME_ARRAY(zktarn_l4_1d_array);
ZKTARN_SAME_ARRAY(zktarn_i8_1d_array);
ZKTARN_SAME_ARRAY(zktarn_i4_1d_array);
ZKTARN_SAME_ARRAY(zktarn_i2_1d_array);
ZKTARN_SAME_ARRAY(zktarn_i1_1d_array);
ZKTARN_SAME_ARRAY(zktarn_r8_1d_array);
ZKTARN_SAME_ARRAY(zktarn_i4_2d_array);
ZKTARN_SAME_ARRAY(zktarn_r8_2d_array);

static_assert(same_record<zktarn_vector>);
ZKTARN_SAME_COMPONENT(zktarn_vector, coef);
ZKTARN_SAME_COMPONENT(zktarn_vector, ind);
ZKTARN_SAME_COMPONENT(zktarn_vector, elm);
ZKTARN_SAME_COMPONENT(zktarn_vector, nz);

static_assert(same_record<zktarn_rng_state>);
ZKTARN_SAME_COMPONENT(zktarn_rng_state, generator);
static_assert(std::is_same_v<zktarn_saved_state, random::saved_state>);

static_assert(same_record<zktarn_cbstatusdata>);
ZKTARN_SAME_COMPONENT(zktarn_cbstatusdata, status);
ZKTARN_SAME_COMPONENT(zktarn_cbstatusdata, phase);
ZKTARN_SAME_COMPONENT(zktarn_cbstatusdata, iterations);
ZKTARN_SAME_COMPONENT(zktarn_cbstatusdata, nodes);
ZKTARN_SAME_COMPONENT(zktarn_cbstatusdata, cuts);
ZKTARN_SAME_COMPONENT(zktarn_cbstatusdata, objective);
ZKTARN_SAME_COMPONENT(zktarn_cbstatusdata, bound);
ZKTARN_SAME_COMPONENT(zktarn_cbstatusdata, seconds);

static_assert(same_record<zktarn_cbdataelm>);
ZKTARN_SAME_COMPONENT(zktarn_cbdataelm, quantity);
ZKTARN_SAME_COMPONENT(zktarn_cbdataelm, index);
ZKTARN_SAME_COMPONENT(zktarn_cbdataelm, value);

static_assert(same_record<zktarn_cbdata>);
ZKTARN_SAME_COMPONENT(zktarn_cbdata, nodes_explored);
ZKTARN_SAME_COMPONENT(zktarn_cbdata, feasible_points);
ZKTARN_SAME_COMPONENT(zktarn_cbdata, node);
ZKTARN_SAME_COMPONENT(zktarn_cbdata, parent_node);
ZKTARN_SAME_COMPONENT(zktarn_cbdata, depth);
ZKTARN_SAME_COMPONENT(zktarn_cbdata, branching_variable);
ZKTARN_SAME_COMPONENT(zktarn_cbdata, lower_bound);
ZKTARN_SAME_COMPONENT(zktarn_cbdata, upper_bound);
ZKTARN_SAME_COMPONENT(zktarn_cbdata, gap);
ZKTARN_SAME_COMPONENT(zktarn_cbdata, incumbent_node);
ZKTARN_SAME_COMPONENT(zktarn_cbdata, cuts);
ZKTARN_SAME_COMPONENT(zktarn_cbdata, restarts);

static_assert(same_record<zktarn_parameter_block>);
ZKTARN_SAME_COMPONENT(zktarn_parameter_block, owned);
ZKTARN_SAME_COMPONENT(zktarn_parameter_block, count);
ZKTARN_SAME_COMPONENT(zktarn_parameter_block, value_size);

static_assert(same_record<zktarn_value_type>);
ZKTARN_SAME_COMPONENT(zktarn_value_type, size);
ZKTARN_SAME_COMPONENT(zktarn_value_type, has_parameters);
ZKTARN_SAME_COMPONENT(zktarn_value_type, copy);
ZKTARN_SAME_COMPONENT(zktarn_value_type, final);
ZKTARN_SAME_COMPONENT(zktarn_value_type, finalise);

static_assert(same_record<zktarn_value_slot>);
ZKTARN_SAME_COMPONENT(zktarn_value_slot, value);
ZKTARN_SAME_COMPONENT(zktarn_value_slot, type);
ZKTARN_SAME_COMPONENT(zktarn_value_slot, parameters);

static_assert(same_record<zktarn_cbdatalist>);
ZKTARN_SAME_COMPONENT(zktarn_cbdatalist, slot);
ZKTARN_SAME_COMPONENT(zktarn_cbdatalist, first_handle);
ZKTARN_SAME_COMPONENT(zktarn_cbdatalist, second_handle);

static_assert(std::is_same_v<zktarn_flag, flag>);
static_assert(std::is_same_v<zktarn_array_handle, callbacks_util::array_handle>);
static_assert(ZKTARN_STOPPED_BY_OUTPUT_FUNCTION ==
              callbacks_util::code::stopped_by_output_function);
static_assert(ZKTARN_POLL_FOR_INTERRUPTS == callbacks_util::code::poll_for_interrupts);
static_assert(ZKTARN_DISPLAY_OFF == callbacks_util::code::display_off);
static_assert(ZKTARN_DISPLAY_FINAL == callbacks_util::code::display_final);

} // namespace

} // namespace zktarn::c

const char* zktarn_version() {
    return ZKTARN_VERSION_STRING;
}
