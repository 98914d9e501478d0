#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "unit/standin/standin_fixture.hpp"
#include "zktarn/assert/assert_mod.hpp"
#include "zktarn/host/libqv.hpp"
#include "zktarn/host/libzkoptimutil.hpp"

// The tests search call stacks for the names of these functions. So the functions are exported and
// never inlined, and an asm statement at the end prevents a tail call.
namespace zktarn_solver {

[[gnu::noinline, gnu::visibility("default")]] void* allocate_row(std::int64_t nbytes) {
    void* const row = zktarn::host::qvMallocExOptim(nbytes);
    asm volatile("" ::: "memory");
    return row;
}

[[gnu::noinline, gnu::visibility("default")]] void release_row(void* row) {
    zktarn::host::qvFreeExOptim(row);
    asm volatile("" ::: "memory");
}

[[gnu::noinline, gnu::visibility("default")]] void check_row(bool is_valid) {
    zktarn::assert_mod::tarnassert(is_valid ? 1 : 0);
    asm volatile("" ::: "memory");
}

[[gnu::noinline, gnu::visibility("default")]] zktarn::host::array_handle make_info() {
    const auto made = zktarn::standin::make_struct();
    asm volatile("" ::: "memory");
    return made;
}

[[gnu::noinline, gnu::visibility("default")]] void* make_generator() {
    void* const made = zktarn::host::instantiateRngOptim(1);
    asm volatile("" ::: "memory");
    return made;
}

} // namespace zktarn_solver

