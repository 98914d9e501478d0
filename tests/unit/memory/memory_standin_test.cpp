// The shared library on the stand-in host.
#include "zktarn/memory/memory_mod.hpp"

#include <gtest/gtest.h>

#include "zktarn_standin/control.hpp"

namespace {

using namespace zktarn;
using standin::operation;

class MemoryOnTheStandin : public testing::Test {
protected:
    void SetUp() override { standin::reset(); }
    void TearDown() override { EXPECT_TRUE(standin::live_blocks().empty()); }
};

TEST_F(MemoryOnTheStandin, EveryElementOfAnArrayCanBeWritten) {
    array_2d<double> array;
    ASSERT_EQ(memory_mod::allocmem_r8_2d_array(array, {3, 5}), 1);
    for (int j = 1; j <= 5; ++j) {
        for (int i = 1; i <= 3; ++i) {
            array(i, j) = 10.0 * i + j;
        }
    }
    EXPECT_EQ(array.data[3], 12.0);
    EXPECT_EQ(array.data[14], 35.0);
    EXPECT_EQ(standin::check_blocks(), 0);
    memory_mod::freemem_r8_2d_array(array);
}

TEST_F(MemoryOnTheStandin, AHostOutOfMemoryIsAFailure) {
    array_1d<std::int8_t> array;
    standin::fail_requests_from(1);
    EXPECT_EQ(memory_mod::allocmem_i1_1d_array(array, 3), 0);
    EXPECT_EQ(memory_mod::mallocate(3), nullptr);
    EXPECT_EQ(standin::calls(operation::qvMallocExOptim), 2);
}

TEST_F(MemoryOnTheStandin, RawBlocksGoBackToTheHost) {
    void* const block = memory_mod::mallocate(100);
    ASSERT_NE(block, nullptr);
    memory_mod::mdeallocate(block);
    memory_mod::mdeallocate(nullptr);
    EXPECT_EQ(standin::calls(operation::qvFreeExOptim), 2);
}

} // namespace
