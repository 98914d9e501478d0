#include "zktarn/owners.hpp"

#include <algorithm>
#include <type_traits>
#include <utility>

#include <gtest/gtest.h>

#include "zktarn_standin/control.hpp"

namespace {

using namespace zktarn;
using standin::operation;

/// One case for each owner: how to make it, the host's failure that makes it false, how to release
/// it.
struct vector_case {
    using type = owned_vector;
    static type make() { return owned_vector(5); }
    static void plan_failure() { standin::fail_request(2); }
    static void release(type& owned) {
        vector_type::vector* vec = owned.release();
        vector_type::vector_free(vec);
    }
};

struct array_case {
    using type = owned_array<double, 2>;
    static type make() { return type({3, 4}); }
    static void plan_failure() { standin::fail_request(1); }
    static void release(type& owned) {
        array_2d<double> array = owned.release();
        memory_mod::freemem_r8_2d_array(array);
    }
};

struct generator_case {
    using type = owned_generator;
    static type make() { return owned_generator(7); }
    static void plan_failure() { standin::fail_call(operation::instantiateRngOptim, 1); }
    static void release(type& owned) {
        random::rng_state rng = owned.release();
        random::deleterng(rng);
    }
};

struct snapshot_case {
    using type = owned_snapshot;
    static type make() {
        const owned_generator rng(7);
        return owned_snapshot(*rng);
    }
    static void plan_failure() { standin::fail_call(operation::getRngStateOptim, 1); }
    static void release(type& owned) { random::deleterngstate(owned.release()); }
};

struct struct_case {
    using type = owned_struct;
    static type make() { return owned_struct("rounds"); }
    static void plan_failure() { standin::fail_call(operation::qvcreatestructarray800_, 1); }
    static void release(type& owned) { host::qvdestroyarray800_(owned.release()); }
};

bool nothing_is_live() {
    return standin::live_blocks().empty() && standin::live_objects().empty();
}

bool is_null(const void* handle) {
    return handle == nullptr;
}
bool is_null(const array_2d<double>& array) {
    return !array.present();
}
bool is_null(const random::rng_state& rng) {
    return rng.generator == nullptr;
}
bool is_null(host::array_handle handle) {
    return handle == 0;
}

template <class Case>
class Owners : public testing::Test {
protected:
    using owned_type = typename Case::type;

