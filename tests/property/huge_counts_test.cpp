// Lists and sets with 2147483647 elements, the largest count: a 32-bit position would overflow
// after the last one. These tests are compiled with wrapping overflow, as in unoptimised code, so
// such a position would leave the list or the set.
#include <array>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <new>
#include <optional>

#include <sys/mman.h>

#include <gtest/gtest.h>

#include "support/scale.hpp"
#include "zktarn/util/scalar_search.hpp"
#include "zktarn/vector/vector_mod.hpp"

namespace {

using namespace zktarn::vector_mod;
using zktarn::flag;

constexpr std::int32_t most = std::numeric_limits<std::int32_t>::max();

/// A list of zeros. It is never written, so the system maps one page of zeros to all of it.
class zeros {
public:
    zeros()
        : address_(
              mmap(nullptr, size, PROT_READ, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0)) {
        if (address_ == MAP_FAILED) {
            throw std::bad_alloc();
        }
#ifdef MADV_HUGEPAGE
        madvise(address_, size, MADV_HUGEPAGE);
#endif
    }
    ~zeros() {
        munmap(address_, size);
    }
    zeros(const zeros&) = delete;
    zeros& operator=(const zeros&) = delete;

    std::int32_t* list() const {
        return static_cast<std::int32_t*>(address_);
    }

private:
    static constexpr std::size_t size = std::size_t{most} * sizeof(std::int32_t);
    void* address_;
};

class HugeLists : public ::testing::Test {
protected:
    void SetUp() override {
        if (zktarn::testing::scaled(100) < 100) {
            GTEST_SKIP() << "too many entries where each of them costs more";
        }
#ifdef ZKTARN_CHECKED
        GTEST_SKIP() << "a checked build reports element 0";
#endif
        v.coef = {coef.data() + 1, {most}, {1}};
        v.ind = {all.emplace().list(), {most}, {1}};
        v.elm = {elm.data() + 1, {most}, {1}};
        v.nz = most;
    }

    // Mapped by tests that are not skipped, because the size of a process may be limited.
    std::optional<zeros> all;
    // Elements 0 and 1, because the list has the index 0.
    std::array<double, 2> coef{2.0, 0.0};
    std::array<std::int32_t, 2> elm{1, 7};
    vector v;
};

TEST_F(HugeLists, CleanIndexEndsWithTheLastEntry) {
    vector_clean_index(v);
    EXPECT_EQ(elm[0], 0);
    EXPECT_EQ(elm[1], 7);
    EXPECT_EQ(v.nz, most);
}

/// The supplier of the set needs no storage.
TEST(HugeSet, EachPassOfTheScalarSearchEndsAtTheLargestIndex) {
    if (zktarn::testing::scaled(100) < 100) {
        GTEST_SKIP() << "three passes call the supplier too often where each call costs more";
    }
    std::int64_t calls = 0;
    std::int64_t out_of_order = 0;
    std::int32_t last = most;
    const auto supply = [&](const std::int32_t& index, double& value, flag& marked, flag&) {
        out_of_order += index == (last == most ? 1 : last + 1) ? 0 : 1;
        last = index;
        ++calls;
        // Only the last element is included. The marked one makes the first trial start at 0.5.
        value = index == most ? 2.5 : index == 1 ? 2.0 : 0.0;
        marked = index == 1 ? 1 : 0;
    };
    flag found = -1;
    double scalar = -1.0;
    // The trial from 0.5 would need a larger scalar and the one from 1.0 exceeds the bound, so both
    // fail; the construction returns 10/25 for 2.5 = 25/10.
    zktarn::util::find_scalar_integral(most, supply, 1e-9, 1000.0, 0.9, found, scalar, flag{1});
    EXPECT_EQ(found, 1);
    EXPECT_EQ(scalar, 0.4);
    EXPECT_EQ(calls, 3 * std::int64_t{most});
    EXPECT_EQ(out_of_order, 0);
}

} // namespace
