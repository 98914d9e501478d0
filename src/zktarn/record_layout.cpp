// Checks the layout of the argument types, which is part of the binary interface.

#include <cstddef>
#include <cstdint>
#include <type_traits>

#include "zktarn/function_ref.hpp"
#include "zktarn/types.hpp"

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
