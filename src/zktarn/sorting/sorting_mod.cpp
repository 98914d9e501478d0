#include "zktarn/sorting/sorting_mod.hpp"

namespace zktarn::sorting_mod {

void sort(const std::int32_t& first, const std::int32_t& last,
          exchange_procedure exchange) noexcept {
    detail::shell_sort(first, last, exchange);
}

} // namespace zktarn::sorting_mod
