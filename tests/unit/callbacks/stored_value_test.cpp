#include "zktarn/callbacks/stored_value.hpp"

#include <cstdint>
#include <list>
#include <new>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "zktarn_standin/records.hpp"

namespace {

using namespace zktarn::callbacks_type_util;
using zktarn::standin::fail_record;
using zktarn::standin::live_records;

/// Trivially copyable.
struct progress {
    double done;
    std::int32_t round;
};

/// Owns memory, and its nodes point back to it.
using names = std::list<std::string>;

struct alignas(64) wide {
    std::int64_t number;
};

class ValueSlot : public testing::Test {
protected:
    void TearDown() override { EXPECT_EQ(live_records(), 0); }
};

TEST_F(ValueSlot, HoldsAPlainObject) {
    cbdatalist list;
    EXPECT_TRUE(store(list, progress{0.5, 7}));
    ASSERT_NE(stored<progress>(list), nullptr);
    EXPECT_EQ(stored<progress>(list)->done, 0.5);
    stored<progress>(list)->round = 8;
    const cbdatalist& reading = list;
    EXPECT_EQ(stored<progress>(reading)->round, 8);
    EXPECT_EQ(list.slot.type->size, static_cast<std::int64_t>(sizeof(progress)));
}

TEST_F(ValueSlot, HoldsAnObjectThatOwnsMemory) {
    cbdatalist list;
    EXPECT_TRUE(store(list, names{"cut", "branch"}));
    ASSERT_NE(stored<names>(list), nullptr);
    cbdatalist copy = list;
    stored<names>(copy)->push_back("bound");
    EXPECT_EQ(*stored<names>(list), (names{"cut", "branch"}));
    EXPECT_EQ(*stored<names>(copy), (names{"cut", "branch", "bound"}));
}

TEST_F(ValueSlot, HoldsAnObjectOfHighAlignment) {
    cbdatalist list;
    EXPECT_TRUE(store(list, wide{9}));
    cbdatalist copy = list;
    EXPECT_EQ(stored<wide>(copy)->number, 9);
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(stored<wide>(copy)) % 64, 0u);
}

TEST_F(ValueSlot, ReturnsNullWhenEmptyOrOfAnotherType) {
    cbdatalist list;
    EXPECT_EQ(stored<progress>(list), nullptr);
    ASSERT_TRUE(store(list, progress{0.5, 7}));
    EXPECT_EQ(stored<names>(list), nullptr);
    EXPECT_EQ(stored<int>(list), nullptr);
}

TEST_F(ValueSlot, ReplacesItsObjectAndKeepsTheHandles) {
    cbdatalist list;
    list.first_handle = 5;
    list.second_handle = 6;
    ASSERT_TRUE(store(list, names{"cut"}));
    ASSERT_TRUE(store(list, progress{0.25, 1}));
    EXPECT_EQ(stored<names>(list), nullptr);
    EXPECT_EQ(stored<progress>(list)->done, 0.25);
    EXPECT_EQ(list.first_handle, 5);
    EXPECT_EQ(list.second_handle, 6);
}

TEST_F(ValueSlot, KeepsItsObjectWhenMemoryRunsOut) {
    cbdatalist list;
    ASSERT_TRUE(store(list, progress{0.5, 7}));
    fail_record(1);
    EXPECT_FALSE(store(list, progress{0.75, 8}));
    for (const std::int64_t refused : {1, 2}) {
        fail_record(refused);
        EXPECT_FALSE(store(list, names{"cut"})) << refused;
    }
    fail_record(0);
    EXPECT_EQ(stored<progress>(list)->done, 0.5);
    EXPECT_EQ(live_records(), 1);
}

TEST_F(ValueSlot, ACopyWithoutMemoryIsEmpty) {
    cbdatalist list;
    ASSERT_TRUE(store(list, names{"cut"}));
    for (const std::int64_t refused : {1, 2}) {
        fail_record(refused);
        cbdatalist copy = list;
        fail_record(0);
        EXPECT_EQ(stored<names>(copy), nullptr) << refused;
        const cbdatalist copy_of_copy = copy;
        EXPECT_EQ(stored<names>(copy_of_copy), nullptr) << refused;
    }
    EXPECT_EQ(*stored<names>(list), (names{"cut"}));
}

struct pooled {
    static void* operator new(std::size_t) { throw std::bad_alloc(); }
    static void operator delete(void*) {}
    int number;
};

struct pooled_owner : pooled {
    std::string text;
};

TEST_F(ValueSlot, DoesNotCallOperatorNewOfTheClass) {
    cbdatalist list;
    EXPECT_TRUE(store(list, pooled{4}));
    EXPECT_EQ(stored<pooled>(list)->number, 4);
    EXPECT_TRUE(store(list, pooled_owner{{5}, "five"}));
    const cbdatalist copy = list;
    EXPECT_EQ(stored<pooled_owner>(copy)->text, "five");
}

TEST_F(ValueSlot, AssigningToItselfNeedsNoMemory) {
    cbdatalist list;
    ASSERT_TRUE(store(list, names{"cut"}));
    const cbdatalist& same = list;
    fail_record(1);
    list = same;
    fail_record(0);
    EXPECT_EQ(*stored<names>(list), (names{"cut"}));
}

TEST_F(ValueSlot, AssigningWithoutMemoryLeavesTheSlotEmpty) {
    cbdatalist list;
    cbdatalist other;
    ASSERT_TRUE(store(list, progress{0.5, 7}));
    ASSERT_TRUE(store(other, progress{0.75, 8}));
    fail_record(1);
    list = other;
    fail_record(0);
    EXPECT_EQ(list.slot.value, nullptr);
    EXPECT_EQ(stored<progress>(other)->done, 0.75);
}

struct shy {
    shy() = default;
    shy(const shy&) { throw std::runtime_error("no copies of me"); }
    shy(shy&&) noexcept {}
    int number = 4;
};

TEST_F(ValueSlot, ACopyThatThrowsIsEmpty) {
    cbdatalist list;
    EXPECT_TRUE(store(list, shy{}));
    EXPECT_EQ(stored<shy>(list)->number, 4);
    const cbdatalist copy = list;
    EXPECT_EQ(stored<shy>(copy), nullptr);
}

TEST_F(ValueSlot, CanBeAnElementOfAVector) {
    std::vector<cbdatalist> lists(3);
    for (std::size_t i = 0; i < lists.size(); ++i) {
        ASSERT_TRUE(store(lists[i], names(i, "x")));
    }
    std::vector<cbdatalist> copies = lists;
    lists.clear();
    for (std::size_t i = 0; i < copies.size(); ++i) {
        EXPECT_EQ(stored<names>(copies[i])->size(), i);
    }
}

} // namespace
