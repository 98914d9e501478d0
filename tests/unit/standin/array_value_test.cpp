#include <cstdint>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "unit/standin/standin_fixture.hpp"

namespace zktarn::standin {

namespace {

using strings = std::vector<std::string>;
using numbers = std::vector<double>;

/// An `array_value` is a copy of an array. A call of an accessor that its kind does not have is a
/// fault.
class ArrayValue : public StandinTest {
protected:
    void TearDown() override {
        EXPECT_TRUE(faults.empty());
        StandinTest::TearDown();
    }

    /// Copies an array and destroys it.
    static array_value copied(array_handle array) {
        const array_value value = inspect(array);
        destroy(array);
        return value;
    }

    void expect_no_number(const array_value& value) {
        EXPECT_EQ(value.scalar(), 0.0);
        expect_fault(fault_kind::wrong_kind,
                     "scalar() was called for an array that is not one number");
    }

    void expect_no_numbers(const array_value& value) {
        EXPECT_TRUE(value.reals().empty());
        expect_fault(fault_kind::wrong_kind, "reals() was called for an array that is not real");
    }

    void expect_no_characters(const array_value& value) {
        EXPECT_EQ(value.text(), "");
        expect_fault(fault_kind::wrong_kind, "text() was called for an array that is not a text");
    }

    void expect_no_fields(const array_value& value) {
        EXPECT_TRUE(value.field_names().empty());
        expect_fault(fault_kind::wrong_kind,
                     "field_names() was called for an array that is not a struct");
        EXPECT_FALSE(value.has_field("x"));
        expect_fault(fault_kind::wrong_kind,
                     "has_field() was called for an array that is not a struct");
        expect_no_field(value, "x");
    }

