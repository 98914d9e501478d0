#include <cmath>
#include <cstdint>
#include <limits>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "unit/standin/standin_fixture.hpp"

namespace zktarn::standin {

namespace {

using strings = std::vector<std::string>;
using numbers = std::vector<double>;

/// Correct use of arrays, which causes no fault.
class Arrays : public StandinTest {
protected:
    void TearDown() override {
        EXPECT_TRUE(faults.empty());
        StandinTest::TearDown();
    }
};

TEST_F(Arrays, AStructHasTheRequestedExtentsAndFields) {
    const array_handle made = make_struct({2, 3}, 3, "x   fvalflag", 4);
    const array_value seen = inspect(made);
    EXPECT_EQ(seen.kind, array_kind::structure);
    EXPECT_EQ(seen.rows, 2);
    EXPECT_EQ(seen.columns, 3);
    EXPECT_EQ(seen.field_names(), (strings{"x", "fval", "flag"}));
    EXPECT_EQ(field_number(made, "x"), 1);
    EXPECT_EQ(field_number(made, "fval"), 2);
    EXPECT_EQ(field_number(made, "flag"), 3);
    destroy(made);
}

TEST_F(Arrays, EverySlotHasItsOwnFieldNumber) {
    const array_handle made = make_struct({1, 1}, 3, "xxy", 1);
    EXPECT_EQ(field_number(made, "x"), 1);
    EXPECT_EQ(field_number(made, "y"), 3);
    set_field_number(made, 1, 3, make_scalar(3.0));
    EXPECT_EQ(inspect(made).field("y").scalar(), 3.0);
    destroy(made);
}

TEST_F(Arrays, OneExtentMakesAColumn) {
    const array_handle made = make_struct({3}, 1, "x", 1);
    EXPECT_EQ(inspect(made).rows, 3);
    EXPECT_EQ(inspect(made).columns, 1);
    set_field(made, 3, "x", make_scalar(1.0));
    destroy(made);
}

TEST_F(Arrays, AStructMayHaveNoElementsAndNoFields) {
    for (const std::vector<std::int64_t>& extents :
         {std::vector<std::int64_t>{0}, {0, 4}, {4, 0}}) {
        const array_handle made = make_struct(extents, 0, "", 0);
        EXPECT_TRUE(inspect(made).field_names().empty());
        EXPECT_EQ(inspect(made).rows * inspect(made).columns, 0);
        EXPECT_EQ(add_field(made, "x"), 1);
        destroy(made);
    }
}

TEST_F(Arrays, AStringHoldsAllItsCharacters) {
    for (const std::string& text :
         {std::string("optimal  "), std::string(), std::string("a\0b", 3), std::string("  ")}) {
        const array_handle made = make_text(text);
        const array_value seen = inspect(made);
        EXPECT_EQ(seen.kind, array_kind::text);
        EXPECT_EQ(seen.text(), text);
        EXPECT_EQ(seen.rows, 1);
        EXPECT_EQ(seen.columns, static_cast<std::int64_t>(text.size()));
        destroy(made);
    }
}

TEST_F(Arrays, AnEmptyStringNeedsNoAddress) {
    const array_handle made = host::qvcreatestring800_(nullptr, 0);
    EXPECT_EQ(inspect(made).text(), "");
    destroy(made);
}

TEST_F(Arrays, AScalarHoldsItsValue) {
    for (const double value : {0.0, -1.5, std::numeric_limits<double>::infinity()}) {
        const array_handle made = make_scalar(value);
        const array_value seen = inspect(made);
        EXPECT_EQ(seen.kind, array_kind::real_scalar);
        EXPECT_EQ(seen.rows, 1);
        EXPECT_EQ(seen.columns, 1);
        EXPECT_EQ(seen.scalar(), value);
        EXPECT_EQ(*data_of(made), value);
        destroy(made);
    }
    const array_handle made = make_scalar(std::numeric_limits<double>::quiet_NaN());
    EXPECT_TRUE(std::isnan(inspect(made).scalar()));
    destroy(made);
}

TEST_F(Arrays, AMatrixIsStoredColumnByColumn) {
    const array_handle made = make_matrix(2, 3);
    EXPECT_EQ(inspect(made).kind, array_kind::real_matrix);
    EXPECT_EQ(inspect(made).rows, 2);
    EXPECT_EQ(inspect(made).columns, 3);
    EXPECT_EQ(inspect(made).reals(), numbers(6, 0.0));
    data_of(made)[2 * 1 + 1] = 7.0;
    EXPECT_EQ(inspect(made).reals(), (numbers{0, 0, 0, 7, 0, 0}));
    destroy(made);
}

TEST_F(Arrays, TheAddressOfTheDataDoesNotChangeWhileTheArrayExists) {
    const array_handle made = make_matrix(5, 1);
    double* const address = data_of(made);
    const array_handle owner = make_struct();
    add_field(owner, "x");
    std::vector<array_handle> others;
    for (int i = 0; i < 100; ++i) {
        others.push_back(make_matrix(5, 1));
    }
    set_field(owner, 1, "x", made);
    EXPECT_EQ(data_of(made), address);
    for (const array_handle each : others) {
        destroy(each);
    }
    destroy(owner);
}

TEST_F(Arrays, AnEmptyMatrixHasANonnullDataAddress) {
    const array_handle first = make_matrix(0, 3);
    const array_handle second = make_matrix(3, 0);
    ASSERT_NE(data_of(first), nullptr);
    ASSERT_NE(data_of(second), nullptr);
    EXPECT_NE(data_of(first), data_of(second));
    EXPECT_TRUE(inspect(first).reals().empty());
    host::qvcopyreal8toptr800_(nullptr, data_of(first), 0);
    destroy(first);
    destroy(second);
}

TEST_F(Arrays, DataAreCopiedInAndOut) {
    const array_handle made = make_matrix(4, 1);
    const numbers values = {1, 2, 3, 4};
    host::qvcopyreal8toptr800_(values.data(), data_of(made), 4);
    EXPECT_EQ(inspect(made).reals(), values);

    numbers copy(4, -1.0);
    host::qvcopyptrtoreal8800_(data_of(made), copy.data(), 4);
    EXPECT_EQ(copy, values);
    destroy(made);
}

TEST_F(Arrays, ASmallerCountCopiesOnlyThatManyValues) {
    const array_handle made = make_matrix(4, 1);
    const numbers values = {8, 9};
    host::qvcopyreal8toptr800_(values.data(), data_of(made) + 1, 2);
    EXPECT_EQ(inspect(made).reals(), (numbers{0, 8, 9, 0}));

    numbers copy(4, -1.0);
    host::qvcopyptrtoreal8800_(data_of(made) + 2, copy.data() + 1, 2);
    EXPECT_EQ(copy, (numbers{-1, 9, 0, -1}));
    destroy(made);
}

TEST_F(Arrays, ACountOfZeroCopiesNothing) {
    numbers values = {5.0};
    host::qvcopyptrtoreal8800_(nullptr, values.data(), 0);
    host::qvcopyreal8toptr800_(values.data(), nullptr, 0);
    EXPECT_EQ(values, numbers{5.0});
}

TEST_F(Arrays, AFieldIsAddedAtTheEndUnlessItExists) {
    const array_handle made = make_struct({1, 1}, 1, "x", 1);
    EXPECT_EQ(field_number(made, "fval"), 0);
    EXPECT_EQ(add_field(made, "fval"), 2);
    EXPECT_EQ(add_field(made, "exitflag"), 3);
    EXPECT_EQ(add_field(made, "fval"), 2);
    EXPECT_EQ(add_field(made, "x"), 1);
    EXPECT_EQ(field_number(made, "exitflag"), 3);
    EXPECT_EQ(inspect(made).field_names(), (strings{"x", "fval", "exitflag"}));
    destroy(made);
}

TEST_F(Arrays, TrailingBlanksOfAFieldNameArePadding) {
    const array_handle made = make_struct({1, 1}, 2, "x     f val ", 6);
    EXPECT_EQ(inspect(made).field_names(), (strings{"x", "f val"}));
    EXPECT_EQ(field_number(made, "x   "), 1);
    EXPECT_EQ(field_number(made, "f val"), 2);
    EXPECT_EQ(field_number(made, " x"), 0);
    EXPECT_EQ(add_field(made, "x "), 1);
    EXPECT_EQ(add_field(made, "y "), 3);
    set_field(made, 1, "y    ", make_scalar(2.0));
    EXPECT_EQ(inspect(made).field("y").scalar(), 2.0);
    EXPECT_EQ(add_field(made, "   "), 4);
    EXPECT_EQ(field_number(made, ""), 4);
    destroy(made);
}

TEST_F(Arrays, FieldNamesAreCaseSensitive) {
    const array_handle made = make_struct({1, 1}, 1, "x", 1);
    EXPECT_EQ(field_number(made, "X"), 0);
    EXPECT_EQ(add_field(made, "X"), 2);
    destroy(made);
}

TEST_F(Arrays, AFieldIsSetByNameAndByNumber) {
    const array_handle made = make_struct({1, 1}, 2, "xy", 1);
    set_field(made, 1, "x", make_scalar(1.0));
    set_field_number(made, 1, 2, make_text("two"));
    const array_value seen = inspect(made);
    EXPECT_EQ(seen.field("x").scalar(), 1.0);
    EXPECT_EQ(seen.field("y").text(), "two");
    destroy(made);
}

TEST_F(Arrays, EveryElementHasItsOwnFields) {
    const array_handle made = make_struct({2, 2}, 1, "x", 1);
    std::vector<array_handle> values;
    for (std::int64_t element = 1; element <= 4; ++element) {
        values.push_back(make_scalar(static_cast<double>(element)));
        set_field(made, element, "x", values.back());
    }
    // Storing in one element has not destroyed the value of another.
    for (std::size_t i = 0; i < values.size(); ++i) {
        EXPECT_EQ(*data_of(values[i]), static_cast<double>(i + 1));
    }
    destroy(made);
}

TEST_F(Arrays, AnAddedFieldExistsInEveryElement) {
    const array_handle made = make_struct({1, 3});
    EXPECT_EQ(add_field(made, "x"), 1);
    set_field(made, 1, "x", make_scalar(1.0));
    set_field(made, 3, "x", make_scalar(3.0));
    destroy(made);
}

TEST_F(Arrays, AStoredValueBelongsToTheStruct) {
    const array_handle made = make_struct({1, 1}, 1, "x", 1);
    const std::size_t before = live_objects().size();
    const array_handle value = make_matrix(2, 1);
    EXPECT_EQ(live_objects().size(), before + 1);
    set_field(made, 1, "x", value);
    EXPECT_EQ(live_objects().size(), before);
    // The data can still be written through the handle of the value.
    data_of(value)[1] = 4.0;
    EXPECT_EQ(inspect(made).field("x").reals(), (numbers{0.0, 4.0}));
    destroy(made);
}

TEST_F(Arrays, HandlesAreNeverReused) {
    const array_handle first = make_scalar(1.0);
    EXPECT_GT(first, 0);
    destroy(first);
    EXPECT_EQ(make_text("x"), first + 1);
    destroy(first + 1);
    EXPECT_EQ(make_struct(), first + 2);
    EXPECT_EQ(make_matrix(1, 1), first + 3);
    destroy(first + 2);
    destroy(first + 3);
    reset();
    const array_handle later = make_scalar(1.0);
    EXPECT_EQ(later, first + 4);
    destroy(later);
}

TEST_F(Arrays, ResetKeepsLiveArrays) {
    const array_handle made = make_struct({1, 1}, 1, "x", 1);
    set_field(made, 1, "x", make_scalar(6.0));
    reset();
    EXPECT_EQ(inspect(made).field("x").scalar(), 6.0);
    destroy(made);
}

/// Arrays that the stand-in destroys together with the struct that owns them. Using one afterwards
/// is a fault.
class ArrayOwnership : public StandinTest {
protected:
    void expect_destroyed(array_handle array, const std::string& the_array) {
        EXPECT_EQ(data_of(array), nullptr);
        expect_fault(fault_kind::use_after_release,
                     "qvgetpr800_: " + the_array + " was used after it was destroyed");
    }
};

TEST_F(ArrayOwnership, AReplacedValueIsDestroyed) {
    const array_handle made = make_struct({1, 1}, 1, "x", 1);
    const array_handle first = make_scalar(1.0);
    const array_handle second = make_scalar(2.0);
    const array_handle third = make_scalar(3.0);
    set_field(made, 1, "x", first);
    set_field(made, 1, "x", second);
    expect_destroyed(first, the_scalar(first));
    set_field_number(made, 1, 1, third);
    expect_destroyed(second, the_scalar(second));
    EXPECT_EQ(inspect(made).field("x").scalar(), 3.0);
    destroy(made);
}

TEST_F(ArrayOwnership, AReplacedStructDestroysTheValuesThatItOwns) {
    const array_handle outer = make_struct({1, 1}, 1, "s", 1);
    const array_handle inner = make_struct({1, 1}, 1, "x", 1);
    const array_handle value = make_scalar(1.0);
    set_field(inner, 1, "x", value);
    set_field(outer, 1, "s", inner);
    set_field(outer, 1, "s", make_text(""));
    expect_destroyed(inner, the_struct(inner));
    expect_destroyed(value, the_scalar(value));
    destroy(outer);
}

TEST_F(ArrayOwnership, ADestroyedStructDestroysTheValuesThatItOwns) {
    const array_handle outer = make_struct({1, 2}, 2, "st", 1);
    const array_handle inner = make_struct({1, 1}, 1, "x", 1);
    const array_handle value = make_matrix(3, 3);
    const array_handle text = make_text("abc");
    set_field(inner, 1, "x", value);
    set_field(outer, 1, "s", inner);
    // The remaining fields are not set.
    set_field(outer, 2, "t", text);
    destroy(outer);
    expect_destroyed(outer, the_struct(outer));
    expect_destroyed(inner, the_struct(inner));
    expect_destroyed(value, the_matrix(value));
    expect_destroyed(text, the_text(text));
}

TEST_F(ArrayOwnership, AnArrayThatTheStructDoesNotOwnOutlivesIt) {
    const array_handle made = make_struct({1, 1}, 1, "x", 1);
    const array_handle other = make_scalar(4.0);
    destroy(made);
    EXPECT_EQ(inspect(other).scalar(), 4.0);
    destroy(other);
    EXPECT_TRUE(faults.empty());
}

} // namespace

} // namespace zktarn::standin
