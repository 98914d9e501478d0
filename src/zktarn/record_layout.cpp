// Checks the layout of argument types and records, which is part of the binary interface.

#include <cstddef>
#include <cstdint>
#include <type_traits>

#include "zktarn/function_ref.hpp"
#include "zktarn/random/random.hpp"
#include "zktarn/types.hpp"
#include "zktarn/vector/vector_type.hpp"

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
