// Reports of what is not released: live objects, and the report when the process ends.

#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "unit/standin/standin_fixture.hpp"
#include "zktarn/host/libzkoptimutil.hpp"

namespace zktarn::standin {

namespace {

using host::qvFreeExOptim;
using host::qvMallocExOptim;

class LiveObjects : public StandinTest {
protected:
    /// The descriptions of all live objects, in order.
    static std::vector<std::string> descriptions() {
        std::vector<std::string> all;
        for (const live_object& each : live_objects()) {
            all.push_back(each.description);
        }
        return all;
    }
};

TEST_F(LiveObjects, AreListedByKindAndNumber) {
    const array_handle text = make_text("x");
    void* const first = host::instantiateRngOptim(1);
    void* const state = host::getRngStateOptim(first);
    const array_handle scalar = make_scalar(1.0);
    void* const second = host::instantiateRngOptim(2);
    const array_handle owned = make_scalar(2.0);
    const array_handle structure = make_struct({1, 1}, 1, "x", 1);
    set_field(structure, 1, "x", owned);

    const std::vector<live_object> all = live_objects();
    ASSERT_EQ(all.size(), 6u);
    const operation made_by[] = {
        operation::instantiateRngOptim,      operation::instantiateRngOptim,
        operation::getRngStateOptim,         operation::qvcreatestring800_,
        operation::qvcreatedoublescalar800_, operation::qvcreatestructarray800_};
    for (std::size_t i = 0; i < all.size(); ++i) {
        EXPECT_EQ(all[i].made_by, made_by[i]);
    }
    EXPECT_EQ(all[1].number, all[0].number + 1);
    EXPECT_EQ(all[0].description,
              "generator " + std::to_string(all[0].number) + " (made by instantiateRngOptim)");
    EXPECT_EQ(all[2].description,
              "snapshot " + std::to_string(all[2].number) + " (made by getRngStateOptim)");
    EXPECT_EQ(all[3].number, text);
    EXPECT_EQ(all[3].description, the_text(text));
    EXPECT_EQ(all[4].number, scalar);
    EXPECT_EQ(all[4].description, the_scalar(scalar));
    EXPECT_EQ(all[5].number, structure);
    EXPECT_EQ(all[5].description, the_struct(structure));

    host::deleteRngOptim(first);
    EXPECT_EQ(descriptions()[0], all[1].description);
    host::deleteRngOptim(second);
    host::deleteRngStateOptim(state);
    destroy(text);
    destroy(scalar);
    EXPECT_EQ(descriptions(), std::vector<std::string>{the_struct(structure)});
    destroy(structure);
    EXPECT_TRUE(live_objects().empty());
}

TEST_F(LiveObjects, SurviveAReset) {
    const array_handle text = make_text("x");
    reset();
    EXPECT_EQ(descriptions(), std::vector<std::string>{the_text(text)});
    destroy(text);
}

TEST_F(LiveObjects, AreReportedAfterTheMemory) {
    EXPECT_EQ(report(), memory_report());
    void* const address = qvMallocExOptim(8);
    const array_handle text = make_text("x");
    const array_handle matrix = make_matrix(1, 1);
    EXPECT_EQ(report(),
              memory_report() + "  " + the_text(text) + "\n  " + the_matrix(matrix) + "\n");
    destroy(text);
    destroy(matrix);
    qvFreeExOptim(address);
}

/// The complete report of a new process: each statement runs in its own process, in which requests
/// are numbered from 1.
class ExitDeathTest : public testing::Test {
protected:
    void SetUp() override { testing::FLAGS_gtest_death_test_style = "threadsafe"; }
    void TearDown() override { testing::FLAGS_gtest_death_test_style = "fast"; }
};

constexpr int status = 7;

[[noreturn]] void end() {
    std::exit(status);
}

void print(const std::string& text) {
    std::fputs(text.c_str(), stderr);
}

TEST_F(ExitDeathTest, TheMemoryReportOfANewProcessListsNothing) {
    EXPECT_EXIT((print(memory_report()), end()), testing::ExitedWithCode(status),
                exactly("host memory: 0 requests, 0 refused, 0 blocks not released\n"));
}

TEST_F(ExitDeathTest, TheMemoryReportCountsAndListsLiveBlocksByOrderNumber) {
    EXPECT_EXIT(
        {
            report_at_exit(false);
            qvMallocExOptim(1);
            void* const second = qvMallocExOptim(8);
            fail_request(1);
            qvMallocExOptim(16);
            qvMallocExOptim(4096);
            qvMallocExOptim(0x7FFFFFFFFFFFFFFF);
            qvFreeExOptim(second);
            print(memory_report());
            end();
        },
        testing::ExitedWithCode(status),
        exactly("host memory: 5 requests, 2 refused, 2 blocks not released\n"
                "  block 1: 1 byte\n"
                "  block 4: 4096 bytes\n"));
}

TEST_F(ExitDeathTest, ALeakIsReportedAndKeepsTheExitStatus) {
    EXPECT_EXIT(
        {
            qvFreeExOptim(qvMallocExOptim(8));
            qvMallocExOptim(24);
            end();
        },
        testing::ExitedWithCode(status),
        exactly("host memory: 2 requests, 0 refused, 1 block not released\n"
                "  block 2: 24 bytes\n"));
}

TEST_F(ExitDeathTest, NothingIsReportedWhenAllBlocksWereReleased) {
    EXPECT_EXIT(
        {
            qvFreeExOptim(qvMallocExOptim(8));
            end();
        },
        testing::ExitedWithCode(status), exactly(""));
}

TEST_F(ExitDeathTest, NeitherLeaksNorDamageIsReportedWhenTheReportIsOff) {
    EXPECT_EXIT(
        {
            static_cast<unsigned char*>(qvMallocExOptim(8))[8] = 0;
            report_at_exit(false);
            end();
        },
        testing::ExitedWithCode(status), exactly(""));
}

TEST_F(ExitDeathTest, ResetTurnsTheReportOn) {
    EXPECT_EXIT(
        {
            report_at_exit(false);
            reset();
            qvMallocExOptim(8);
            end();
        },
        testing::ExitedWithCode(status),
        exactly("host memory: 1 request, 0 refused, 1 block not released\n"
                "  block 1: 8 bytes\n"));
}

TEST_F(ExitDeathTest, DamageFoundAtExitAborts) {
    EXPECT_ABORT(
        {
            static_cast<unsigned char*>(qvMallocExOptim(8))[8] = 0;
            end();
        },
        "block 1 (8 bytes) was written past its end");
}

TEST_F(ExitDeathTest, DamageFoundAtExitReachesTheHandlerBeforeTheReport) {
    EXPECT_EXIT(
        {
            set_fault_handler([](const fault& found) { print(found.sentence + "\n"); });
            static_cast<unsigned char*>(qvMallocExOptim(8))[8] = 0;
            end();
        },
        testing::ExitedWithCode(status),
        exactly("block 1 (8 bytes) was written past its end\n"
                "host memory: 1 request, 0 refused, 1 block not released\n"
                "  block 1: 8 bytes\n"));
}

TEST_F(ExitDeathTest, LiveObjectsAreReportedWithoutAnyBlock) {
    EXPECT_EXIT(
        {
            destroy(make_text("gone"));
            host::getRngStateOptim(host::instantiateRngOptim(1));
            make_matrix(2, 2);
            end();
        },
        testing::ExitedWithCode(status),
        exactly("host memory: 0 requests, 0 refused, 0 blocks not released\n"
                "  generator 1 (made by instantiateRngOptim)\n"
                "  snapshot 1 (made by getRngStateOptim)\n"
                "  array 2 (a real matrix made by qvcreatedoublematrix800_)\n"));
}

TEST_F(ExitDeathTest, LiveObjectsAreReportedAfterTheBlocks) {
    EXPECT_EXIT(
        {
            qvMallocExOptim(1);
            make_struct();
            end();
        },
        testing::ExitedWithCode(status),
        exactly("host memory: 1 request, 0 refused, 1 block not released\n"
                "  block 1: 1 byte\n"
                "  array 1 (a struct made by qvcreatestructarray800_)\n"));
}

TEST_F(ExitDeathTest, LiveObjectsAreNotReportedWhenTheReportIsOff) {
    EXPECT_EXIT(
        {
            make_struct();
            report_at_exit(false);
            end();
        },
        testing::ExitedWithCode(status), exactly(""));
}

TEST_F(ExitDeathTest, NothingIsReportedWhenAllObjectsWereReleased) {
    EXPECT_EXIT(
        {
            destroy(make_struct());
            host::deleteRngOptim(host::instantiateRngOptim(1));
            end();
        },
        testing::ExitedWithCode(status), exactly(""));
}

/// Releases its block when it is destroyed.
struct owner {
    void* address = nullptr;
    ~owner() { qvFreeExOptim(address); }
};

owner made_before_any_block;

TEST_F(ExitDeathTest, BlocksOfStaticObjectsAreReleasedBeforeTheReport) {
    EXPECT_EXIT(
        {
            made_before_any_block.address = qvMallocExOptim(8);
            static owner made_later;
            made_later.address = qvMallocExOptim(8);
            end();
        },
        testing::ExitedWithCode(status), exactly(""));
}

TEST(ReportAtExit, ReturnsThePreviousSetting) {
    EXPECT_TRUE(report_at_exit(false));
    EXPECT_FALSE(report_at_exit(false));
    EXPECT_FALSE(report_at_exit(true));
    EXPECT_TRUE(report_at_exit(true));
}

} // namespace

} // namespace zktarn::standin
