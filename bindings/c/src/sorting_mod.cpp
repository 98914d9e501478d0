#include "zktarn/sorting/sorting_mod.hpp"

#include "arguments.hpp"
#include "zktarn_util.h"

using namespace zktarn;

void zktarn_sort(int32_t first, int32_t last, zktarn_exchange_procedure exchange, void* context) {
    if (c::any_null(exchange)) {
        return;
    }
    sorting_mod::sort(first, last, [exchange, context](std::int32_t a, std::int32_t b) {
        return exchange(a, b, context);
    });
}
