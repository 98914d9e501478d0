#include <cstdint>
#include <memory>
#include <stdexcept>
#include <string>
#include <variant>
#include <vector>

#include <gtest/gtest.h>

#include "unit/standin/standin_fixture.hpp"

namespace zktarn::standin {

namespace {

using numbers = std::vector<double>;

/// A handle that no call returns.
constexpr array_handle unwritten = -77;

double number_in(const reply& result) {
    return std::get<double>(result.contents());
}

/// Functions of the host's language, called with a scalar.
class Functions : public StandinTest {
protected:
    void SetUp() override {
        StandinTest::SetUp();
        input = make_scalar(20.0);
    }

    void TearDown() override {
        EXPECT_TRUE(faults.empty());
        destroy(input);
        StandinTest::TearDown();
    }

    /// Calls a function with the scalar, and returns a copy of the output, which is destroyed.
    array_value returned_by(const std::string& name) {
        array_handle output = unwritten;
        EXPECT_EQ(call_function(name, input, output), 0);
        const array_value value = inspect(output);
        destroy(output);
        return value;
    }

    void expect_unknown(const std::string& name) {
        array_handle output = unwritten;
        EXPECT_EQ(call_function(name, input, output), 1);
        EXPECT_EQ(output, unwritten);
        expect_fault(fault_kind::unknown_function,
                     "the host-language function '" + name + "' was called, but is not registered");
    }

