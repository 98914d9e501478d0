#include <algorithm>
#include <cstdint>
#include <set>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "unit/standin/standin_fixture.hpp"
#include "zktarn/host/libzkoptimutil.hpp"

namespace zktarn::standin {

namespace {

using numbers = std::vector<double>;

using host::deleteRngOptim;
using host::deleteRngStateOptim;
using host::getRngStateOptim;
using host::instantiateRngOptim;
using host::setRngStateOptim;

class Generators : public StandinTest {
protected:
    void TearDown() override {
        EXPECT_TRUE(faults.empty());
        StandinTest::TearDown();
    }
};

numbers drawn(void* generator, std::int64_t count) {
    numbers values(static_cast<std::size_t>(count), -1.0);
    host::getRandUniformOptim(generator, values.data(), &count);
    return values;
}

/// The first numbers of a new generator.
numbers first_of_seed(std::int32_t seed, std::int64_t count) {
    void* const generator = instantiateRngOptim(seed);
    const numbers values = drawn(generator, count);
    deleteRngOptim(generator);
    return values;
}

TEST_F(Generators, TheSameSeedGivesTheSameNumbers) {
    for (const std::int32_t seed : {0, 1, -1, 2147483647}) {
        EXPECT_EQ(first_of_seed(seed, 100), first_of_seed(seed, 100));
    }
}

TEST_F(Generators, TheNumbersAreTheSameOnEveryPlatform) {
    // The C++ standard states the 10000th number of std::mt19937_64 for its default seed, 5489.
    const double expected = static_cast<double>(9981545732273789042u >> 11) / 9007199254740992.0;
    EXPECT_EQ(first_of_seed(5489, 10000).back(), expected);
}

TEST_F(Generators, DifferentSeedsGiveDifferentNumbers) {
    std::set<double> first;
    for (std::int32_t seed = -50; seed < 50; ++seed) {
        first.insert(first_of_seed(seed, 1)[0]);
    }
    EXPECT_EQ(first.size(), 100u);
}

TEST_F(Generators, SingleDrawsGiveTheSameNumbersAsOneDrawOfMany) {
    const numbers together = first_of_seed(3, 50);
    void* const generator = instantiateRngOptim(3);
    for (const double each : together) {
        EXPECT_EQ(drawn(generator, 1)[0], each);
    }
    deleteRngOptim(generator);
}

TEST_F(Generators, EachHasItsOwnStream) {
    void* const first = instantiateRngOptim(1);
    void* const second = instantiateRngOptim(2);
    ASSERT_NE(first, second);
    const numbers of_first = first_of_seed(1, 20);
    const numbers of_second = first_of_seed(2, 20);
    for (std::size_t i = 0; i < 20; ++i) {
        EXPECT_EQ(drawn(first, 1)[0], of_first[i]);
        EXPECT_EQ(drawn(second, 1)[0], of_second[i]);
    }
    deleteRngOptim(first);
    // The other generator still draws.
    EXPECT_EQ(drawn(second, 1)[0], first_of_seed(2, 21)[20]);
    deleteRngOptim(second);
}

TEST_F(Generators, NumbersAreUniformFrom0To1) {
    constexpr int count = 100000;
    constexpr int bins = 10;
    const numbers values = first_of_seed(42, count);
    EXPECT_GE(*std::min_element(values.begin(), values.end()), 0.0);
    EXPECT_LT(*std::max_element(values.begin(), values.end()), 1.0);
    int hits[bins] = {};
    for (const double each : values) {
        ++hits[static_cast<int>(each * bins)];
    }
    // The expected count of a bin is 10000, its standard deviation 95. The test allows 5 standard
    // deviations.
    for (const int in_bin : hits) {
        EXPECT_NEAR(in_bin, count / bins, 475);
    }
}

TEST_F(Generators, ACountOfZeroDrawsNothing) {
    void* const generator = instantiateRngOptim(7);
    const std::int64_t none = 0;
    double untouched = -1.0;
    host::getRandUniformOptim(generator, &untouched, &none);
    EXPECT_EQ(untouched, -1.0);
    EXPECT_EQ(drawn(generator, 1), first_of_seed(7, 1));
    deleteRngOptim(generator);
}

TEST_F(Generators, NoMoreNumbersAreDrawnThanRequested) {
    void* const generator = instantiateRngOptim(7);
    numbers values(5, -1.0);
    const std::int64_t three = 3;
    host::getRandUniformOptim(generator, values.data(), &three);
    EXPECT_GE(values[2], 0.0);
    EXPECT_EQ(values[3], -1.0);
    EXPECT_EQ(values[4], -1.0);
    deleteRngOptim(generator);
}

TEST_F(Generators, ASnapshotRestoresExactlyAndRepeatedly) {
    void* const generator = instantiateRngOptim(11);
    // The engine refills its state after 312 numbers. The snapshot is taken between two refills.
    drawn(generator, 1000);
    void* const state = getRngStateOptim(generator);
    ASSERT_NE(state, nullptr);
    const numbers after = drawn(generator, 700);
    for (int i = 0; i < 3; ++i) {
        drawn(generator, i);
        setRngStateOptim(generator, state);
        EXPECT_EQ(drawn(generator, 700), after);
    }
    deleteRngOptim(generator);
    deleteRngStateOptim(state);
}

TEST_F(Generators, ASnapshotRestoresAnotherGeneratorAfterItsOwnIsDeleted) {
    void* const first = instantiateRngOptim(1);
    void* const second = instantiateRngOptim(2);
    drawn(first, 10);
    void* const state = getRngStateOptim(first);
    const numbers after = drawn(first, 30);
    deleteRngOptim(first);
    setRngStateOptim(second, state);
    EXPECT_EQ(drawn(second, 30), after);
    deleteRngOptim(second);
    deleteRngStateOptim(state);
}

TEST_F(Generators, TakingASnapshotChangesNothing) {
    void* const generator = instantiateRngOptim(4);
    deleteRngStateOptim(getRngStateOptim(generator));
    EXPECT_EQ(drawn(generator, 10), first_of_seed(4, 10));
    deleteRngOptim(generator);
}

TEST_F(Generators, ASnapshotOfANullGeneratorIsNullWithoutAFault) {
    EXPECT_EQ(getRngStateOptim(nullptr), nullptr);
}

/// Tests handles that are not those of live generators or snapshots.
class GeneratorFaults : public StandinTest {
protected:
    void SetUp() override {
        StandinTest::SetUp();
        generator = instantiateRngOptim(1);
        state = getRngStateOptim(generator);
    }

