#include "zktarn_standin/records.hpp"

#include <cstddef>
#include <cstdint>
#include <limits>
#include <memory>
#include <new>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "unit/standin/standin_fixture.hpp"
#include "zktarn/callbacks/callbacks_util.hpp"
#include "zktarn/vector/vector_type.hpp"
#include "zktarn_standin/control.hpp"

namespace zktarn::standin {

namespace {

using callbacks_type_util::cbdata;
using callbacks_util::cbinit;
using vector_type::vector;
using vector_type::vector_alloc;
using vector_type::vector_free;

class Records : public testing::Test {
protected:
    void TearDown() override { EXPECT_EQ(live_records(), 0); }
};

TEST_F(Records, OfTheSharedLibraryAreCounted) {
    const std::int64_t before = record_requests();
    vector* v = nullptr;
    ASSERT_EQ(vector_alloc(v, 3), 1);
    EXPECT_EQ(live_records(), 1);
    cbdata* cb = nullptr;
    cbinit(cb);
    EXPECT_EQ(live_records(), 2);
    EXPECT_EQ(record_requests(), before + 2);
    delete cb;
    EXPECT_EQ(live_records(), 1);
    vector_free(v);
}

TEST_F(Records, APlannedAllocationFails) {
    vector stale;
    vector* v = &stale;
    fail_record(1);
    EXPECT_EQ(vector_alloc(v, 3), 0);
    EXPECT_EQ(v, nullptr);
    EXPECT_TRUE(live_blocks().empty());
    cbdata here;
    cbdata* cb = &here;
    fail_record(2);
    ASSERT_EQ(vector_alloc(v, 3), 1);
    cbinit(cb);
    EXPECT_EQ(cb, nullptr);
    vector_free(v);
}

TEST_F(Records, APlanFailsOneAllocationAndCanBeCancelled) {
    fail_record(1);
    fail_record(0);
    for (int i = 0; i < 3; ++i) {
        cbdata* cb = nullptr;
        cbinit(cb);
        EXPECT_NE(cb, nullptr);
        delete cb;
    }
}

TEST_F(Records, AllocationsThatMayThrowAreNotRecords) {
    const std::int64_t before = record_requests();
    const auto numbers = std::make_unique<std::vector<int>>(1000);
    fail_record(1);
    const auto others = std::make_unique<std::vector<int>>(1000);
    fail_record(0);
    EXPECT_EQ(record_requests(), before);
    EXPECT_EQ(live_records(), 0);
}

TEST_F(Records, AreCountedAsLiveUntilTheyAreDeleted) {
    std::vector<double*> all;
    for (int i = 0; i < 3000; ++i) {
        all.push_back(new (std::nothrow) double(i));
    }
    EXPECT_EQ(live_records(), 3000);
    for (std::size_t i = 0; i < all.size(); ++i) {
        EXPECT_EQ(*all[i], static_cast<double>(i));
        delete all[i];
    }
}

TEST_F(Records, MayBeAllocatedOnTwoThreads) {
    const auto work = [] {
        for (int i = 0; i < 2000; ++i) {
            delete new (std::nothrow) double(i);
        }
    };
    std::thread other(work);
    work();
    other.join();
}

TEST_F(Records, AnAllocationOfTooManyBytesFails) {
    // The compiler would reject a constant of this size.
    volatile std::size_t size = std::numeric_limits<std::size_t>::max() / 4;
    EXPECT_EQ(::operator new(size, std::nothrow), nullptr);
    EXPECT_THROW(static_cast<void>(::operator new(size)), std::bad_alloc);
    size = 0;
    void* const empty = ::operator new(size);
    EXPECT_NE(empty, nullptr);
    ::operator delete(empty);
}

using RecordsDeathTest = Records;

TEST_F(RecordsDeathTest, AWritePastTheEndIsDetectedWhenTheRecordIsDeleted) {
    EXPECT_DEATH(
        {
            keep_coverage();
            auto* const record = static_cast<unsigned char*>(::operator new(12, std::nothrow));
            unsigned char* volatile end = record + 12;
            *end = 1;
            ::operator delete(record);
        },
        "zktarn stand-in host: a record of 12 bytes was written past its end");
}

} // namespace

} // namespace zktarn::standin
