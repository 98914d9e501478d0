#include "zktarn/callbacks/callbacks_type_util.hpp"

#include <array>
#include <bit>
#include <cstdint>
#include <cstring>
#include <limits>
#include <new>
#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/host_log.hpp"
#include "zktarn_standin/records.hpp"

namespace {

using namespace zktarn::callbacks_type_util;
using testing::ElementsAre;
using testing::IsEmpty;
using zktarn::standin::fail_record;
using zktarn::standin::live_records;

constexpr std::int32_t none[] = {0, -1, std::numeric_limits<std::int32_t>::min()};

template <class Record>
std::array<unsigned char, sizeof(Record)> bytes_of(const Record& record) {
    return std::bit_cast<std::array<unsigned char, sizeof(Record)>>(record);
}

// Plain records
// ---------------------------------------------------------------------------------------

TEST(Cbstatusdata, IsFilledWithZeroBytes) {
    cbstatusdata records[3];
    std::memset(static_cast<void*>(records), 0xA5, sizeof records);
    const auto untouched = bytes_of(records[0]);
    _cbstatusdatainitialise(records[1], 1);
    EXPECT_EQ(bytes_of(records[0]), untouched);
    EXPECT_EQ(bytes_of(records[1]), (std::array<unsigned char, sizeof(cbstatusdata)>{}));
    EXPECT_EQ(bytes_of(records[2]), untouched);
    _cbstatusdatainitialise(records[0], 3);
    EXPECT_EQ(bytes_of(records[2]), (std::array<unsigned char, sizeof(cbstatusdata)>{}));
    EXPECT_EQ(bytes_of(cbstatusdata{}), (std::array<unsigned char, sizeof(cbstatusdata)>{}));
}

TEST(Cbdata, HasTheDocumentedDefaults) {
    cbdata records[3];
    std::memset(static_cast<void*>(records), 0xA5, sizeof records);
    const auto untouched = bytes_of(records[0]);
    _cbdatainitialise(records[1], 2);
    EXPECT_EQ(bytes_of(records[0]), untouched);
    for (const cbdata& each : {records[1], records[2], cbdata{}}) {
        EXPECT_EQ(each.nodes_explored, -1);
        EXPECT_EQ(each.feasible_points, 0);
        EXPECT_EQ(each.node, -1);
        EXPECT_EQ(each.parent_node, -1);
        EXPECT_EQ(each.depth, -1);
        EXPECT_EQ(each.branching_variable, -1);
        EXPECT_EQ(each.lower_bound, -1.7976931348623157e308);
        EXPECT_EQ(each.upper_bound, 1.7976931348623157e308);
        EXPECT_EQ(each.gap, 1.7976931348623157e308);
        EXPECT_EQ(each.incumbent_node, -1);
        EXPECT_EQ(each.cuts, 0);
        EXPECT_EQ(each.restarts, 0);
    }
}

TEST(Cbdata, AdjacentFieldsMayBeReadAsTwo64BitIntegers) {
    const cbdata record;
    std::int64_t wide[2] = {};
    std::memcpy(wide, &record.node, sizeof wide);
    EXPECT_THAT(wide, ElementsAre(-1, -1));
}

TEST(PlainRecords, WriteNothingForACountBelowOne) {
    cbstatusdata status;
    status.status = 9;
    cbdata data;
    data.cuts = 9;
    for (const std::int32_t count : none) {
        _cbstatusdatainitialise(status, count);
        _cbdatainitialise(data, count);
    }
    EXPECT_EQ(status.status, 9);
    EXPECT_EQ(data.cuts, 9);
}

// Value slots
// ----------------------------------------------------------------------------------------

std::vector<std::string> events;

/// A value that owns an integer.
struct owner {
    int* owned;
};

void copy_owner(void* first, const std::int32_t& count) noexcept {
    events.push_back("copy " + std::to_string(count));
    owner& value = *static_cast<owner*>(first);
    value.owned = new (std::nothrow) int(*value.owned);
}

void final_owner(void* value) noexcept {
    events.push_back("final");
    delete static_cast<owner*>(value)->owned;
}

void finalise_owner(void* first, const std::int32_t& count, parameter_block* parameters) noexcept {
    events.push_back("finalise " + std::to_string(count) +
                     (parameters == nullptr ? "" : " with parameters"));
    delete static_cast<owner*>(first)->owned;
}

constexpr value_type plain_type = {.size = 16};
constexpr value_type owner_type = {
    .size = sizeof(owner), .copy = copy_owner, .finalise = finalise_owner};
constexpr value_type final_type = {
    .size = sizeof(owner), .copy = copy_owner, .final = final_owner, .finalise = finalise_owner};
constexpr value_type sized_type = {.size = 1, .has_parameters = 1};
constexpr value_type sized_owner_type = {
    .size = 1, .has_parameters = 1, .copy = copy_owner, .finalise = finalise_owner};

/// Raw storage for records: only the procedures under test construct, copy and destroy them.
class raw_list {
public:
    cbdatalist& operator*() { return *reinterpret_cast<cbdatalist*>(storage_); }
    cbdatalist* operator->() { return &**this; }

