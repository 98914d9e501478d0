#include <cstdint>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "unit/standin/standin_fixture.hpp"
#include "zktarn/host/libut.hpp"
#include "zktarn/host/libzkoptimutil.hpp"

namespace zktarn::standin {

namespace {

/// Plans failures of one operation at a time. Has the objects that the operations need.
class Failures : public StandinTest {
protected:
    void SetUp() override {
        StandinTest::SetUp();
        set_console(console::capture);
        set_function("f", [](const array_value&) { return 1.0; });
        generator = host::instantiateRngOptim(1);
        state = host::getRngStateOptim(generator);
        structure = make_struct({1, 1}, 1, "x", 1);
        scalar = make_scalar(1.0);
    }

    void TearDown() override {
        EXPECT_TRUE(faults.empty());
        host::deleteRngOptim(generator);
        host::deleteRngStateOptim(state);
        destroy(structure);
        destroy(scalar);
        StandinTest::TearDown();
    }

    /// Plans a failure and makes three calls. Returns '1' for each call that fails, '0' for each
    /// that does not.
    static std::string failures(operation what, std::int64_t planned,
                                const std::function<bool()>& fails) {
        fail_call(what, planned);
        std::string results;
        for (int i = 0; i < 3; ++i) {
            results += fails() ? '1' : '0';
        }
        return results;
    }

    void expect_can_fail(operation what, const std::function<bool()>& fails) {
        SCOPED_TRACE(name(what));
        const std::int64_t before = calls(what);
        EXPECT_EQ(failures(what, 2, fails), "010");
        EXPECT_EQ(failures(what, 1, fails), "100");
        EXPECT_EQ(failures(what, 0, fails), "000");
        EXPECT_EQ(failures(what, -1, fails), "000");
        // A new plan replaces the old one. 0 plans no failure.
        fail_call(what, 1);
        EXPECT_EQ(failures(what, 3, fails), "001");
        fail_call(what, 1);
        EXPECT_EQ(failures(what, 0, fails), "000");
        EXPECT_EQ(calls(what), before + 18);
        EXPECT_TRUE(faults.empty());
    }

    /// `make` returns an array, or 0 when the call fails.
    void expect_maker(operation what, const std::function<array_handle()>& make) {
        expect_can_fail(what, [&] {
            const std::size_t before = live_objects().size();
            const array_handle made = make();
            EXPECT_EQ(live_objects().size(), before + (made == 0 ? 0 : 1));
            if (made != 0) {
                destroy(made);
            }
            return made == 0;
        });
    }