    array_handle input = 0;
};

TEST_F(Functions, AFunctionReceivesItsInput) {
    array_value seen;
    set_function("tarnCallback", [&](const array_value& value) {
        seen = value;
        return 0.0;
    });
    returned_by("tarnCallback");
    EXPECT_EQ(seen.kind, array_kind::real_scalar);
    EXPECT_EQ(seen.scalar(), 20.0);
}

TEST_F(Functions, AFunctionReceivesAStructWithItsFields) {
    const array_handle made = make_struct({1, 1}, 1, "flag", 4);
    set_field(made, 1, "flag", make_text("iter"));
    std::string flag;
    set_function("f", [&](const array_value& value) {
        flag = value.field("flag").text();
        return 0.0;
    });
    array_handle output = unwritten;
    EXPECT_EQ(call_function("f", made, output), 0);
    EXPECT_EQ(flag, "iter");
    destroy(output);
    // The caller still owns the input.
    destroy(made);
}

TEST_F(Functions, ANumberIsReturnedAsAScalar) {
    set_function("twice", [](const array_value& value) { return 2.0 * value.scalar(); });
    const array_value value = returned_by("twice");
    EXPECT_EQ(value.kind, array_kind::real_scalar);
    EXPECT_EQ(value.rows, 1);
    EXPECT_EQ(value.columns, 1);
    EXPECT_EQ(value.scalar(), 40.0);
}

TEST_F(Functions, IntegersAndLogicalValuesAreReturnedAsAScalar) {
    set_function("whole", [](const array_value&) { return 7; });
    EXPECT_EQ(returned_by("whole").scalar(), 7.0);
    set_function("stop", [](const array_value& value) { return value.scalar() > 19.0; });
    EXPECT_EQ(returned_by("stop").scalar(), 1.0);
    set_function("stop", [](const array_value& value) { return value.scalar() > 20.0; });
    EXPECT_EQ(returned_by("stop").scalar(), 0.0);
}

TEST_F(Functions, NumbersAreReturnedAsAColumn) {
    set_function("bounds", [](const array_value&) { return numbers{1, 2, 3}; });
    const array_value value = returned_by("bounds");
    EXPECT_EQ(value.kind, array_kind::real_matrix);
    EXPECT_EQ(value.rows, 3);
    EXPECT_EQ(value.columns, 1);
    EXPECT_EQ(value.reals(), (numbers{1, 2, 3}));
}

TEST_F(Functions, NoNumbersAreReturnedAsAnEmptyColumn) {
    set_function("none", [](const array_value&) { return numbers{}; });
    array_handle output = unwritten;
    EXPECT_EQ(call_function("none", input, output), 0);
    EXPECT_EQ(inspect(output).rows, 0);
    EXPECT_EQ(inspect(output).columns, 1);
    EXPECT_NE(data_of(output), nullptr);
    destroy(output);
}

TEST_F(Functions, TextIsReturnedAsText) {
    set_function("name", [](const array_value&) { return std::string("tarn "); });
    const array_value value = returned_by("name");
    EXPECT_EQ(value.kind, array_kind::text);
    EXPECT_EQ(value.rows, 1);
    EXPECT_EQ(value.columns, 5);
    EXPECT_EQ(value.text(), "tarn ");

    set_function("literal", [](const array_value&) { return "off"; });
    EXPECT_EQ(returned_by("literal").text(), "off");
}

TEST_F(Functions, TheOutputIsMadeByTheCall) {
    const std::string kinds[] = {"real scalar", "real matrix", "text"};
    const reply replies[] = {1.0, numbers{1.0}, std::string("x")};
    for (int i = 0; i < 3; ++i) {
        set_function("f", [&](const array_value&) { return replies[i]; });
        array_handle output = unwritten;
        EXPECT_EQ(call_function("f", input, output), 0);
        const live_object last = live_objects().back();
        EXPECT_EQ(last.made_by, operation::qvxcallquarn800_);
        EXPECT_EQ(last.number, output);
        EXPECT_EQ(last.description, described(output, kinds[i], operation::qvxcallquarn800_));
        destroy(output);
    }
}

TEST_F(Functions, ReplacingAFunctionReturnsThePreviousOne) {
    EXPECT_FALSE(set_function("f", [](const array_value&) { return 1.0; }));
    const host_function first = set_function("f", [](const array_value&) { return 2.0; });
    ASSERT_TRUE(first);
    EXPECT_EQ(number_in(first({})), 1.0);
    EXPECT_EQ(returned_by("f").scalar(), 2.0);
    const host_function second = set_function("f", first);
    EXPECT_EQ(number_in(second({})), 2.0);
    EXPECT_EQ(returned_by("f").scalar(), 1.0);
}

TEST_F(Functions, EachNameHasItsOwnFunction) {
    set_function("f", [](const array_value&) { return 1.0; });
    EXPECT_FALSE(set_function("g", [](const array_value&) { return 2.0; }));
    EXPECT_EQ(returned_by("f").scalar(), 1.0);
    EXPECT_EQ(returned_by("g").scalar(), 2.0);
}

TEST_F(Functions, AFunctionThatIsNotRegisteredIsUnknown) {
    expect_unknown("tarnCallback");
    set_function("f", [](const array_value&) { return 1.0; });
    expect_unknown("F");
    expect_unknown("f ");
    expect_unknown("");
}

TEST_F(Functions, AnEmptyFunctionRemovesTheName) {
    set_function("f", [](const array_value&) { return 1.0; });
    EXPECT_TRUE(set_function("f", {}));
    expect_unknown("f");
    EXPECT_FALSE(set_function("f", {}));
}

TEST_F(Functions, ResetRemovesAllFunctions) {
    set_function("f", [](const array_value&) { return 1.0; });
    reset();
    set_fault_handler([this](const fault& found) { faults.push_back(found); });
    expect_unknown("f");
}

TEST_F(Functions, AnyOtherNumberOfInputsOrOutputsThanOneIsAFault) {
    set_function("f", [](const array_value&) { return 1.0; });
    const std::int32_t bad[][2] = {{0, 1}, {2, 1}, {1, 0}, {1, 2}, {0, 0}, {-1, 1}};
    for (const auto& [noutputs, ninputs] : bad) {
        array_handle outputs[] = {unwritten, unwritten};
        const array_handle inputs[] = {input, input};
        EXPECT_EQ(host::qvxcallquarn800_(noutputs, outputs, ninputs, inputs, "f", 1), 1);
        EXPECT_EQ(outputs[0], unwritten);
        expect_fault(fault_kind::bad_request,
                     "qvxcallquarn800_: functions of the stand-in have one input and one output");
    }
}

TEST_F(Functions, ANegativeLengthOfTheNameIsAFault) {
    array_handle output = unwritten;
    EXPECT_EQ(host::qvxcallquarn800_(1, &output, 1, &input, "f", -2), 1);
    EXPECT_EQ(output, unwritten);
    expect_fault(fault_kind::bad_request, "qvxcallquarn800_: the length of a text is -2");
}

TEST_F(Functions, AnInputThatIsNotALiveArrayIsAFault) {
    bool called = false;
    set_function("f", [&](const array_value&) {
        called = true;
        return 1.0;
    });
    array_handle output = unwritten;
    EXPECT_EQ(call_function("f", 0, output), 1);
    expect_fault(fault_kind::unknown_object, "qvxcallquarn800_: the handle 0 names no array");
    const array_handle gone = make_text("");
    destroy(gone);
    EXPECT_EQ(call_function("f", gone, output), 1);
    expect_fault(fault_kind::use_after_release,
                 "qvxcallquarn800_: " + the_text(gone) + " was used after it was destroyed");
    EXPECT_EQ(output, unwritten);
    EXPECT_FALSE(called);
}

TEST_F(Functions, NoLockIsHeldWhileAFunctionRuns) {
    set_function("inner", [](const array_value& value) { return value.scalar() + 1.0; });
    set_function("outer", [this](const array_value& value) {
        set_function("other", {});
        EXPECT_EQ(inspect(input).scalar(), value.scalar());
        return returned_by("inner").scalar() + 1.0;
    });
    EXPECT_EQ(returned_by("outer").scalar(), 22.0);
}

TEST_F(Functions, AFunctionThatThrowsAnExceptionIsAFault) {
    set_function("f", [](const array_value&) -> reply { throw std::runtime_error("no more"); });
    array_handle output = unwritten;
    EXPECT_EQ(call_function("f", input, output), 1);
    EXPECT_EQ(output, unwritten);
    expect_fault(fault_kind::function_threw, "the host-language function 'f' threw: no more");
}

TEST_F(Functions, AFunctionThatThrowsAnythingElseIsAFault) {
    set_function("f", [](const array_value&) -> reply { throw 1; });
    array_handle output = unwritten;
    EXPECT_EQ(call_function("f", input, output), 1);
    EXPECT_EQ(output, unwritten);
    expect_fault(fault_kind::function_threw, "the host-language function 'f' threw");
}

TEST_F(Functions, AFunctionMayHaveStateThatLastsFromCallToCall) {
    set_function("count", [calls = 0](const array_value&) mutable { return ++calls; });
    EXPECT_EQ(returned_by("count").scalar(), 1.0);
    EXPECT_EQ(returned_by("count").scalar(), 2.0);
    const host_function previous = set_function("count", {});
    EXPECT_EQ(number_in(previous({})), 3.0);
}

/// Registers a function in its destructor.
struct registers_on_destruction {
    ~registers_on_destruction() {
        set_function("late", [](const array_value&) { return 5.0; });
    }
};

TEST_F(Functions, AFunctionIsDestroyedWithNoLockHeld) {
    set_function("f", [held = std::make_shared<registers_on_destruction>()](const array_value&) {
        return held ? 1.0 : 0.0;
    });
    EXPECT_EQ(returned_by("f").scalar(), 1.0);
    reset();
    set_fault_handler([this](const fault& found) { faults.push_back(found); });
    expect_unknown("f");
    EXPECT_EQ(returned_by("late").scalar(), 5.0);
}

} // namespace

} // namespace zktarn::standin