    void SetUp() override { standin::reset(); }
    void TearDown() override { EXPECT_TRUE(nothing_is_live()) << standin::report(); }
};

using cases = testing::Types<vector_case, array_case, generator_case, snapshot_case, struct_case>;
TYPED_TEST_SUITE(Owners, cases);

TYPED_TEST(Owners, OwnNothingWhenDefaultConstructed) {
    typename TestFixture::owned_type owned;
    EXPECT_FALSE(owned);
    owned.reset();
    EXPECT_FALSE(owned);
}

TYPED_TEST(Owners, ReleaseTheirObjectAtTheEndOfTheirScope) {
    const auto owned = TypeParam::make();
    EXPECT_TRUE(owned);
    EXPECT_FALSE(nothing_is_live());
}

TYPED_TEST(Owners, AreFalseWhenTheHostRefuses) {
    TypeParam::plan_failure();
    EXPECT_FALSE(TypeParam::make());
    EXPECT_TRUE(TypeParam::make());
}

TYPED_TEST(Owners, ReleaseAtOnceWhenTheyAreReset) {
    auto owned = TypeParam::make();
    owned.reset();
    EXPECT_FALSE(owned);
    EXPECT_TRUE(nothing_is_live());
}

TYPED_TEST(Owners, ReleaseTransfersTheirObject) {
    auto owned = TypeParam::make();
    TypeParam::release(owned);
    EXPECT_FALSE(owned);
    EXPECT_TRUE(is_null(owned.release()));
    EXPECT_TRUE(nothing_is_live());
}

TYPED_TEST(Owners, MoveTheirObject) {
    auto first = TypeParam::make();
    auto second = std::move(first);
    EXPECT_FALSE(first);
    EXPECT_TRUE(is_null(first.release()));
    EXPECT_TRUE(second);
}

TYPED_TEST(Owners, HaveANullHandleAfterAReset) {
    auto owned = TypeParam::make();
    owned.reset();
    EXPECT_TRUE(is_null(owned.release()));
}

TYPED_TEST(Owners, ReleaseTheOldObjectWhenAnotherIsAssigned) {
    auto first = TypeParam::make();
    const auto blocks = standin::live_blocks().size();
    const auto objects = standin::live_objects().size();
    auto second = TypeParam::make();
    first = std::move(second);
    EXPECT_TRUE(first);
    EXPECT_FALSE(second);
    EXPECT_EQ(standin::live_blocks().size(), blocks);
    EXPECT_EQ(standin::live_objects().size(), objects);
}

TYPED_TEST(Owners, ReleaseTheOldObjectWhenAFalseOwnerIsAssigned) {
    auto owned = TypeParam::make();
    owned = typename TestFixture::owned_type();
    EXPECT_FALSE(owned);
    EXPECT_TRUE(nothing_is_live());
}

TYPED_TEST(Owners, KeepTheirObjectWhenMovedToThemselves) {
    auto owned = TypeParam::make();
    auto& same = owned;
    owned = std::move(same);
    EXPECT_TRUE(owned);
    EXPECT_FALSE(nothing_is_live());
}

TYPED_TEST(Owners, MoveWithoutThrowingAndDoNotCopy) {
    using type = typename TestFixture::owned_type;
    EXPECT_TRUE(std::is_nothrow_default_constructible_v<type>);
    EXPECT_TRUE(std::is_nothrow_move_constructible_v<type>);
    EXPECT_TRUE(std::is_nothrow_move_assignable_v<type>);
    EXPECT_TRUE(std::is_nothrow_destructible_v<type>);
    EXPECT_FALSE(std::is_copy_constructible_v<type>);
    EXPECT_FALSE(std::is_copy_assignable_v<type>);
}

class OwnersOnTheStandin : public testing::Test {
protected:
    void SetUp() override { standin::reset(); }
    void TearDown() override { EXPECT_TRUE(nothing_is_live()) << standin::report(); }
};

TEST_F(OwnersOnTheStandin, AVectorHasTheRequestedArrays) {
    const owned_vector marks(4);
    EXPECT_TRUE(marks->coef.present() && marks->ind.present() && marks->elm.present());
    const owned_vector list(4, 1, {}, 1);
    EXPECT_TRUE(!list->coef.present() && list->ind.present() && !list->elm.present());
    const owned_vector dense(4, {}, 1, 1);
    EXPECT_TRUE(dense->coef.present() && !dense->ind.present() && !dense->elm.present());
    EXPECT_EQ(&*dense, dense.operator->());
}

TEST_F(OwnersOnTheStandin, ARefusedVectorLeaksNothing) {
    for (std::int64_t request = 1; request <= 3; ++request) {
        standin::fail_request(request);
        EXPECT_FALSE(owned_vector(4));
        EXPECT_TRUE(standin::live_blocks().empty());
    }
}

TEST_F(OwnersOnTheStandin, AnAdoptedVectorIsOwned) {
    vector_type::vector* made = nullptr;
    ASSERT_EQ(vector_type::vector_alloc(made, 3), 1);
    const owned_vector owned = owned_vector::adopt(made);
    EXPECT_EQ(&*owned, made);
    EXPECT_FALSE(owned_vector::adopt(nullptr));
}

template <class T>
void expect_array_of(std::int64_t nbytes) {
    owned_array<T> array(5);
    ASSERT_TRUE(array);
    EXPECT_EQ(array->extent[0], 5);
    ASSERT_EQ(standin::live_blocks().size(), 1U);
    EXPECT_EQ(standin::live_blocks().front().nbytes, nbytes);
    for (std::int64_t k = 1; k <= 5; ++k) {
        array(k) = static_cast<T>(k);
    }
    EXPECT_EQ((*array)(5), T{5});
    EXPECT_EQ(array.elements().size(), 5U);
    EXPECT_EQ(array.elements().back(), T{5});
}

TEST_F(OwnersOnTheStandin, ArraysOfEveryElementTypeHaveTheirSize) {
    expect_array_of<std::int64_t>(40);
    expect_array_of<std::int32_t>(20);
    expect_array_of<std::int16_t>(10);
    expect_array_of<std::int8_t>(5);
    expect_array_of<double>(40);
}

TEST_F(OwnersOnTheStandin, AMatrixIsStoredColumnByColumn) {
    const owned_array<std::int32_t, 2> matrix({2, 3});
    ASSERT_TRUE(matrix);
    EXPECT_EQ(standin::live_blocks().front().nbytes, 24);
    std::ranges::fill(matrix.elements(), 0);
    matrix(2, 1) = 21;
    matrix(1, 3) = 13;
    EXPECT_EQ(matrix.elements().size(), 6U);
    EXPECT_EQ(matrix.elements()[1], 21);
    EXPECT_EQ(matrix.elements()[4], 13);
}

TEST_F(OwnersOnTheStandin, AnEmptyArrayIsMadeWithoutABlock) {
    const std::int64_t requests = standin::requests();
    const owned_array<double> none(0);
    EXPECT_TRUE(none);
    EXPECT_FALSE(none->present());
    EXPECT_TRUE(none.elements().empty());
    const owned_array<double, 2> no_columns({5, 0});
    EXPECT_TRUE(no_columns);
    EXPECT_TRUE(no_columns.elements().empty());
    EXPECT_EQ(standin::requests(), requests);
    EXPECT_TRUE(standin::live_blocks().empty());
}

TEST_F(OwnersOnTheStandin, AnArrayThatIsTooLargeIsRefused) {
    const owned_array<double> array(std::int64_t{1} << 61);
    EXPECT_FALSE(array);
    EXPECT_TRUE(array.elements().empty());
}

TEST_F(OwnersOnTheStandin, ASnapshotRestoresTheNumbers) {
    const owned_generator rng(3);
    const owned_snapshot before(*rng);
    ASSERT_TRUE(rng && before);
    const double first = random::rand_number(*rng);
    EXPECT_NE(random::rand_number(*rng), first);
    random::setrngstate(*rng, *before);
    EXPECT_EQ(random::rand_number(*rng), first);
}

TEST_F(OwnersOnTheStandin, ASnapshotOfANullGeneratorIsFalse) {
    const owned_generator none;
    EXPECT_FALSE(owned_snapshot(*none));
}

TEST_F(OwnersOnTheStandin, AStructIsFilledAndDestroyedWithItsFields) {
    const owned_struct report("rounds");
    ASSERT_TRUE(report);
    callbacks_util::addrealscalartoqvstruct(*report, "bound", 2.5);
    EXPECT_NE(standin::live_objects().size(), 0U);
}

} // namespace