    /// Copies the bits, so that both records refer to the same value.
    void copy_bits(raw_list& other) { std::memcpy(storage_, other.storage_, sizeof storage_); }
    unsigned char* storage() { return storage_; }

private:
    alignas(cbdatalist) unsigned char storage_[sizeof(cbdatalist)] = {};
};

void* storage_of(std::size_t size) {
    return ::operator new(size, std::nothrow);
}

/// A slot with a value of 16 bytes: 0, 1, 2, ...
void put_plain(cbdatalist& list, const value_type& type = plain_type) {
    auto* const bytes = static_cast<unsigned char*>(storage_of(16));
    for (unsigned char i = 0; i < 16; ++i) {
        bytes[i] = i;
    }
    list.slot = {bytes, &type, nullptr};
}

void put_owner(cbdatalist& list, int number, const value_type& type = owner_type) {
    auto* const value = static_cast<owner*>(storage_of(sizeof(owner)));
    value->owned = new (std::nothrow) int(number);
    list.slot = {value, &type, nullptr};
}

/// A block of five entries: a header of three, and two length parameters.
parameter_block* make_block(std::int64_t value_size, zktarn::flag owned) {
    auto* const entries = static_cast<std::int64_t*>(storage_of(5 * sizeof(std::int64_t)));
    const std::int64_t contents[] = {owned, 5, value_size, 70, 80};
    std::memcpy(entries, contents, sizeof contents);
    return reinterpret_cast<parameter_block*>(entries);
}

std::vector<std::int64_t> entries_of(const parameter_block* block) {
    const auto* const first = reinterpret_cast<const std::int64_t*>(block);
    return {first, first + 5};
}

int number_in(cbdatalist& list) {
    return *static_cast<owner*>(list.slot.value)->owned;
}

class Cbdatalist : public testing::Test {
protected:
    void SetUp() override { events.clear(); }
    void TearDown() override { EXPECT_EQ(live_records(), 0); }

