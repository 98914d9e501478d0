#pragma once

#include <cstdint>

#if defined(__x86_64__)
#include <immintrin.h>
#endif

namespace zktarn::testing {

/// Makes the processor flush subnormal results to zero and read subnormal operands as zero, until
/// the destructor restores the mode.
class flushed_subnormals {
public:
    flushed_subnormals() noexcept : before_(control()) { set_control(before_ | flush); }
    ~flushed_subnormals() { set_control(before_); }
    flushed_subnormals(const flushed_subnormals&) = delete;
    flushed_subnormals& operator=(const flushed_subnormals&) = delete;

    /// Whether the mode is on: some emulators ignore it.
    static bool effective() noexcept {
        volatile double least_normal = 0x1p-1022;
        volatile double half = 0.5;
        return least_normal * half == 0.0;
    }

private:
#if defined(__x86_64__)
    using word = unsigned int;
    static constexpr word flush = 0x8040; // flush to zero, denormals are zero
    static word control() noexcept {
        return _mm_getcsr();
    }
    static void set_control(word value) noexcept {
        _mm_setcsr(value);
    }
#elif defined(__aarch64__)
    using word = std::uint64_t;
    static constexpr word flush = std::uint64_t{1} << 24; // FPCR.FZ: results and operands
    static word control() noexcept {
        word value;
        asm volatile("mrs %0, fpcr" : "=r"(value));
        return value;
    }
    static void set_control(word value) noexcept {
        asm volatile("msr fpcr, %0" : : "r"(value));
    }
#else
    using word = int;
    static constexpr word flush = 0;
    static word control() noexcept {
        return 0;
    }
    static void set_control(word) noexcept {}
#endif

    word before_;
};

} // namespace zktarn::testing