    void expect_no_field(const array_value& value, const std::string& name) {
        const array_value& none = value.field(name);
        expect_fault(fault_kind::out_of_range, "field() was called for the field '" + name +
                                                   "', which the array does not have");
        EXPECT_EQ(none.kind, array_kind::real_matrix);
        EXPECT_EQ(none.rows, 0);
        EXPECT_EQ(none.columns, 0);
        EXPECT_TRUE(none.reals().empty());
    }
};

TEST_F(ArrayValue, AScalarHasANumber) {
    const array_value value = copied(make_scalar(2.5));
    EXPECT_EQ(value.scalar(), 2.5);
    EXPECT_EQ(value.reals(), numbers{2.5});
    expect_no_characters(value);
    expect_no_fields(value);
}

TEST_F(ArrayValue, AMatrixHasNumbers) {
    const array_value value = copied(make_matrix(2, 2));
    EXPECT_EQ(value.reals(), numbers(4, 0.0));
    expect_no_number(value);
    expect_no_characters(value);
    expect_no_fields(value);
}

TEST_F(ArrayValue, AMatrixOfOneNumberHasThatNumber) {
    const array_handle made = make_matrix(1, 1);
    *data_of(made) = 3.0;
    EXPECT_EQ(copied(made).scalar(), 3.0);
}

TEST_F(ArrayValue, AnEmptyMatrixHasNoNumber) {
    const array_value value = copied(make_matrix(0, 1));
    EXPECT_TRUE(value.reals().empty());
    expect_no_number(value);
}

TEST_F(ArrayValue, ATextHasCharacters) {
    const array_value value = copied(make_text("iter  "));
    EXPECT_EQ(value.text(), "iter  ");
    expect_no_number(value);
    expect_no_numbers(value);
    expect_no_fields(value);
}

TEST_F(ArrayValue, AStructHasFields) {
    const array_handle made = make_struct({1, 1}, 2, "xy", 1);
    set_field(made, 1, "y", make_scalar(4.0));
    const array_value value = copied(made);
    EXPECT_EQ(value.field_names(), (strings{"x", "y"}));
    EXPECT_TRUE(value.has_field("x"));
    EXPECT_TRUE(value.has_field("y"));
    EXPECT_EQ(value.field("y").scalar(), 4.0);
    expect_no_number(value);
    expect_no_numbers(value);
    expect_no_characters(value);
    EXPECT_FALSE(value.has_field("z"));
    expect_no_field(value, "z");
}

TEST_F(ArrayValue, AFieldThatWasNotSetIsAnEmptyMatrix) {
    const array_value value = copied(make_struct({1, 1}, 1, "x", 1));
    EXPECT_EQ(value.field("x").kind, array_kind::real_matrix);
    EXPECT_EQ(value.field("x").rows, 0);
    EXPECT_EQ(value.field("x").columns, 0);
    EXPECT_TRUE(value.field("x").reals().empty());
}

TEST_F(ArrayValue, AStructOfSeveralElementsHasNamesButNoValues) {
    const array_handle made = make_struct({1, 2}, 1, "x", 1);
    set_field(made, 1, "x", make_scalar(1.0));
    const array_value value = copied(made);
    EXPECT_EQ(value.columns, 2);
    EXPECT_EQ(value.field_names(), strings{"x"});
    EXPECT_TRUE(value.field("x").reals().empty());
}

TEST_F(ArrayValue, AFieldMayBeAStructWithFields) {
    const array_handle outer = make_struct({1, 1}, 1, "options", 7);
    const array_handle inner = make_struct({1, 1}, 1, "display", 7);
    set_field(inner, 1, "display", make_text("off"));
    set_field(outer, 1, "options", inner);
    EXPECT_EQ(copied(outer).field("options").field("display").text(), "off");
}

TEST_F(ArrayValue, APartOfATemporaryValueStaysValid) {
    const array_handle made = make_struct({1, 1}, 3, "xst", 1);
    set_field(made, 1, "x", make_matrix(1, 2));
    set_field(made, 1, "s", make_struct({1, 1}, 1, "y", 1));
    set_field(made, 1, "t", make_text("text"));
    const auto& numbers_of = inspect(made).field("x").reals();
    const auto& text_of = inspect(made).field("t").text();
    const auto& struct_of = inspect(made).field("s");
    destroy(made);
    EXPECT_EQ(numbers_of, numbers(2, 0.0));
    EXPECT_EQ(text_of, "text");
    EXPECT_EQ(struct_of.field_names(), strings{"y"});
}

TEST_F(ArrayValue, IsACopyThatOutlivesTheArray) {
    const array_handle made = make_matrix(2, 1);
    data_of(made)[0] = 1.0;
    const array_value before = inspect(made);
    data_of(made)[0] = 2.0;
    destroy(made);
    EXPECT_EQ(before.reals(), (numbers{1.0, 0.0}));
}

TEST_F(ArrayValue, ADefaultValueIsAnEmptyMatrix) {
    const array_value value;
    EXPECT_EQ(value.kind, array_kind::real_matrix);
    EXPECT_TRUE(value.reals().empty());
    expect_no_number(value);
}

TEST_F(ArrayValue, InspectingAnUnknownHandleIsAFault) {
    const array_value unknown = inspect(0);
    EXPECT_EQ(unknown.kind, array_kind::real_matrix);
    EXPECT_TRUE(unknown.reals().empty());
    expect_fault(fault_kind::unknown_object, "inspect: the handle 0 names no array");

    const array_handle destroyed = make_scalar(1.0);
    destroy(destroyed);
    EXPECT_TRUE(inspect(destroyed).reals().empty());
    expect_fault(fault_kind::use_after_release,
                 "inspect: " + the_scalar(destroyed) + " was used after it was destroyed");
}

TEST_F(ArrayValue, InspectingIsNotCountedAsAnOperation) {
    const array_handle made = make_scalar(1.0);
    fail_call(operation::qvgetpr800_, 1);
    EXPECT_EQ(inspect(made).scalar(), 1.0);
    EXPECT_EQ(calls(operation::qvgetpr800_), 0);
    destroy(made);
}

} // namespace

} // namespace zktarn::standin