    zktarn::testing::host_log host;
};

TEST_F(Cbdatalist, InitialisesOnlyTheValueAndTheHandles) {
    raw_list lists[2];
    std::memset(lists[0].storage(), 0xA5, sizeof(cbdatalist));
    std::memset(lists[1].storage(), 0xA5, sizeof(cbdatalist));
    const value_type* const stale_type = lists[0]->slot.type;
    parameter_block* const stale_block = lists[0]->slot.parameters;
    _cbdatalistinitialise(*lists[0], 1);
    EXPECT_EQ(lists[0]->slot.value, nullptr);
    EXPECT_EQ(lists[0]->slot.type, stale_type);
    EXPECT_EQ(lists[0]->slot.parameters, stale_block);
    EXPECT_EQ(lists[0]->first_handle, 0);
    EXPECT_EQ(lists[0]->second_handle, 0);
    EXPECT_NE(lists[1]->slot.value, nullptr);
    EXPECT_THAT(host.calls(), IsEmpty());
}

TEST_F(Cbdatalist, InitialisesARun) {
    cbdatalist lists[3];
    for (cbdatalist& each : lists) {
        each.first_handle = 7;
    }
    _cbdatalistinitialise(lists[0], 2);
    EXPECT_EQ(lists[0].first_handle, 0);
    EXPECT_EQ(lists[1].first_handle, 0);
    EXPECT_EQ(lists[2].first_handle, 7);
}

TEST_F(Cbdatalist, WriteNothingForACountBelowOne) {
    raw_list list;
    put_plain(*list);
    list->first_handle = 5;
    void* const value = list->slot.value;
    for (const std::int32_t count : none) {
        _cbdatalistinitialise(*list, count);
        _cbdatalistcopy(*list, count);
        _cbdatalistfinalise(*list, count);
    }
    EXPECT_EQ(list->slot.value, value);
    EXPECT_EQ(list->first_handle, 5);
    _cbdatalistfinalise(*list, 1);
}

TEST_F(Cbdatalist, CopiesAnEmptySlotWithoutAllocating) {
    raw_list list;
    _cbdatalistinitialise(*list, 1);
    list->first_handle = 5;
    list->second_handle = -6;
    fail_record(1);
    _cbdatalistcopy(*list, 1);
    fail_record(0);
    EXPECT_EQ(list->slot.value, nullptr);
    EXPECT_EQ(list->first_handle, 5);
    EXPECT_EQ(list->second_handle, -6);
    EXPECT_EQ(live_records(), 0);
}

TEST_F(Cbdatalist, CopiesTheBytesOfAValueIntoItsOwnStorage) {
    raw_list original;
    put_plain(*original);
    original->first_handle = 5;
    original->second_handle = -6;
    raw_list copy;
    copy.copy_bits(original);
    _cbdatalistcopy(*copy, 1);
    EXPECT_NE(copy->slot.value, original->slot.value);
    EXPECT_EQ(std::memcmp(copy->slot.value, original->slot.value, 16), 0);
    EXPECT_EQ(copy->slot.type, &plain_type);
    EXPECT_EQ(copy->first_handle, 5);
    EXPECT_EQ(copy->second_handle, -6);
    _cbdatalistfinalise(*original, 1);
    EXPECT_EQ(static_cast<unsigned char*>(copy->slot.value)[15], 15);
    _cbdatalistfinalise(*copy, 1);
}

TEST_F(Cbdatalist, RunsTheCopyProcedureOnTheNewValue) {
    raw_list original;
    put_owner(*original, 1);
    raw_list copy;
    copy.copy_bits(original);
    _cbdatalistcopy(*copy, 1);
    EXPECT_THAT(events, ElementsAre("copy 1"));
    *static_cast<owner*>(copy->slot.value)->owned = 2;
    EXPECT_EQ(number_in(*original), 1);
    _cbdatalistfinalise(*original, 1);
    EXPECT_EQ(number_in(*copy), 2);
    _cbdatalistfinalise(*copy, 1);
    EXPECT_THAT(events, ElementsAre("copy 1", "finalise 1", "finalise 1"));
}

TEST_F(Cbdatalist, CopiesARunOfRecords) {
    raw_list originals[3];
    put_owner(*originals[0], 10);
    _cbdatalistinitialise(*originals[1], 1);
    put_owner(*originals[2], 30);
    raw_list copies[3];
    for (int i = 0; i < 3; ++i) {
        copies[i].copy_bits(originals[i]);
    }
    _cbdatalistcopy(*copies[0], 3);
    EXPECT_EQ(number_in(*copies[0]), 10);
    EXPECT_EQ(copies[1]->slot.value, nullptr);
    EXPECT_EQ(number_in(*copies[2]), 30);
    EXPECT_NE(copies[2]->slot.value, originals[2]->slot.value);
    _cbdatalistfinalise(*copies[0], 3);
    _cbdatalistfinalise(*originals[0], 3);
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(copies[i]->slot.value, nullptr);
    }
}

TEST_F(Cbdatalist, CopiesAnOwnedBlockOfParametersAndTakesTheSizeFromIt) {
    raw_list original;
    put_plain(*original, sized_type);
    original->slot.parameters = make_block(16, 1);
    raw_list copy;
    copy.copy_bits(original);
    _cbdatalistcopy(*copy, 1);
    EXPECT_NE(copy->slot.parameters, original->slot.parameters);
    EXPECT_EQ(entries_of(copy->slot.parameters), entries_of(original->slot.parameters));
    EXPECT_EQ(std::memcmp(copy->slot.value, original->slot.value, 16), 0);
    _cbdatalistfinalise(*copy, 1);
    EXPECT_EQ(copy->slot.parameters, nullptr);
    _cbdatalistfinalise(*original, 1);
}

