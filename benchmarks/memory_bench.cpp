#include <cstdint>
#include <cstdlib>
#include <string>

#include "support/compare.hpp"
#include "zktarn/host/libzkoptimutil.hpp"
#include "zktarn/memory/memory_mod.hpp"

namespace zktarn::bench {

namespace {

constexpr std::int64_t real_size = sizeof(double);

/// Compares a typed array with the host's operations on its block.
void compare_array_with_block(std::int64_t n) {
    const auto library = [n](std::int64_t) {
        array_1d<double> array;
        benchmark::DoNotOptimize(memory_mod::allocmem_r8_1d_array(array, n));
        benchmark::DoNotOptimize(array.data);
        memory_mod::freemem_r8_1d_array(array);
    };
    const auto host = [n](std::int64_t) {
        void* block = host::qvMallocExOptim(n * real_size);
        benchmark::DoNotOptimize(block);
        host::qvFreeExOptim(block);
    };
    compare("allocmem_freemem_r8_1d/" + std::to_string(n),
            {doing("library", library), doing("host", host)});
}

/// Compares the stand-in, with its checks and counts, with the process allocator.
void compare_standin_with_process(std::int64_t n) {
    const auto standin = [n](std::int64_t) {
        void* block = host::qvMallocExOptim(n * real_size);
        benchmark::DoNotOptimize(block);
        host::qvFreeExOptim(block);
    };
    const auto process = [n](std::int64_t) {
        void* block = std::malloc(static_cast<std::size_t>(n * real_size));
        benchmark::DoNotOptimize(block);
        std::free(block);
    };
    compare("standin_malloc_free/" + std::to_string(n),
            {doing("standin", standin), doing("malloc", process)});
}

} // namespace

void register_comparisons() {
    for (const std::int64_t n : {16, 1000, 100000}) {
        compare_array_with_block(n);
    }
    for (const std::int64_t n : {16, 1000, 100000}) {
        compare_standin_with_process(n);
    }
}

} // namespace zktarn::bench