    void TearDown() override {
        deleteRngOptim(generator);
        deleteRngStateOptim(state);
        EXPECT_TRUE(faults.empty());
        StandinTest::TearDown();
    }

    /// Expects that every operation on a generator reports this fault.
    void expect_no_generator(void* address, fault_kind kind, const std::string& after_name) {
        EXPECT_EQ(drawn(address, 2), numbers(2, -1.0));
        expect_fault(kind, "getRandUniformOptim: " + after_name);
        setRngStateOptim(address, state);
        expect_fault(kind, "setRngStateOptim: " + after_name);
        deleteRngOptim(address);
        expect_fault(kind, "deleteRngOptim: " + after_name);
        if (address != nullptr) {
            EXPECT_EQ(getRngStateOptim(address), nullptr);
            expect_fault(kind, "getRngStateOptim: " + after_name);
        }
    }

    void expect_no_snapshot(void* address, fault_kind kind, const std::string& after_name) {
        setRngStateOptim(generator, address);
        expect_fault(kind, "setRngStateOptim: " + after_name);
        deleteRngStateOptim(address);
        expect_fault(kind, "deleteRngStateOptim: " + after_name);
    }

    void* generator = nullptr;
    void* state = nullptr;
};

/// The number of the newest generator or snapshot.
std::string newest(operation made_by) {
    std::int64_t number = 0;
    for (const live_object& each : live_objects()) {
        number = each.made_by == made_by ? each.number : number;
    }
    return std::to_string(number);
}

/// Addresses that never were a handle: null, a variable, one byte past a handle, and the highest
/// multiple of 64.
std::vector<void*> never_returned(void* handle) {
    static int local = 0;
    return {nullptr, &local, static_cast<char*>(handle) + 1,
            reinterpret_cast<void*>(~std::uintptr_t{63})};
}

TEST_F(GeneratorFaults, GeneratorsAndSnapshotsHaveDifferentHandles) {
    double number = 0.0;
    const std::int64_t count = 1;
    host::getRandUniformOptim(state, &number, &count);
    expect_fault(fault_kind::unknown_object,
                 "getRandUniformOptim: the address is not that of a generator");
    setRngStateOptim(generator, generator);
    expect_fault(fault_kind::unknown_object,
                 "setRngStateOptim: the address is not that of a snapshot");
}

TEST_F(GeneratorFaults, AnAddressThatIsNotAGeneratorIsAFault) {
    for (void* const address : never_returned(generator)) {
        expect_no_generator(address, fault_kind::unknown_object,
                            "the address is not that of a generator");
    }
}

TEST_F(GeneratorFaults, AnAddressThatIsNotASnapshotIsAFault) {
    for (void* const address : never_returned(state)) {
        expect_no_snapshot(address, fault_kind::unknown_object,
                           "the address is not that of a snapshot");
    }
}

TEST_F(GeneratorFaults, UseOfADeletedGeneratorIsAFault) {
    void* const deleted = instantiateRngOptim(2);
    const std::string number = newest(operation::instantiateRngOptim);
    deleteRngOptim(deleted);
    expect_no_generator(deleted, fault_kind::use_after_release,
                        "generator " + number +
                            " (made by instantiateRngOptim) was used after it was deleted");
}

TEST_F(GeneratorFaults, UseOfADeletedSnapshotIsAFault) {
    void* const deleted = getRngStateOptim(generator);
    const std::string number = newest(operation::getRngStateOptim);
    deleteRngStateOptim(deleted);
    expect_no_snapshot(deleted, fault_kind::use_after_release,
                       "snapshot " + number +
                           " (made by getRngStateOptim) was used after it was deleted");
}

TEST_F(GeneratorFaults, AFaultySnapshotDoesNotChangeTheGenerator) {
    int local = 0;
    drawn(generator, 5);
    setRngStateOptim(generator, &local);
    EXPECT_EQ(faults.size(), 1u);
    faults.clear();
    EXPECT_EQ(drawn(generator, 1)[0], first_of_seed(1, 6)[5]);
}

TEST_F(GeneratorFaults, ANegativeCountIsAFault) {
    double untouched = -1.0;
    const std::int64_t count = -2;
    host::getRandUniformOptim(generator, &untouched, &count);
    expect_fault(fault_kind::bad_request, "getRandUniformOptim: -2 numbers are to be drawn");
    EXPECT_EQ(untouched, -1.0);
    EXPECT_EQ(drawn(generator, 1), first_of_seed(1, 1));
}

TEST_F(GeneratorFaults, AHandleIsNeverReused) {
    std::set<void*> handles;
    for (int i = 0; i < 100; ++i) {
        void* const made = instantiateRngOptim(i);
        EXPECT_EQ(reinterpret_cast<std::uintptr_t>(made) % 64, 0u);
        EXPECT_TRUE(handles.insert(made).second);
        deleteRngOptim(made);
    }
}

} // namespace

} // namespace zktarn::standin