    void* generator = nullptr;
    void* state = nullptr;
    array_handle structure = 0;
    array_handle scalar = 0;
};

TEST_F(Failures, AnArrayIsNotMade) {
    expect_maker(operation::qvcreatestructarray800_, [] { return make_struct(); });
    expect_maker(operation::qvcreatestring800_, [] { return make_text("x"); });
    expect_maker(operation::qvcreatedoublescalar800_, [] { return make_scalar(1.0); });
    expect_maker(operation::qvcreatedoublematrix800_, [] { return make_matrix(2, 2); });
}

TEST_F(Failures, AFieldIsNotAdded) {
    int added = 0;
    expect_can_fail(operation::qvaddfield800_, [&] {
        const std::string field = "field" + std::to_string(++added);
        const std::int32_t number = add_field(structure, field);
        EXPECT_EQ(field_number(structure, field), number);
        return number == 0;
    });
}

TEST_F(Failures, TheDataAddressIsNull) {
    expect_can_fail(operation::qvgetpr800_, [&] { return data_of(scalar) == nullptr; });
}

TEST_F(Failures, AFunctionIsNotCalled) {
    expect_can_fail(operation::qvxcallquarn800_, [&] {
        array_handle output = -77;
        const std::int32_t status = call_function("f", scalar, output);
        if (status == 0) {
            destroy(output);
            return false;
        }
        EXPECT_EQ(status, 1);
        EXPECT_EQ(output, -77);
        return true;
    });
}

TEST_F(Failures, TextIsNotPrinted) {
    expect_can_fail(operation::qvxprintf800_, [] {
        clear_console();
        const std::int32_t result = print_text("text");
        EXPECT_EQ(console_text(), result == 0 ? "text" : "");
        EXPECT_TRUE(result == 0 || result == 1);
        return result == 1;
    });
}

TEST_F(Failures, AGeneratorIsNotMade) {
    expect_can_fail(operation::instantiateRngOptim, [] {
        void* const made = host::instantiateRngOptim(1);
        if (made != nullptr) {
            host::deleteRngOptim(made);
        }
        return made == nullptr;
    });
}

TEST_F(Failures, NoNumbersAreWritten) {
    expect_can_fail(operation::getRandUniformOptim, [&] {
        const std::int64_t two = 2;
        double values[] = {-1.0, -1.0};
        host::getRandUniformOptim(generator, values, &two);
        EXPECT_EQ(values[0] == -1.0, values[1] == -1.0);
        return values[0] == -1.0;
    });
}

TEST_F(Failures, ASnapshotIsNotMade) {
    expect_can_fail(operation::getRngStateOptim, [&] {
        void* const made = host::getRngStateOptim(generator);
        if (made != nullptr) {
            host::deleteRngStateOptim(made);
        }
        return made == nullptr;
    });
}

TEST_F(Failures, AFailedDrawDoesNotAdvanceTheStream) {
    const std::int64_t one = 1;
    double first = -1.0;
    host::getRandUniformOptim(generator, &first, &one);
    host::setRngStateOptim(generator, state);
    double value = -1.0;
    fail_call(operation::getRandUniformOptim, 1);
    host::getRandUniformOptim(generator, &value, &one);
    host::getRandUniformOptim(generator, &value, &one);
    EXPECT_EQ(value, first);
}

TEST_F(Failures, ARequestForMemoryIsRefused) {
    expect_can_fail(operation::qvMallocExOptim, [] {
        void* const address = host::qvMallocExOptim(8);
        host::qvFreeExOptim(address);
        return address == nullptr;
    });
}

TEST_F(Failures, APlanAffectsOneOperationOnly) {
    fail_call(operation::qvcreatestring800_, 1);
    fail_call(operation::qvgetpr800_, 1);
    EXPECT_NE(field_number(structure, "x"), 0);
    EXPECT_EQ(data_of(scalar), nullptr);
    EXPECT_EQ(make_text("x"), 0);
    EXPECT_NE(data_of(scalar), nullptr);
}

TEST_F(Failures, ACallWithAFaultCountsForThePlan) {
    fail_call(operation::qvgetpr800_, 2);
    EXPECT_EQ(data_of(structure), nullptr);
    EXPECT_EQ(faults.size(), 1u);
    EXPECT_EQ(data_of(scalar), nullptr);
    EXPECT_EQ(faults.size(), 1u);
    faults.clear();
}

TEST_F(Failures, AFailingCallDoesNotCheckItsArguments) {
    fail_call(operation::qvgetpr800_, 1);
    EXPECT_EQ(data_of(-5), nullptr);
    fail_call(operation::qvcreatestring800_, 1);
    EXPECT_EQ(host::qvcreatestring800_("x", -1), 0);
    EXPECT_TRUE(faults.empty());
}

TEST_F(Failures, ResetClearsPlannedFailures) {
    for (int i = 0; i < operation_count; ++i) {
        fail_call(static_cast<operation>(i), 1);
    }
    reset();
    void* const address = host::qvMallocExOptim(8);
    EXPECT_NE(address, nullptr);
    host::qvFreeExOptim(address);
    EXPECT_NE(data_of(scalar), nullptr);
    const array_handle made = make_struct();
    EXPECT_EQ(add_field(made, "x"), 1);
    destroy(made);
}

/// Operations that cannot fail: they ignore a planned failure.
class OperationsThatCannotFail : public Failures {
protected:
    void SetUp() override {
        Failures::SetUp();
        for (const operation what :
             {operation::qvFreeExOptim, operation::deleteRngOptim, operation::setRngStateOptim,
              operation::deleteRngStateOptim, operation::assertOptim, operation::ioFlushOptim,
              operation::utIsInterruptPending, operation::qvsetfield800_,
              operation::qvsetfieldbynumber800_, operation::qvgetfieldnumber800_,
              operation::qvcopyptrtoreal8800_, operation::qvcopyreal8toptr800_,
              operation::qvdestroyarray800_}) {
            fail_call(what, 1);
        }
    }
};

TEST_F(OperationsThatCannotFail, ReleaseABlock) {
    host::qvFreeExOptim(host::qvMallocExOptim(8));
    EXPECT_TRUE(live_blocks().empty());
}

TEST_F(OperationsThatCannotFail, RestoreAndDeleteGenerators) {
    const std::size_t before = live_objects().size();
    void* const other = host::instantiateRngOptim(5);
    void* const other_state = host::getRngStateOptim(other);
    host::setRngStateOptim(other, state);
    const std::int64_t one = 1;
    double first = -1.0;
    double second = -2.0;
    host::getRandUniformOptim(generator, &first, &one);
    host::getRandUniformOptim(other, &second, &one);
    EXPECT_EQ(first, second);
    host::deleteRngOptim(other);
    host::deleteRngStateOptim(other_state);
    EXPECT_EQ(live_objects().size(), before);
}

TEST_F(OperationsThatCannotFail, AssertFlushAndPoll) {
    int failed = 0;
    set_assertion_handler([&] { ++failed; });
    host::assertOptim(false);
    EXPECT_EQ(failed, 1);
    print_text("text");
    host::ioFlushOptim();
    EXPECT_EQ(flushed_console_text(), "text");
    raise_interrupt();
    EXPECT_TRUE(host::utIsInterruptPending());
}

TEST_F(OperationsThatCannotFail, UseArrays) {
    const std::size_t before = live_objects().size();
    EXPECT_EQ(field_number(structure, "x"), 1);
    set_field(structure, 1, "x", make_scalar(2.0));
    EXPECT_EQ(inspect(structure).field("x").scalar(), 2.0);
    set_field_number(structure, 1, 1, make_scalar(3.0));
    EXPECT_EQ(inspect(structure).field("x").scalar(), 3.0);
    const double nine = 9.0;
    host::qvcopyreal8toptr800_(&nine, data_of(scalar), 1);
    double copy = 0.0;
    host::qvcopyptrtoreal8800_(data_of(scalar), &copy, 1);
    EXPECT_EQ(copy, 9.0);
    destroy(make_struct());
    EXPECT_EQ(live_objects().size(), before);
}

/// The caller ignores a failure and passes the 0 or null that the failed call returned.
class AfterAFailure : public Failures {
protected:
    void SetUp() override {
        Failures::SetUp();
        fail_call(operation::qvcreatedoublescalar800_, 1);
        none = make_scalar(1.0);
        EXPECT_EQ(none, 0);
    }

