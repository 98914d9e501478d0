#include <cstdint>
#include <limits>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "unit/standin/standin_fixture.hpp"

namespace zktarn::standin {

namespace {

using numbers = std::vector<double>;

constexpr std::int64_t largest = std::numeric_limits<std::int64_t>::max();

/// Each misuse of an array is a fault of one kind with one sentence, and changes no object.
class ArrayFaults : public StandinTest {
protected:
    void SetUp() override {
        StandinTest::SetUp();
        structure = make_struct({1, 2}, 2, "xy", 1);
        scalar = make_scalar(1.0);
        text = make_text("abc");
        matrix = make_matrix(2, 2);
        objects = live_objects().size();
    }

    void TearDown() override {
        EXPECT_TRUE(faults.empty());
        EXPECT_EQ(live_objects().size(), objects);
        for (const array_handle each : {structure, scalar, text, matrix}) {
            destroy(each);
        }
        StandinTest::TearDown();
    }

    /// Passes the handle to every operation that takes one, and expects the fault of each.
    void use(array_handle array, const std::string& after_name, fault_kind kind) {
        const auto expect = [&](operation called) {
            expect_fault(kind, std::string(name(called)) + ": " + after_name);
        };
        SCOPED_TRACE(after_name);
        set_field(array, 1, "x", scalar);
        expect(operation::qvsetfield800_);
        set_field_number(array, 1, 1, scalar);
        expect(operation::qvsetfieldbynumber800_);
        set_field(structure, 1, "x", array);
        expect(operation::qvsetfield800_);
        set_field_number(structure, 1, 1, array);
        expect(operation::qvsetfieldbynumber800_);
        EXPECT_EQ(field_number(array, "x"), 0);
        expect(operation::qvgetfieldnumber800_);
        EXPECT_EQ(add_field(array, "x"), 0);
        expect(operation::qvaddfield800_);
        EXPECT_EQ(data_of(array), nullptr);
        expect(operation::qvgetpr800_);
        destroy(array);
        expect(operation::qvdestroyarray800_);
    }

