#include "zktarn/function_ref.hpp"
#include "zktarn/types.hpp"

#include <memory>
#include <type_traits>

#include <gtest/gtest.h>

namespace {

using zktarn::array_1d;
using zktarn::array_2d;
using zktarn::flag;
using zktarn::function_ref;
using zktarn::host_array;
using zktarn::optional_ref;

TEST(HostArray, IsAbsentAtFirst) {
    const array_1d<double> array;
    EXPECT_FALSE(array.present());
    EXPECT_EQ(array.data, nullptr);
    EXPECT_EQ(array.extent[0], 0);
    EXPECT_EQ(array.lower_bound[0], 0);
}

TEST(HostArray, CountsElementsFromOne) {
    double block[] = {1.5, 2.5, 3.5};
    const array_1d<double> array{block, {3}, {1}};
    EXPECT_TRUE(array.present());
    EXPECT_EQ(&array(1), block);
    EXPECT_EQ(&array(3), block + 2);
}

TEST(HostArray, StoresTwoDimensionsColumnByColumn) {
    int block[6] = {};
    const array_2d<int> array{block, {2, 3}, {1, 1}};
    EXPECT_EQ(&array(1, 1), block);
    EXPECT_EQ(&array(2, 1), block + 1);
    EXPECT_EQ(&array(1, 2), block + 2);
    EXPECT_EQ(&array(2, 3), block + 5);
}

TEST(HostArray, CopiesShareTheBlock) {
    double block[] = {1.0};
    const array_1d<double> array{block, {1}, {1}};
    const array_1d<double> copy = array;
    copy(1) = 7.0;
    EXPECT_EQ(array(1), 7.0);
}

flag flag_of(optional_ref<const flag> value = {}) {
    return value ? *value : -1;
}

TEST(OptionalRef, IsAbsentWhenDefaultedOrEmpty) {
    EXPECT_EQ(flag_of(), -1);
    EXPECT_EQ(flag_of({}), -1);
    EXPECT_FALSE(optional_ref<double>().present());
}

TEST(OptionalRef, BindsToTemporariesAndConvertsThem) {
    EXPECT_EQ(flag_of(0), 0);
    EXPECT_EQ(flag_of(1), 1);
    EXPECT_EQ(flag_of(flag{1} << 40), flag{1} << 40);
    const auto real = [](optional_ref<const double> value) { return *value; };
    EXPECT_EQ(real(2), 2.0);
    EXPECT_EQ(real(2.5), 2.5);
}

TEST(OptionalRef, RefersToVariables) {
    double value = 1.0;
    const optional_ref<const double> in = value;
    const optional_ref<double> out = value;
    *out = 3.0;
    EXPECT_EQ(&*in, &value);
    EXPECT_EQ(*in, 3.0);
    const double constant = 4.0;
    EXPECT_EQ(&*optional_ref<const double>(constant), &constant);
}

TEST(OptionalRef, ReturnsItsValueOrTheFallback) {
    const double value = 2.0;
    EXPECT_EQ(optional_ref<const double>(value).value_or(9.0), 2.0);
    EXPECT_EQ(optional_ref<const double>().value_or(9.0), 9.0);
}

TEST(OptionalRef, DoesNotBindTemporariesAsOutputs) {
    static_assert(std::is_constructible_v<optional_ref<const double>, double>);
    static_assert(std::is_constructible_v<optional_ref<double>, double&>);
    static_assert(!std::is_constructible_v<optional_ref<double>, double>);
    static_assert(!std::is_constructible_v<optional_ref<double>, const double&>);
    static_assert(!std::is_constructible_v<optional_ref<double>, int>);
}

flag is_positive(std::int32_t number) {
    return number > 0 ? 1 : 0;
}

using predicate = function_ref<flag(std::int32_t)>;

TEST(FunctionRef, BindsToAFunction) {
    const predicate by_name = is_positive;
    EXPECT_EQ(by_name(3), 1);
    EXPECT_EQ(by_name(-3), 0);
}

TEST(FunctionRef, OutlivesThePointerItWasMadeOf) {
    auto pointer = std::make_unique<flag (*)(std::int32_t)>(is_positive);
    const predicate bound = *pointer;
    pointer.reset();
    EXPECT_EQ(bound(5), 1);
    const predicate from_temporary = &is_positive;
    EXPECT_EQ(from_temporary(-5), 0);
}

TEST(FunctionRef, CallsAMutableLambdaInPlace) {
    auto counter = [calls = 0](std::int32_t step) mutable { return flag{calls += step}; };
    const predicate bound = counter;
    EXPECT_EQ(bound(2), 2);
    EXPECT_EQ(bound(3), 5);
    EXPECT_EQ(counter(1), 6);
}

TEST(FunctionRef, CallsAConstCallable) {
    struct {
        flag operator()(std::int32_t) const { return 7; }
        flag operator()(std::int32_t) { return 8; }
    } both;
    EXPECT_EQ(predicate(both)(0), 8);
    EXPECT_EQ(predicate(std::as_const(both))(0), 7);
}

flag apply(predicate callable, std::int32_t number) {
    return callable(number);
}

TEST(FunctionRef, BindsToATemporaryForTheCall) {
    EXPECT_EQ(apply([](std::int32_t n) { return flag{n} * 2; }, 21), 42);
}

TEST(FunctionRef, ConvertsResultsAndDropsThemForVoid) {
    EXPECT_EQ(apply([](std::int32_t n) { return n == 3; }, 3), 1);
    int seen = 0;
    const auto sink = [&](int n) { return seen = n; };
    const function_ref<void(int)> bound = sink;
    bound(4);
    EXPECT_EQ(seen, 4);
}

TEST(FunctionRef, PassesReferences) {
    const auto copy = [](double& target, const double& source) { target = source; };
    const function_ref<void(double&, const double&)> assign = copy;
    double target = 0.0;
    assign(target, 2.5);
    EXPECT_EQ(target, 2.5);
}

TEST(FunctionRef, CopiesReferToTheSameCallable) {
    int calls = 0;
    const auto counter = [&](std::int32_t) { return flag{++calls}; };
    const predicate first = counter;
    const predicate second = first;
    EXPECT_EQ(first(0), 1);
    EXPECT_EQ(second(0), 2);
}

TEST(FunctionRef, RefusesOtherSignatures) {
    const auto two = [](int, int) { return 0; };
    const auto text = [](const char*) { return 0; };
    static_assert(!std::is_constructible_v<predicate, decltype(two)>);
    static_assert(!std::is_constructible_v<predicate, decltype(text)>);
    static_assert(!std::is_constructible_v<predicate, void (*)(std::int32_t)>);
    static_assert(!std::is_constructible_v<predicate, int>);
    static_assert(std::is_constructible_v<predicate, decltype(is_positive)>);
}

} // namespace