TEST_F(Cbdatalist, MarksTheCopiedBlockAsOwned) {
    raw_list original;
    put_plain(*original, sized_type);
    original->slot.parameters = make_block(16, -8);
    raw_list copy;
    copy.copy_bits(original);
    _cbdatalistcopy(*copy, 1);
    EXPECT_EQ(copy->slot.parameters->owned, 1);
    EXPECT_EQ(original->slot.parameters->owned, -8);
    _cbdatalistfinalise(*copy, 1);
    _cbdatalistfinalise(*original, 1);
}

TEST_F(Cbdatalist, SharesABlockThatIsNotOwned) {
    parameter_block* const shared = make_block(16, 0);
    raw_list original;
    put_plain(*original, sized_type);
    original->slot.parameters = shared;
    raw_list copy;
    copy.copy_bits(original);
    _cbdatalistcopy(*copy, 1);
    EXPECT_EQ(copy->slot.parameters, shared);
    EXPECT_EQ(std::memcmp(copy->slot.value, original->slot.value, 16), 0);
    _cbdatalistfinalise(*copy, 1);
    _cbdatalistfinalise(*original, 1);
    EXPECT_EQ(copy->slot.parameters, shared);
    EXPECT_EQ(shared->value_size, 16);
    ::operator delete(shared);
}

TEST_F(Cbdatalist, TakesTheSizeFromATypeWithoutParameters) {
    // If a block is present anyway, its size is ignored.
    raw_list original;
    put_plain(*original);
    original->slot.parameters = make_block(1'000'000, 1);
    raw_list copy;
    copy.copy_bits(original);
    _cbdatalistcopy(*copy, 1);
    EXPECT_EQ(std::memcmp(copy->slot.value, original->slot.value, 16), 0);
    EXPECT_EQ(entries_of(copy->slot.parameters), entries_of(original->slot.parameters));
    _cbdatalistfinalise(*copy, 1);
    _cbdatalistfinalise(*original, 1);
}

TEST_F(Cbdatalist, LeavesACopyEmptyWithoutMemory) {
    for (const std::int64_t refused : {1, 2}) {
        raw_list original;
        put_plain(*original, sized_type);
        original->slot.parameters = make_block(16, 1);
        raw_list copy;
        copy.copy_bits(original);
        fail_record(refused);
        _cbdatalistcopy(*copy, 1);
        fail_record(0);
        EXPECT_EQ(copy->slot.value, nullptr);
        EXPECT_EQ(live_records(), 2) << "of the original";
        _cbdatalistfinalise(*copy, 1);
        EXPECT_EQ(static_cast<unsigned char*>(original->slot.value)[15], 15);
        _cbdatalistfinalise(*original, 1);
    }
}

TEST_F(Cbdatalist, DoesNotReleaseASharedBlockWithoutMemory) {
    parameter_block* const shared = make_block(16, 0);
    raw_list original;
    put_plain(*original, sized_type);
    original->slot.parameters = shared;
    raw_list copy;
    copy.copy_bits(original);
    fail_record(1);
    _cbdatalistcopy(*copy, 1);
    EXPECT_EQ(copy->slot.value, nullptr);
    EXPECT_EQ(shared->value_size, 16);
    _cbdatalistfinalise(*original, 1);
    ::operator delete(shared);
}

TEST_F(Cbdatalist, FinalisesByTheFinalProcedureWhenPresent) {
    raw_list list;
    put_owner(*list, 1, final_type);
    list->first_handle = 5;
    list->second_handle = 6;
    _cbdatalistfinalise(*list, 1);
    EXPECT_THAT(events, ElementsAre("final"));
    EXPECT_EQ(list->slot.value, nullptr);
    EXPECT_EQ(list->slot.type, &final_type);
    EXPECT_EQ(list->first_handle, 5);
    EXPECT_EQ(list->second_handle, 6);
}

