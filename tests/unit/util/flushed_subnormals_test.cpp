// While the processor flushes subnormals to zero, results may differ, but every call returns.
#include <cstdint>
#include <limits>
#include <vector>

#if defined(__x86_64__)
#include <immintrin.h>
#endif

#include <gtest/gtest.h>

#include "support/recorded_set.hpp"
#include "zktarn/util/util.hpp"

namespace {

using zktarn::flag;
using zktarn::testing::element;
using zktarn::testing::recorded_set;
namespace util = zktarn::util;

constexpr double inf = std::numeric_limits<double>::infinity();
constexpr double least_normal = std::numeric_limits<double>::min();

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
        volatile double operand = least_normal;
        volatile double half = 0.5;
        return operand * half == 0.0;
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

class FlushedSubnormals : public testing::Test {
protected:
    void SetUp() override {
        if (!flushed_subnormals::effective()) {
            GTEST_SKIP() << "this processor, or its emulator, does not flush subnormals";
        }
    }
    flushed_subnormals flushed_;
};

struct answer {
    flag found = -1;
    double scalar = -1.0;
};

answer scalar_for(const std::vector<element>& elements, double max_scalar) {
    recorded_set set{elements};
    answer a;
    util::find_scalar_integral(set.size(), set, 1e-9, 1000.0, max_scalar, a.found, a.scalar);
    return a;
}

TEST_F(FlushedSubnormals, AScalarOfZeroEndsTheSearch) {
    // The first scalar, 1 / 1.7e308, is subnormal and becomes 0. Doubling does not change it.
    for (const double max_scalar : {1.0, 1e6, inf}) {
        const answer a = scalar_for({{1.7e308}}, max_scalar);
        EXPECT_EQ(a.found, 0);
        EXPECT_EQ(a.scalar, 0.0);
    }
}

TEST_F(FlushedSubnormals, TheScalarOfAnEmptySetIsZero) {
    const answer a = scalar_for({}, 1.0);
    EXPECT_EQ(a.found, 1);
    EXPECT_EQ(a.scalar, 0.0);
}

TEST_F(FlushedSubnormals, EverySearchForAFractionReturns) {
    const double values[] = {0.5,    1.0 / 3.0,          0.1234567891,  least_normal,
                             5e-324, 3.0 * least_normal, -2147483647.5, 1.7e308};
    for (const double x : values) {
        for (const double eps : {0.0, 5e-324, least_normal, 1e-12, -5e-324}) {
            for (const double bound : {1.0, 1000.0, 1e7, 1e18, 1.7e308, inf}) {
                flag found = -1;
                double num = -1.0;
                double den = -1.0;
                util::get_rational_rep(x, eps, bound, found, num, den);
                EXPECT_EQ(found, den > 0.0 ? 1 : 0);
            }
        }
    }
}

TEST_F(FlushedSubnormals, EveryRealGcdReturnsANonnegativeNumber) {
    const double values[] = {1.0, 0.1, least_normal, 1.5 * least_normal, 5e-324, 1e300};
    for (const double a : values) {
        for (const double b : values) {
            for (const double eps : {0.0, 5e-324, -5e-324, 1e-12}) {
                EXPECT_GE(util::xgcd_r8(a, b, eps), 0.0);
            }
        }
    }
    EXPECT_EQ(util::xgcd_r8(12.0, 18.0, 0.0), 6.0);
}

} // namespace