    array_handle none = -1;
};

TEST_F(AfterAFailure, TheHandle0IsAccepted) {
    set_field(none, 1, "x", none);
    set_field_number(none, 1, 1, none);
    EXPECT_EQ(field_number(none, "x"), 0);
    EXPECT_EQ(add_field(none, "x"), 0);
    EXPECT_EQ(data_of(none), nullptr);
    destroy(none);
    EXPECT_TRUE(inspect(none).reals().empty());
    array_handle output = 0;
    EXPECT_EQ(call_function("f", none, output), 0);
    destroy(output);
    EXPECT_TRUE(faults.empty());
}

TEST_F(AfterAFailure, TheHandle0EmptiesAField) {
    set_field(structure, 1, "x", make_scalar(2.0));
    const std::size_t before = live_objects().size();
    set_field(structure, 1, "x", none);
    EXPECT_TRUE(inspect(structure).field("x").reals().empty());
    set_field_number(structure, 1, 1, none);
    EXPECT_EQ(live_objects().size(), before);
    EXPECT_TRUE(faults.empty());
}

TEST_F(AfterAFailure, TheFieldNumber0IsAccepted) {
    set_field_number(structure, 1, 0, none);
    EXPECT_TRUE(inspect(structure).field("x").reals().empty());
    EXPECT_TRUE(faults.empty());
}

TEST_F(AfterAFailure, AValueThatCannotBeStoredIsDestroyed) {
    const std::size_t before = live_objects().size();
    set_field(none, 1, "x", make_scalar(1.0));
    set_field_number(none, 1, 1, make_text("x"));
    set_field_number(structure, 1, 0, make_matrix(1, 1));
    EXPECT_EQ(live_objects().size(), before);
    EXPECT_TRUE(faults.empty());
}

TEST_F(AfterAFailure, AValueThatAFieldOwnsStaysInThatField) {
    const array_handle value = make_scalar(1.0);
    set_field(structure, 1, "x", value);
    set_field(none, 1, "x", value);
    set_field_number(structure, 1, 0, value);
    EXPECT_EQ(inspect(structure).field("x").scalar(), 1.0);
    EXPECT_TRUE(faults.empty());
}

/// An operation that returns a handle, a field number or an address has failed, by a plan or for
/// another reason.
class FailureForAnyReason : public Failures {
protected:
    /// Whether using the handle 0 is a fault.
    bool zero_is_a_fault() {
        faults.clear();
        destroy(0);
        return !std::exchange(faults, {}).empty();
    }
};

TEST_F(FailureForAnyReason, MakesZeroAndNullValidArguments) {
    const std::function<void()> failing[] = {
        [] { make_struct({-1}); },
        [] { make_matrix(0x7FFFFFFFFFFFFFFF, 0x7FFFFFFFFFFFFFFF); },
        [] { make_matrix(0x7FFFFFFFFFFFFFFF, 1); },
        [] { host::qvcreatestring800_("x", -1); },
        [this] { add_field(scalar, "x"); },
        [this] { data_of(structure); },
        [this] {
            array_handle output = 0;
            call_function("unknown", scalar, output);
        },
    };
    for (const auto& fail : failing) {
        reset();
        set_fault_handler([this](const fault& found) { faults.push_back(found); });
        EXPECT_TRUE(zero_is_a_fault());
        fail();
        EXPECT_FALSE(zero_is_a_fault());
    }
}

TEST_F(FailureForAnyReason, OfOtherOperationsKeepsZeroAndNullFaults) {
    set_field(scalar, 1, "x", scalar);
    field_number(scalar, "x");
    destroy(-1);
    host::qvcopyptrtoreal8800_(nullptr, nullptr, -1);
    host::qvxprintf800_("x", -1);
    EXPECT_EQ(faults.size(), 5u);
    for (const operation what : {operation::qvxprintf800_, operation::instantiateRngOptim,
                                 operation::getRngStateOptim, operation::getRandUniformOptim}) {
        fail_call(what, 1);
    }
    double value = 0.0;
    const std::int64_t one = 1;
    EXPECT_EQ(print_text("x"), 1);
    EXPECT_EQ(host::instantiateRngOptim(1), nullptr);
    EXPECT_EQ(host::getRngStateOptim(generator), nullptr);
    host::getRandUniformOptim(generator, &value, &one);
    EXPECT_TRUE(zero_is_a_fault());
}

TEST_F(AfterAFailure, ANullAddressIsAcceptedAndNothingIsCopied) {
    double values[] = {1.0, 2.0};
    host::qvcopyptrtoreal8800_(nullptr, values, 2);
    host::qvcopyreal8toptr800_(values, nullptr, 2);
    EXPECT_EQ(values[0], 1.0);
    EXPECT_EQ(values[1], 2.0);
    EXPECT_TRUE(faults.empty());
}

TEST_F(AfterAFailure, AnyOtherFaultIsReported) {
    const auto expect_one_fault = [this](fault_kind kind) {
        ASSERT_EQ(faults.size(), 1u);
        EXPECT_EQ(faults[0].kind, kind);
        faults.clear();
    };
    destroy(-1);
    expect_one_fault(fault_kind::unknown_object);
    set_field(structure, 2, "x", none);
    expect_one_fault(fault_kind::out_of_range);
    set_field(structure, 1, "z", none);
    expect_one_fault(fault_kind::out_of_range);
    set_field_number(structure, 1, -1, scalar);
    expect_one_fault(fault_kind::out_of_range);
    double value = 0.0;
    host::qvcopyptrtoreal8800_(&value, &value, 1);
    expect_one_fault(fault_kind::unknown_object);
    host::qvcopyptrtoreal8800_(nullptr, &value, -1);
    expect_one_fault(fault_kind::bad_request);
}

TEST_F(AfterAFailure, ResetMakesZeroAndNullFaultsAgain) {
    reset();
    set_fault_handler([this](const fault& found) { faults.push_back(found); });
    destroy(none);
    expect_fault(fault_kind::unknown_object, "qvdestroyarray800_: the handle 0 names no array");
    set_field(structure, 1, "x", none);
    expect_fault(fault_kind::unknown_object, "qvsetfield800_: the handle 0 names no array");
    set_field_number(structure, 1, 0, scalar);
    expect_fault(fault_kind::out_of_range,
                 "qvsetfieldbynumber800_: " + the_struct(structure) + " has no field number 0");
    double value = 0.0;
    host::qvcopyptrtoreal8800_(nullptr, &value, 1);
    expect_fault(fault_kind::unknown_object,
                 "qvcopyptrtoreal8800_: no array has data at the address");
}

} // namespace

} // namespace zktarn::standin