    array_handle structure = 0;
    array_handle scalar = 0;
    array_handle text = 0;
    array_handle matrix = 0;
    std::size_t objects = 0;
};

TEST_F(ArrayFaults, AnUnknownHandleIsAFault) {
    for (const array_handle array : {array_handle{-1}, matrix + 1, largest}) {
        use(array, "the handle " + std::to_string(array) + " names no array",
            fault_kind::unknown_object);
    }
}

TEST_F(ArrayFaults, Handle0IsAFault) {
    const std::string sentence = ": the handle 0 names no array";
    set_field(0, 1, "x", scalar);
    expect_fault(fault_kind::unknown_object, "qvsetfield800_" + sentence);
    set_field_number(0, 1, 1, scalar);
    expect_fault(fault_kind::unknown_object, "qvsetfieldbynumber800_" + sentence);
    set_field(structure, 1, "x", 0);
    expect_fault(fault_kind::unknown_object, "qvsetfield800_" + sentence);
    set_field_number(structure, 1, 1, 0);
    expect_fault(fault_kind::unknown_object, "qvsetfieldbynumber800_" + sentence);
    EXPECT_EQ(field_number(0, "x"), 0);
    expect_fault(fault_kind::unknown_object, "qvgetfieldnumber800_" + sentence);
    destroy(0);
    expect_fault(fault_kind::unknown_object, "qvdestroyarray800_" + sentence);
    // After a failed operation handle 0 is accepted.
    EXPECT_EQ(add_field(0, "x"), 0);
    expect_fault(fault_kind::unknown_object, "qvaddfield800_" + sentence);
    EXPECT_EQ(data_of(0), nullptr);
    EXPECT_TRUE(faults.empty());
}

TEST_F(ArrayFaults, Handle0HasNoData) {
    EXPECT_EQ(data_of(0), nullptr);
    expect_fault(fault_kind::unknown_object, "qvgetpr800_: the handle 0 names no array");
}

TEST_F(ArrayFaults, UseOfADestroyedArrayIsAFault) {
    const array_handle gone[] = {make_struct(), make_scalar(1.0), make_text(""), make_matrix(0, 0)};
    const std::string names[] = {the_struct(gone[0]), the_scalar(gone[1]), the_text(gone[2]),
                                 the_matrix(gone[3])};
    for (int i = 0; i < 4; ++i) {
        destroy(gone[i]);
        use(gone[i], names[i] + " was used after it was destroyed", fault_kind::use_after_release);
    }
}

TEST_F(ArrayFaults, AFieldOfAnArrayThatIsNoStructIsAFault) {
    const array_handle others[] = {scalar, text, matrix};
    const std::string names[] = {the_scalar(scalar), the_text(text), the_matrix(matrix)};
    for (int i = 0; i < 3; ++i) {
        const std::string sentence = names[i] + " is not a struct";
        set_field(others[i], 1, "x", scalar);
        expect_fault(fault_kind::wrong_kind, "qvsetfield800_: " + sentence);
        set_field_number(others[i], 1, 1, scalar);
        expect_fault(fault_kind::wrong_kind, "qvsetfieldbynumber800_: " + sentence);
        EXPECT_EQ(field_number(others[i], "x"), 0);
        expect_fault(fault_kind::wrong_kind, "qvgetfieldnumber800_: " + sentence);
        EXPECT_EQ(add_field(others[i], "x"), 0);
        expect_fault(fault_kind::wrong_kind, "qvaddfield800_: " + sentence);
    }
}

TEST_F(ArrayFaults, DataOfAnArrayThatIsNotRealAreAFault) {
    EXPECT_EQ(data_of(structure), nullptr);
    expect_fault(fault_kind::wrong_kind,
                 "qvgetpr800_: " + the_struct(structure) + " is not a real array");
    EXPECT_EQ(data_of(text), nullptr);
    expect_fault(fault_kind::wrong_kind, "qvgetpr800_: " + the_text(text) + " is not a real array");
    EXPECT_NE(data_of(scalar), nullptr);
    EXPECT_NE(data_of(matrix), nullptr);
}

TEST_F(ArrayFaults, AnElementOutOfRangeIsAFault) {
    for (const std::int64_t element : {std::int64_t{0}, std::int64_t{-1}, std::int64_t{3}}) {
        const std::string sentence =
            the_struct(structure) + " has no element " + std::to_string(element);
        set_field(structure, element, "x", scalar);
        expect_fault(fault_kind::out_of_range, "qvsetfield800_: " + sentence);
        set_field_number(structure, element, 1, scalar);
        expect_fault(fault_kind::out_of_range, "qvsetfieldbynumber800_: " + sentence);
    }
}

TEST_F(ArrayFaults, AnUnknownFieldIsAFault) {
    set_field(structure, 1, "z", scalar);
    expect_fault(fault_kind::out_of_range,
                 "qvsetfield800_: " + the_struct(structure) + " has no field 'z'");
    for (const std::int32_t number : {0, -1, 3}) {
        set_field_number(structure, 1, number, scalar);
        expect_fault(fault_kind::out_of_range, "qvsetfieldbynumber800_: " + the_struct(structure) +
                                                   " has no field number " +
                                                   std::to_string(number));
    }
}

TEST_F(ArrayFaults, AnUnknownFieldHasTheNumber0WithoutAFault) {
    EXPECT_EQ(field_number(structure, "z"), 0);
    EXPECT_TRUE(faults.empty());
}

TEST_F(ArrayFaults, DestroyingAFieldOfAStructIsAFault) {
    const array_handle value = make_scalar(5.0);
    set_field(structure, 2, "y", value);
    destroy(value);
    expect_fault(fault_kind::bad_ownership, "qvdestroyarray800_: " + the_scalar(value) +
                                                " belongs to array " + std::to_string(structure));
    EXPECT_EQ(inspect(value).scalar(), 5.0);
}

TEST_F(ArrayFaults, StoringAFieldOfAStructAgainIsAFault) {
    const array_handle value = make_text("v");
    const array_handle other = make_struct({1, 1}, 1, "x", 1);
    set_field(structure, 1, "x", value);
    const std::string sentence = the_text(value) + " belongs to array " + std::to_string(structure);
    set_field(structure, 1, "x", value);
    expect_fault(fault_kind::bad_ownership, "qvsetfield800_: " + sentence);
    set_field_number(structure, 2, 1, value);
    expect_fault(fault_kind::bad_ownership, "qvsetfieldbynumber800_: " + sentence);
    set_field(other, 1, "x", value);
    expect_fault(fault_kind::bad_ownership, "qvsetfield800_: " + sentence);
    destroy(other);
    EXPECT_EQ(inspect(value).text(), "v");
}

TEST_F(ArrayFaults, StoringAStructInItselfIsAFault) {
    const std::string sentence = the_struct(structure) + " would be stored in itself";
    set_field(structure, 1, "x", structure);
    expect_fault(fault_kind::bad_ownership, "qvsetfield800_: " + sentence);

    // A struct that it contains counts as well.
    const array_handle middle = make_struct({1, 1}, 1, "x", 1);
    const array_handle inner = make_struct({1, 1}, 1, "x", 1);
    set_field(middle, 1, "x", inner);
    set_field(structure, 1, "x", middle);
    set_field_number(inner, 1, 1, structure);
    expect_fault(fault_kind::bad_ownership, "qvsetfieldbynumber800_: " + sentence);

    // Deep nesting is allowed.
    const array_handle value = make_struct();
    set_field(inner, 1, "x", value);
    EXPECT_TRUE(faults.empty());
}

TEST_F(ArrayFaults, AnUnknownHandleDoesNotReplaceAStoredValue) {
    set_field(structure, 1, "x", make_scalar(8.0));
    const array_handle owned = make_struct({1, 1}, 1, "s", 1);
    const array_handle value = make_scalar(9.0);
    set_field(owned, 1, "s", value);
    set_field(owned, 1, "s", structure + 1000);
    expect_fault(fault_kind::unknown_object, "qvsetfield800_: the handle " +
                                                 std::to_string(structure + 1000) +
                                                 " names no array");
    EXPECT_EQ(inspect(owned).field("s").scalar(), 9.0);
    destroy(owned);
}

TEST_F(ArrayFaults, NoOrThreeDimensionsAreAFault) {
    const std::string sentence = "qvcreatestructarray800_: an array has one or two dimensions";
    EXPECT_EQ(make_struct({1, 1, 1}), 0);
    expect_fault(fault_kind::bad_request, sentence);
    EXPECT_EQ(make_struct({}), 0);
    expect_fault(fault_kind::bad_request, sentence);
}

TEST_F(ArrayFaults, ANegativeExtentIsAFault) {
    const std::vector<std::vector<std::int64_t>> bad = {{-1}, {-1, 2}, {2, -1}};
    for (const std::vector<std::int64_t>& extents : bad) {
        EXPECT_EQ(make_struct(extents), 0);
        expect_fault(fault_kind::bad_request, "qvcreatestructarray800_: an extent is negative");
    }
    EXPECT_EQ(make_matrix(-1, 2), 0);
    expect_fault(fault_kind::bad_request, "qvcreatedoublematrix800_: an extent is negative");
    EXPECT_EQ(make_matrix(2, -1), 0);
    expect_fault(fault_kind::bad_request, "qvcreatedoublematrix800_: an extent is negative");
}

TEST_F(ArrayFaults, ANegativeNumberOfFieldsIsAFault) {
    EXPECT_EQ(make_struct({1, 1}, -1), 0);
    expect_fault(fault_kind::bad_request,
                 "qvcreatestructarray800_: the number of fields is negative");
}

TEST_F(ArrayFaults, ANegativeLengthOfATextIsAFault) {
    const std::string sentence = ": the length of a text is -1";
    EXPECT_EQ(host::qvcreatestring800_("abc", -1), 0);
    expect_fault(fault_kind::bad_request, "qvcreatestring800_" + sentence);
    host::qvsetfield800_(structure, 1, "x", scalar, -1);
    expect_fault(fault_kind::bad_request, "qvsetfield800_" + sentence);
    EXPECT_EQ(host::qvgetfieldnumber800_(structure, "x", -1), 0);
    expect_fault(fault_kind::bad_request, "qvgetfieldnumber800_" + sentence);
    EXPECT_EQ(host::qvaddfield800_(structure, "x", -1), 0);
    expect_fault(fault_kind::bad_request, "qvaddfield800_" + sentence);
}

TEST_F(ArrayFaults, ANullAddressOfATextIsAFault) {
    EXPECT_EQ(host::qvgetfieldnumber800_(structure, nullptr, 1), 0);
    expect_fault(fault_kind::bad_request, "qvgetfieldnumber800_: the address of a text is null");
    // An empty text needs no address.
    EXPECT_EQ(host::qvgetfieldnumber800_(structure, nullptr, 0), 0);
}

TEST_F(ArrayFaults, ANegativeSlotWidthIsAFault) {
    EXPECT_EQ(make_struct({1, 1}, 1, "x", -1), 0);
    expect_fault(fault_kind::bad_request, "qvcreatestructarray800_: the length of a text is -1");
}

TEST_F(ArrayFaults, AComplexMatrixIsAFault) {
    for (const std::int32_t complexity : {1, -1}) {
        EXPECT_EQ(make_matrix(1, 1, complexity), 0);
        expect_fault(fault_kind::bad_request,
                     "qvcreatedoublematrix800_: the stand-in has real matrices only");
    }
}

TEST_F(ArrayFaults, ATooLargeArrayIsRefusedWithoutAFault) {
    // In the first call of each pair the count of elements overflows, in the second the count of
    // bytes.
    EXPECT_EQ(make_matrix(largest, 2), 0);
    EXPECT_EQ(make_matrix(largest, 1), 0);
    EXPECT_EQ(make_struct({largest, 2}, 1, "x", 1), 0);
    EXPECT_EQ(make_struct({largest, 1}, 1, "x", 1), 0);
    EXPECT_TRUE(faults.empty());
}

TEST_F(ArrayFaults, AFieldThatDoesNotFitIsNotAdded) {
    const array_handle large = make_struct({largest});
    EXPECT_EQ(add_field(large, "x"), 0);
    EXPECT_EQ(field_number(large, "x"), 0);
    EXPECT_TRUE(inspect(large).field_names().empty());
    destroy(large);
}

/// Copies with an address that is not data of an array, or with a count beyond its end.
class CopyFaults : public ArrayFaults {
protected:
    void expect_refused(double* address, std::int64_t count, fault_kind kind,
                        const std::string& after_name) {
        const std::string sentence = ": " + after_name;
        numbers ours = {-1, -2, -3, -4, -5};
        const numbers before = ours;
        host::qvcopyptrtoreal8800_(address, ours.data(), count);
        expect_fault(kind, "qvcopyptrtoreal8800_" + sentence);
        EXPECT_EQ(ours, before);
        host::qvcopyreal8toptr800_(ours.data(), address, count);
        expect_fault(kind, "qvcopyreal8toptr800_" + sentence);
        EXPECT_EQ(inspect(matrix).reals(), numbers(4, 0.0));
        EXPECT_EQ(inspect(scalar).reals(), numbers(1, 1.0));
    }
};

TEST_F(CopyFaults, ACopyBeyondTheEndOfTheDataIsAFault) {
    expect_refused(data_of(matrix), 5, fault_kind::out_of_range,
                   the_matrix(matrix) + " has 4 numbers from that address on, not 5");
    expect_refused(data_of(matrix) + 3, 2, fault_kind::out_of_range,
                   the_matrix(matrix) + " has 1 number from that address on, not 2");
    expect_refused(data_of(scalar) + 1, 1, fault_kind::out_of_range,
                   the_scalar(scalar) + " has 0 numbers from that address on, not 1");
    expect_refused(data_of(matrix), largest, fault_kind::out_of_range,
                   the_matrix(matrix) + " has 4 numbers from that address on, not " +
                       std::to_string(largest));
}

TEST_F(CopyFaults, AnEmptyMatrixHasNoNumbers) {
    const array_handle empty = make_matrix(0, 1);
    expect_refused(data_of(empty), 1, fault_kind::out_of_range,
                   the_matrix(empty) + " has 0 numbers from that address on, not 1");
    destroy(empty);
}

TEST_F(CopyFaults, ANegativeCountIsAFault) {
    expect_refused(data_of(matrix), -1, fault_kind::bad_request, "-1 numbers are to be copied");
}

TEST_F(CopyFaults, AnAddressOutsideOfDataIsAFault) {
    const std::string sentence = "no array has data at the address";
    expect_refused(nullptr, 1, fault_kind::unknown_object, sentence);
    // Below and above all data.
    expect_refused(reinterpret_cast<double*>(std::uintptr_t{64}), 1, fault_kind::unknown_object,
                   sentence);
    expect_refused(reinterpret_cast<double*>(~std::uintptr_t{63}), 1, fault_kind::unknown_object,
                   sentence);
}

TEST_F(CopyFaults, CopyingDataOfADestroyedArrayIsAFault) {
    // Large, so that the address is far from the data of every other array.
    const array_handle gone = make_matrix(10'000'000, 1);
    double* const address = data_of(gone);
    destroy(gone);
    expect_refused(address, 1, fault_kind::unknown_object, "no array has data at the address");
}

} // namespace

} // namespace zktarn::standin