TEST_F(Cbdatalist, MayBeFinalisedTwice) {
    raw_list list;
    put_owner(*list, 1);
    _cbdatalistfinalise(*list, 1);
    _cbdatalistfinalise(*list, 1);
    EXPECT_THAT(events, ElementsAre("finalise 1"));
}

TEST_F(Cbdatalist, PassesTheParametersToTheFinalisationOfASizedType) {
    raw_list list;
    put_owner(*list, 1, sized_owner_type);
    list->slot.parameters = make_block(sizeof(owner), 1);
    _cbdatalistfinalise(*list, 1);
    EXPECT_THAT(events, ElementsAre("finalise 1 with parameters"));
    put_owner(*list, 1, owner_type);
    list->slot.parameters = make_block(sizeof(owner), 1);
    _cbdatalistfinalise(*list, 1);
    EXPECT_THAT(events, ElementsAre("finalise 1 with parameters", "finalise 1"));
}

// C++ records
// ----------------------------------------------------------------------------------------

cbdatalist with_owner(int number) {
    cbdatalist list;
    put_owner(list, number);
    list.first_handle = number;
    list.second_handle = -number;
    return list;
}

TEST_F(Cbdatalist, IsEmptyWhenConstructed) {
    const cbdatalist list;
    EXPECT_EQ(list.slot.value, nullptr);
    EXPECT_EQ(list.first_handle, 0);
    EXPECT_EQ(list.second_handle, 0);
}

TEST_F(Cbdatalist, CopiesAreIndependent) {
    cbdatalist original = with_owner(1);
    cbdatalist copy = original;
    EXPECT_EQ(number_in(copy), 1);
    EXPECT_EQ(copy.first_handle, 1);
    EXPECT_EQ(copy.second_handle, -1);
    *static_cast<owner*>(copy.slot.value)->owned = 2;
    EXPECT_EQ(number_in(original), 1);
    original = with_owner(3);
    EXPECT_EQ(number_in(original), 3);
    EXPECT_EQ(number_in(copy), 2);
    copy = original;
    EXPECT_EQ(number_in(copy), 3);
    EXPECT_EQ(copy.first_handle, 3);
    EXPECT_EQ(copy.second_handle, -3);
}

TEST_F(Cbdatalist, AMoveEmptiesTheSource) {
    cbdatalist first = with_owner(1);
    cbdatalist second = std::move(first);
    EXPECT_EQ(first.slot.value, nullptr);
    EXPECT_EQ(number_in(second), 1);
    cbdatalist third = with_owner(3);
    third = std::move(second);
    EXPECT_EQ(second.slot.value, nullptr);
    EXPECT_EQ(number_in(third), 1);
    EXPECT_EQ(third.first_handle, 1);
    EXPECT_EQ(third.second_handle, -1);
    EXPECT_THAT(events, ElementsAre("finalise 1"));
}

TEST_F(Cbdatalist, AssignsToItself) {
    cbdatalist list = with_owner(1);
    cbdatalist& same = list;
    list = same;
    EXPECT_EQ(number_in(list), 1);
    list = std::move(same);
    EXPECT_EQ(number_in(list), 1);
    EXPECT_EQ(list.first_handle, 1);
}

TEST_F(Cbdatalist, AssignsARecordInsideItsOwnValue) {
    struct node {
        cbdatalist inner;
    };
    static constexpr value_type node_type = {
        .size = sizeof(node),
        .final = [](void* value) noexcept { static_cast<node*>(value)->~node(); }};
    cbdatalist list;
    auto* const outer = new (storage_of(sizeof(node))) node;
    outer->inner = with_owner(9);
    list.slot = {outer, &node_type, nullptr};
    list = outer->inner;
    EXPECT_EQ(number_in(list), 9);
}

TEST_F(Cbdatalist, CanBeAnElementOfAVector) {
    std::vector<cbdatalist> lists;
    for (int i = 0; i < 10; ++i) {
        lists.push_back(with_owner(i));
    }
    const std::vector<cbdatalist> copies = lists;
    lists.erase(lists.begin(), lists.begin() + 5);
    EXPECT_EQ(number_in(lists.front()), 5);
    EXPECT_EQ(*static_cast<owner*>(copies.front().slot.value)->owned, 0);
}

} // namespace