namespace zktarn::standin {

namespace {

using ::testing::Each;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;

/// Whether call stacks are available on this system.
bool has_stacks() {
    return !call_stack::current().empty();
}

class CallStacks : public StandinTest {
protected:
    void SetUp() override {
        StandinTest::SetUp();
        if (!has_stacks()) {
            GTEST_SKIP() << "this system has no backtrace";
        }
    }
};

/// The index of the first line that contains the function's name, or -1.
int depth_of(const std::string& function, const call_stack& stack) {
    const std::vector<std::string> lines = stack.lines();
    for (std::size_t i = 0; i < lines.size(); ++i) {
        if (lines[i].find(function) != std::string::npos) {
            return static_cast<int>(i);
        }
    }
    return -1;
}

TEST_F(CallStacks, BeginWithTheCallerAndOmitTheStandIn) {
#ifdef ZKTARN_TEST_EMULATED
    GTEST_SKIP() << "under emulation, call stacks name the emulator instead of the program";
#endif
    const std::vector<std::string> lines = call_stack::current().lines();
    ASSERT_FALSE(lines.empty());
    EXPECT_THAT(lines[0], HasSubstr("standin_test"));
    EXPECT_THAT(lines, Each(Not(HasSubstr("libzkoptimutil"))));
    EXPECT_LE(lines.size(), 32u);
}

TEST_F(CallStacks, AFaultShowsItsCallStack) {
#ifdef ZKTARN_TEST_EMULATED
    GTEST_SKIP() << "under emulation, call stacks name the emulator instead of the program";
#endif
    void* const row = zktarn_solver::allocate_row(8);
    zktarn_solver::release_row(row);
    zktarn_solver::release_row(row);
    ASSERT_EQ(faults.size(), 1u);
    EXPECT_EQ(depth_of("zktarn_solver::release_row(void*) (standin_test)", faults[0].place), 0);
    EXPECT_TRUE(faults[0].origin.empty());
}

TEST_F(CallStacks, AFaultShowsWhereItsBlockWasAllocated) {
    EXPECT_FALSE(record_origins(true));
    void* const row = zktarn_solver::allocate_row(8);
    static_cast<char*>(row)[8] = 1;
    EXPECT_EQ(check_blocks(), 1);
    zktarn_solver::release_row(row);
    zktarn_solver::release_row(row);
    ASSERT_EQ(faults.size(), 2u);
    for (const fault& each : faults) {
        EXPECT_EQ(depth_of("zktarn_solver::allocate_row", each.origin), 0);
    }
}

TEST_F(CallStacks, AFaultShowsWhereItsArrayWasMadeEvenIfDestroyed) {
    record_origins(true);
    const host::array_handle info = zktarn_solver::make_info();
    host::qvgetpr800_(info);
    destroy(info);
    host::qvgetpr800_(info);
    ASSERT_EQ(faults.size(), 2u);
    EXPECT_GE(depth_of("zktarn_solver::make_info", faults[0].origin), 0);
    EXPECT_GE(depth_of("zktarn_solver::make_info", faults[1].origin), 0);
}

TEST_F(CallStacks, LiveObjectsShowWhereTheyWereMade) {
    record_origins(true);
    void* const row = zktarn_solver::allocate_row(8);
    void* const generator = zktarn_solver::make_generator();
    const host::array_handle info = zktarn_solver::make_info();
    EXPECT_EQ(depth_of("allocate_row", live_blocks().back().origin), 0);
    const std::vector<live_object> objects = live_objects();
    ASSERT_EQ(objects.size(), 2u);
    EXPECT_GE(depth_of("make_generator", objects[0].origin), 0);
    EXPECT_GE(depth_of("make_info", objects[1].origin), 0);
    const std::string text = report();
    EXPECT_THAT(text, HasSubstr(": 8 bytes\n    made by\n      zktarn_solver::allocate_row("));
    EXPECT_THAT(text, HasSubstr("zktarn_solver::make_info()"));
    EXPECT_THAT(text, HasSubstr("zktarn_solver::make_generator()"));
    destroy(info);
    host::deleteRngOptim(generator);
    host::qvFreeExOptim(row);
}

TEST_F(CallStacks, OriginsAreNotRecordedByDefault) {
    void* const row = zktarn_solver::allocate_row(8);
    EXPECT_TRUE(live_blocks().back().origin.empty());
    EXPECT_THAT(live_blocks().back().origin.lines(), IsEmpty());
    EXPECT_THAT(report(), Not(HasSubstr("made by\n")));
    host::qvFreeExOptim(row);
    EXPECT_FALSE(record_origins(true));
    EXPECT_TRUE(record_origins(true));
    reset();
    EXPECT_FALSE(record_origins(false));
}

TEST_F(CallStacks, OtherValuesOfTheEnvironmentVariableLeaveOriginsOff) {
    setenv("ZKTARN_STANDIN_ORIGINS", "0", 1);
    reset();
    EXPECT_FALSE(record_origins(false));
    unsetenv("ZKTARN_STANDIN_ORIGINS");
}

TEST_F(CallStacks, AnAssertionHandlerCanRecordTheCallStackOfTheFailure) {
    call_stack seen;
    set_assertion_handler([&] { seen = call_stack::current(); });
    zktarn_solver::check_row(true);
    EXPECT_TRUE(seen.empty());
    zktarn_solver::check_row(false);
    EXPECT_GE(depth_of("zktarn_solver::check_row(bool)", seen), 0);
}

using CallStacksDeathTest = CallStacks;

TEST_F(CallStacksDeathTest, FaultsAndFailedAssertionsPrintTheCallStack) {
    EXPECT_DEATH(
        {
            keep_coverage();
            reset();
            record_origins(true);
            void* const row = zktarn_solver::allocate_row(8);
            zktarn_solver::release_row(row);
            zktarn_solver::release_row(row);
        },
        "was released twice\n    called from\n      zktarn_solver::release_row(.|\n)*"
        "    made by\n      zktarn_solver::allocate_row");
    EXPECT_DEATH(
        {
            keep_coverage();
            reset();
            zktarn_solver::check_row(false);
        },
        "failed \\(number 1\\)\n    called from\n(.|\n)*      zktarn_solver::check_row");
}

TEST_F(CallStacksDeathTest, TheEnvironmentVariableTurnsOriginsOn) {
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    setenv("ZKTARN_STANDIN_ORIGINS", "1", 1);
    EXPECT_EXIT(
        {
            zktarn_solver::allocate_row(8);
            std::exit(0);
        },
        testing::ExitedWithCode(0),
        "block 1: 8 bytes\n    made by\n      zktarn_solver::allocate_row");
    unsetenv("ZKTARN_STANDIN_ORIGINS");
    testing::FLAGS_gtest_death_test_style = "fast";
}

} // namespace

} // namespace zktarn::standin
