#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>

#include "support/compare.hpp"
#include "zktarn/host/libzkoptimutil.hpp"
#include "zktarn/vector/vector_type.hpp"

namespace zktarn::bench {

namespace {

/// Compares a vector with three blocks of the host, the third of them cleared.
void compare_vector_with_blocks(std::int32_t n) {
    const auto library = [n](std::int64_t) {
        vector_type::vector* vec = nullptr;
        benchmark::DoNotOptimize(vector_type::vector_alloc(vec, n));
        benchmark::DoNotOptimize(vec);
        vector_type::vector_free(vec);
    };
    const auto host = [n](std::int64_t) {
        void* coef = host::qvMallocExOptim(std::int64_t{n} * 8);
        void* ind = host::qvMallocExOptim(std::int64_t{n} * 4);
        void* elm = host::qvMallocExOptim(std::int64_t{n} * 4);
        std::memset(elm, 0, static_cast<std::size_t>(n) * 4);
        benchmark::DoNotOptimize(coef);
        benchmark::DoNotOptimize(ind);
        benchmark::DoNotOptimize(elm);
        benchmark::ClobberMemory();
        host::qvFreeExOptim(coef);
        host::qvFreeExOptim(ind);
        host::qvFreeExOptim(elm);
    };
    compare("vector_alloc_free/" + std::to_string(n),
            {doing("library", library), doing("host", host)});
}

} // namespace

void register_comparisons() {
    for (const std::int32_t n : {10, 100, 1000, 10000, 100000, 1000000}) {
        compare_vector_with_blocks(n);
    }
}

} // namespace zktarn::bench
