#include <array>
#include <cstdint>
#include <ostream>
#include <string>

#include <dlfcn.h>
#include <gtest/gtest.h>

#include "standin/standin_fixture.hpp"
#include "zktarn/host/libqv.hpp"
#include "zktarn/host/libqvx.hpp"
#include "zktarn/host/libut.hpp"
#include "zktarn/host/libzkoptimutil.hpp"

namespace zktarn::standin {

namespace {

class Operations : public StandinTest {};

struct exported {
    operation what;
    const char* symbol;
    const char* library;
};

constexpr std::array<exported, operation_count> exported_operations = {{
    {operation::qvMallocExOptim, "qvMallocExOptim", "libzkoptimutil"},
    {operation::qvFreeExOptim, "qvFreeExOptim", "libzkoptimutil"},
    {operation::instantiateRngOptim, "instantiateRngOptim", "libzkoptimutil"},
    {operation::deleteRngOptim, "deleteRngOptim", "libzkoptimutil"},
    {operation::getRandUniformOptim, "getRandUniformOptim", "libzkoptimutil"},
    {operation::getRngStateOptim, "getRngStateOptim", "libzkoptimutil"},
    {operation::setRngStateOptim, "setRngStateOptim", "libzkoptimutil"},
    {operation::deleteRngStateOptim, "deleteRngStateOptim", "libzkoptimutil"},
    {operation::assertOptim, "assertOptim", "libzkoptimutil"},
    {operation::ioFlushOptim, "ioFlushOptim", "libzkoptimutil"},
    {operation::utIsInterruptPending, "utIsInterruptPending", "libut"},
    {operation::qvcreatestructarray800_, "qvcreatestructarray800_", "libqv"},
    {operation::qvcreatestring800_, "qvcreatestring800_", "libqv"},
    {operation::qvcreatedoublescalar800_, "qvcreatedoublescalar800_", "libqv"},
    {operation::qvcreatedoublematrix800_, "qvcreatedoublematrix800_", "libqv"},
    {operation::qvsetfield800_, "qvsetfield800_", "libqv"},
    {operation::qvsetfieldbynumber800_, "qvsetfieldbynumber800_", "libqv"},
    {operation::qvgetfieldnumber800_, "qvgetfieldnumber800_", "libqv"},
    {operation::qvaddfield800_, "qvaddfield800_", "libqv"},
    {operation::qvgetpr800_, "qvgetpr800_", "libqv"},
    {operation::qvcopyptrtoreal8800_, "qvcopyptrtoreal8800_", "libqv"},
    {operation::qvcopyreal8toptr800_, "qvcopyreal8toptr800_", "libqv"},
    {operation::qvdestroyarray800_, "qvdestroyarray800_", "libqv"},
    {operation::qvxcallquarn800_, "qvxcallquarn800_", "libqvx"},
    {operation::qvxprintf800_, "qvxprintf800_", "libqvx"},
}};

TEST_F(Operations, EachIsNamedAsItIsExported) {
    for (std::size_t i = 0; i < exported_operations.size(); ++i) {
        EXPECT_EQ(static_cast<std::size_t>(exported_operations[i].what), i);
        EXPECT_STREQ(name(exported_operations[i].what), exported_operations[i].symbol);
    }
}

TEST_F(Operations, EachIsExportedByItsOwnLibrary) {
    for (const exported& each : exported_operations) {
        SCOPED_TRACE(each.symbol);
        void* const address = dlsym(RTLD_DEFAULT, name(each.what));
        ASSERT_NE(address, nullptr);
        Dl_info where = {};
        ASSERT_NE(dladdr(address, &where), 0);
        const std::string path = where.dli_fname;
        const std::string file = path.substr(path.rfind('/') + 1);
        EXPECT_EQ(file.substr(0, file.find('.')), each.library);
    }
}

/// The counts of all operations, in their order.
std::array<std::int64_t, operation_count> all_calls() {
    std::array<std::int64_t, operation_count> counts = {};
    for (int i = 0; i < operation_count; ++i) {
        counts[static_cast<std::size_t>(i)] = calls(static_cast<operation>(i));
    }
    return counts;
}

TEST_F(Operations, EachIsCountedForItself) {
    std::array<std::int64_t, operation_count> expected = {};
    EXPECT_EQ(all_calls(), expected);

    void* const first = host::qvMallocExOptim(8);
    void* const second = host::qvMallocExOptim(8);
    host::qvFreeExOptim(first);
    host::qvFreeExOptim(second);
    host::qvFreeExOptim(nullptr);
    host::assertOptim(true);

    expected[static_cast<std::size_t>(operation::qvMallocExOptim)] = 2;
    expected[static_cast<std::size_t>(operation::qvFreeExOptim)] = 3;
    expected[static_cast<std::size_t>(operation::assertOptim)] = 1;
    EXPECT_EQ(all_calls(), expected);
}

TEST_F(Operations, CallsThatFailAreCounted) {
    fail_request(1);
    EXPECT_EQ(host::qvMallocExOptim(8), nullptr);
    EXPECT_EQ(host::qvMallocExOptim(0), nullptr);
    int local = 0;
    host::qvFreeExOptim(&local);
    set_assertion_handler([] {});
    host::assertOptim(false);
    EXPECT_EQ(calls(operation::qvMallocExOptim), 2);
    EXPECT_EQ(calls(operation::qvFreeExOptim), 1);
    EXPECT_EQ(calls(operation::assertOptim), 1);
}

TEST_F(Operations, ControlCallsAreNotCounted) {
    fail_request(0);
    fail_requests_from(0);
    fill_new_blocks(-1);
    EXPECT_EQ(check_blocks(), 0);
    EXPECT_TRUE(live_blocks().empty());
    EXPECT_FALSE(memory_report().empty());
    report_at_exit(true);
    EXPECT_EQ(all_calls(), (std::array<std::int64_t, operation_count>{}));
}

TEST_F(Operations, ResetSetsTheCountsToZero) {
    host::qvFreeExOptim(nullptr);
    host::assertOptim(true);
    reset();
    EXPECT_EQ(all_calls(), (std::array<std::int64_t, operation_count>{}));
}

/// An operation that the stand-in does not implement, and a call of it.
struct missing_operation {
    operation what;
    void (*call)();
};

void PrintTo(const missing_operation& tested, std::ostream* out) {
    *out << name(tested.what);
}

class MissingOperationDeathTest : public testing::TestWithParam<missing_operation> {};

TEST_P(MissingOperationDeathTest, SaysSoAndAborts) {
    const std::string sentence =
        std::string(name(GetParam().what)) + " is missing: this stand-in does not implement it";
    EXPECT_STOP(GetParam().call(), sentence);
}

double real = 0;
double* const reals = &real;
constexpr std::int64_t one = 1;
constexpr std::int32_t few = 1;
constexpr host::array_handle array = 1;

INSTANTIATE_TEST_SUITE_P(
    , MissingOperationDeathTest,
    testing::Values(
        missing_operation{operation::instantiateRngOptim, [] { host::instantiateRngOptim(1); }},
        missing_operation{operation::deleteRngOptim, [] { host::deleteRngOptim(&real); }},
        missing_operation{operation::getRandUniformOptim,
                          [] { host::getRandUniformOptim(&real, &real, &one); }},
        missing_operation{operation::getRngStateOptim, [] { host::getRngStateOptim(&real); }},
        missing_operation{operation::setRngStateOptim,
                          [] { host::setRngStateOptim(&real, &real); }},
        missing_operation{operation::deleteRngStateOptim, [] { host::deleteRngStateOptim(&real); }},
        missing_operation{operation::ioFlushOptim, [] { host::ioFlushOptim(); }},
        missing_operation{operation::utIsInterruptPending, [] { host::utIsInterruptPending(); }},
        missing_operation{operation::qvcreatestructarray800_,
                          [] { host::qvcreatestructarray800_(one, &one, few, "a", 1); }},
        missing_operation{operation::qvcreatestring800_, [] { host::qvcreatestring800_("a", 1); }},
        missing_operation{operation::qvcreatedoublescalar800_,
                          [] { host::qvcreatedoublescalar800_(real); }},
        missing_operation{operation::qvcreatedoublematrix800_,
                          [] { host::qvcreatedoublematrix800_(one, one, few); }},
        missing_operation{operation::qvsetfield800_,
                          [] { host::qvsetfield800_(array, one, "a", array, 1); }},
        missing_operation{operation::qvsetfieldbynumber800_,
                          [] { host::qvsetfieldbynumber800_(array, one, few, array); }},
        missing_operation{operation::qvgetfieldnumber800_,
                          [] { host::qvgetfieldnumber800_(array, "a", 1); }},
        missing_operation{operation::qvaddfield800_, [] { host::qvaddfield800_(array, "a", 1); }},
        missing_operation{operation::qvgetpr800_, [] { host::qvgetpr800_(array); }},
        missing_operation{operation::qvcopyptrtoreal8800_,
                          [] { host::qvcopyptrtoreal8800_(reals, reals, one); }},
        missing_operation{operation::qvcopyreal8toptr800_,
                          [] { host::qvcopyreal8toptr800_(reals, reals, one); }},
        missing_operation{operation::qvdestroyarray800_, [] { host::qvdestroyarray800_(array); }},
        missing_operation{operation::qvxcallquarn800_,
                          [] { host::qvxcallquarn800_(few, nullptr, few, &array, "a", 1); }},
        missing_operation{operation::qvxprintf800_, [] { host::qvxprintf800_("a", 1); }}),
    [](const testing::TestParamInfo<missing_operation>& tested) {
        return std::string(name(tested.param.what));
    });

} // namespace

} // namespace zktarn::standin
