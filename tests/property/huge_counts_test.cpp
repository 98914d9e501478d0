// Lists of 2147483647 entries, the largest count: a 32-bit position would overflow after the last
// one. These tests are compiled with wrapping overflow, as in unoptimised code, so such a position
// would leave the list. The list is never written, so the system maps one page of zeros to all of
// it. Element 0 exists.
#include <array>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <new>
#include <optional>

#include <sys/mman.h>

#include <gtest/gtest.h>

#include "support/scale.hpp"
#include "zktarn/vector/vector_mod.hpp"

namespace {

using namespace zktarn::vector_mod;

constexpr std::int32_t most = std::numeric_limits<std::int32_t>::max();

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

class HugeCounts : public ::testing::Test {
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
    // Elements 0 and 1.
    std::array<double, 2> coef{2.0, 0.0};
    std::array<std::int32_t, 2> elm{1, 7};
    vector v;
};

TEST_F(HugeCounts, CleanIndexEndsWithTheLastEntry) {
    vector_clean_index(v);
    EXPECT_EQ(elm[0], 0);
    EXPECT_EQ(elm[1], 7);
    EXPECT_EQ(v.nz, most);
}

} // namespace
