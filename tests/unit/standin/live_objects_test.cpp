#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "unit/standin/host_arrays.hpp"
#include "unit/standin/standin_fixture.hpp"
#include "zktarn/host/libzkoptimutil.hpp"

namespace zktarn::standin {

namespace {

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

TEST_F(LiveObjects, FollowTheMemoryInTheReport) {
    EXPECT_EQ(report(), memory_report());
    void* const address = host::qvMallocExOptim(8);
    const array_handle text = make_text("x");
    const array_handle matrix = make_matrix(1, 1);
    EXPECT_EQ(report(),
              memory_report() + "  " + the_text(text) + "\n  " + the_matrix(matrix) + "\n");
    destroy(text);
    destroy(matrix);
    host::qvFreeExOptim(address);
}

/// The complete report of a new process: each statement runs in its own process.
class LiveObjectsAtExitDeathTest : public testing::Test {
protected:
    void SetUp() override { testing::FLAGS_gtest_death_test_style = "threadsafe"; }
    void TearDown() override { testing::FLAGS_gtest_death_test_style = "fast"; }
};

constexpr int status = 7;

TEST_F(LiveObjectsAtExitDeathTest, AreReportedWithoutAnyBlock) {
    EXPECT_EXIT(
        {
            destroy(make_text("gone"));
            host::getRngStateOptim(host::instantiateRngOptim(1));
            make_matrix(2, 2);
            std::exit(status);
        },
        testing::ExitedWithCode(status),
        exactly("host memory: 0 requests, 0 refused, 0 blocks not released\n"
                "  generator 1 (made by instantiateRngOptim)\n"
                "  snapshot 1 (made by getRngStateOptim)\n"
                "  array 2 (a real matrix made by qvcreatedoublematrix800_)\n"));
}

TEST_F(LiveObjectsAtExitDeathTest, AreReportedBehindTheBlocks) {
    EXPECT_EXIT(
        {
            host::qvMallocExOptim(1);
            make_struct();
            std::exit(status);
        },
        testing::ExitedWithCode(status),
        exactly("host memory: 1 request, 0 refused, 1 block not released\n"
                "  block 1: 1 byte\n"
                "  array 1 (a struct made by qvcreatestructarray800_)\n"));
}

TEST_F(LiveObjectsAtExitDeathTest, AreNotReportedWhenTheReportIsOff) {
    EXPECT_EXIT(
        {
            make_struct();
            report_at_exit(false);
            std::exit(status);
        },
        testing::ExitedWithCode(status), exactly(""));
}

TEST_F(LiveObjectsAtExitDeathTest, NothingIsReportedWhenAllWereReleased) {
    EXPECT_EXIT(
        {
            destroy(make_struct());
            host::deleteRngOptim(host::instantiateRngOptim(1));
            std::exit(status);
        },
        testing::ExitedWithCode(status), exactly(""));
}

} // namespace

} // namespace zktarn::standin
