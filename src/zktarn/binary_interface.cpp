// What programs compiled against the headers find in the library: a symbol for each inline
// procedure, and the layout of argument types and records.

#include <cstddef>
#include <cstdint>
#include <type_traits>

#include "zktarn/callbacks/callbacks_type_util.hpp"
#include "zktarn/function_ref.hpp"
#include "zktarn/random/random.hpp"
#include "zktarn/types.hpp"
#include "zktarn/vector/vector_type.hpp"

// No other source includes this header, whose procedures are all inline.
#include "zktarn/util/array_copy.hpp"

namespace zktarn {

static_assert(sizeof(flag) == 8);

static_assert(std::is_trivially_copyable_v<array_1d<double>>);
static_assert(std::is_standard_layout_v<array_1d<double>>);
static_assert(sizeof(array_1d<double>) == 24);
static_assert(offsetof(array_1d<double>, data) == 0);
static_assert(offsetof(array_1d<double>, extent) == 8);
static_assert(offsetof(array_1d<double>, lower_bound) == 16);

static_assert(std::is_trivially_copyable_v<array_2d<std::int32_t>>);
static_assert(std::is_standard_layout_v<array_2d<std::int32_t>>);
static_assert(sizeof(array_2d<std::int32_t>) == 40);
static_assert(offsetof(array_2d<std::int32_t>, extent) == 8);
static_assert(offsetof(array_2d<std::int32_t>, lower_bound) == 24);

static_assert(sizeof(matrix_shape) == 16);
static_assert(offsetof(matrix_shape, rows) == 0);
static_assert(offsetof(matrix_shape, columns) == 8);

static_assert(std::is_trivially_copyable_v<optional_ref<const double>>);
static_assert(sizeof(optional_ref<const double>) == sizeof(void*));

static_assert(std::is_trivially_copyable_v<function_ref<flag(std::int32_t)>>);
static_assert(sizeof(function_ref<flag(std::int32_t)>) == 2 * sizeof(void*));

} // namespace zktarn

namespace zktarn::vector_type {

static_assert(std::is_trivially_copyable_v<vector>);
static_assert(std::is_standard_layout_v<vector>);
static_assert(sizeof(vector) == 80);
static_assert(offsetof(vector, coef) == 0);
static_assert(offsetof(vector, ind) == 24);
static_assert(offsetof(vector, elm) == 48);
static_assert(offsetof(vector, nz) == 72);

} // namespace zktarn::vector_type

namespace zktarn::random {

static_assert(std::is_trivially_copyable_v<rng_state>);
static_assert(sizeof(rng_state) == sizeof(void*));

} // namespace zktarn::random

namespace zktarn::callbacks_type_util {

static_assert(std::is_trivially_copyable_v<cbstatusdata>);
static_assert(std::is_standard_layout_v<cbstatusdata>);
static_assert(sizeof(cbstatusdata) == 56);
static_assert(offsetof(cbstatusdata, status) == 0);
static_assert(offsetof(cbstatusdata, phase) == 4);
static_assert(offsetof(cbstatusdata, iterations) == 8);
static_assert(offsetof(cbstatusdata, nodes) == 16);
static_assert(offsetof(cbstatusdata, cuts) == 24);
static_assert(offsetof(cbstatusdata, objective) == 32);
static_assert(offsetof(cbstatusdata, bound) == 40);
static_assert(offsetof(cbstatusdata, seconds) == 48);

static_assert(std::is_trivial_v<cbdataelm>);
static_assert(std::is_standard_layout_v<cbdataelm>);
static_assert(sizeof(cbdataelm) == 16);
static_assert(offsetof(cbdataelm, quantity) == 0);
static_assert(offsetof(cbdataelm, index) == 4);
static_assert(offsetof(cbdataelm, value) == 8);

static_assert(std::is_trivially_copyable_v<cbdata>);
static_assert(std::is_standard_layout_v<cbdata>);
static_assert(sizeof(cbdata) == 64);
static_assert(offsetof(cbdata, nodes_explored) == 0);
static_assert(offsetof(cbdata, feasible_points) == 4);
static_assert(offsetof(cbdata, node) == 8);
static_assert(offsetof(cbdata, parent_node) == 12);
static_assert(offsetof(cbdata, depth) == 16);
static_assert(offsetof(cbdata, branching_variable) == 20);
static_assert(offsetof(cbdata, lower_bound) == 24);
static_assert(offsetof(cbdata, upper_bound) == 32);
static_assert(offsetof(cbdata, gap) == 40);
static_assert(offsetof(cbdata, incumbent_node) == 48);
static_assert(offsetof(cbdata, cuts) == 52);
static_assert(offsetof(cbdata, restarts) == 56);
static_assert(std::is_standard_layout_v<parameter_block>);
static_assert(sizeof(parameter_block) == 24);
static_assert(offsetof(parameter_block, owned) == 0);
static_assert(offsetof(parameter_block, count) == 8);
static_assert(offsetof(parameter_block, value_size) == 16);

static_assert(std::is_standard_layout_v<value_type>);
static_assert(sizeof(value_type) == 40);
static_assert(offsetof(value_type, size) == 0);
static_assert(offsetof(value_type, has_parameters) == 8);
static_assert(offsetof(value_type, copy) == 16);
static_assert(offsetof(value_type, final) == 24);
static_assert(offsetof(value_type, finalise) == 32);

static_assert(std::is_standard_layout_v<cbdatalist>);
static_assert(sizeof(cbdatalist) == 40);
static_assert(offsetof(cbdatalist, slot) == 0);
static_assert(offsetof(value_slot, value) == 0);
static_assert(offsetof(value_slot, type) == 8);
static_assert(offsetof(value_slot, parameters) == 16);
static_assert(offsetof(cbdatalist, first_handle) == 24);
static_assert(offsetof(cbdatalist, second_handle) == 32);

} // namespace zktarn::callbacks_type_util
