#include <array>
#include <cstdint>
#include <string>

#include <dlfcn.h>
#include <gtest/gtest.h>

#include "unit/standin/standin_fixture.hpp"
#include "zktarn/host/libqv.hpp"
#include "zktarn/host/libqvx.hpp"
#include "zktarn/host/libut.hpp"
#include "zktarn/host/libzkoptimutil.hpp"
#include "zktarn/version.hpp"

namespace zktarn::standin {

namespace {

class Operations : public StandinTest {};

TEST_F(Operations, ReportTheVersionOfTheLibrary) {
    EXPECT_STREQ(zktarn_standin_version(), ZKTARN_VERSION_STRING);
}

struct exported {
    operation what;
    const char* symbol;
    const char* library;
    /// A reference to the symbol, because the linker drops a library without one.
    const void* address;
};

#define EXPORTED(symbol, library)                                                                  \
    { operation::symbol, #symbol, library, reinterpret_cast<const void*>(&host::symbol) }

const std::array<exported, operation_count> exported_operations = {{
    EXPORTED(qvMallocExOptim, "libzkoptimutil"),
    EXPORTED(qvFreeExOptim, "libzkoptimutil"),
    EXPORTED(instantiateRngOptim, "libzkoptimutil"),
    EXPORTED(deleteRngOptim, "libzkoptimutil"),
    EXPORTED(getRandUniformOptim, "libzkoptimutil"),
    EXPORTED(getRngStateOptim, "libzkoptimutil"),
    EXPORTED(setRngStateOptim, "libzkoptimutil"),
    EXPORTED(deleteRngStateOptim, "libzkoptimutil"),
    EXPORTED(assertOptim, "libzkoptimutil"),
    EXPORTED(ioFlushOptim, "libzkoptimutil"),
    EXPORTED(utIsInterruptPending, "libut"),
    EXPORTED(qvcreatestructarray800_, "libqv"),
    EXPORTED(qvcreatestring800_, "libqv"),
    EXPORTED(qvcreatedoublescalar800_, "libqv"),
    EXPORTED(qvcreatedoublematrix800_, "libqv"),
    EXPORTED(qvsetfield800_, "libqv"),
    EXPORTED(qvsetfieldbynumber800_, "libqv"),
    EXPORTED(qvgetfieldnumber800_, "libqv"),
    EXPORTED(qvaddfield800_, "libqv"),
    EXPORTED(qvgetpr800_, "libqv"),
    EXPORTED(qvcopyptrtoreal8800_, "libqv"),
    EXPORTED(qvcopyreal8toptr800_, "libqv"),
    EXPORTED(qvdestroyarray800_, "libqv"),
    EXPORTED(qvxcallquarn800_, "libqvx"),
    EXPORTED(qvxprintf800_, "libqvx"),
}};

#undef EXPORTED

TEST_F(Operations, NamesAreThoseOfTheExportedSymbols) {
    for (std::size_t i = 0; i < exported_operations.size(); ++i) {
        EXPECT_EQ(static_cast<std::size_t>(exported_operations[i].what), i);
        EXPECT_STREQ(name(exported_operations[i].what), exported_operations[i].symbol);
    }
}

TEST_F(Operations, EachIsExportedByTheLibraryThatOwnsIt) {
    for (const exported& each : exported_operations) {
        SCOPED_TRACE(each.symbol);
        ASSERT_NE(each.address, nullptr);
        void* const address = dlsym(RTLD_DEFAULT, name(each.what));
        ASSERT_NE(address, nullptr);
        Dl_info where = {};
        ASSERT_NE(dladdr(address, &where), 0);
        const std::string path = where.dli_fname;
        const std::string file = path.substr(path.rfind('/') + 1);
        EXPECT_EQ(file.substr(0, file.find('.')), each.library);
    }
}

/// The call count of each operation, in the order of the enumeration.
std::array<std::int64_t, operation_count> all_calls() {
    std::array<std::int64_t, operation_count> counts = {};
    for (int i = 0; i < operation_count; ++i) {
        counts[static_cast<std::size_t>(i)] = calls(static_cast<operation>(i));
    }
    return counts;
}

TEST_F(Operations, EachHasItsOwnCount) {
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

} // namespace

} // namespace zktarn::standin
