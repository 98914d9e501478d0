#pragma once

/// What the tests of violations have in common. They are linked with a library that is built with
/// the checks, whatever the rest of the build has.

#include <array>
#include <cstdint>
#include <cstdlib>
#include <initializer_list>
#include <tuple>

#include <gtest/gtest.h>

#include "zktarn/vector/vector_mod.hpp"
#include "zktarn_standin/control.hpp"

namespace zktarn::testing {

using vector_mod::vector;

/// The arrays that a vector has.
struct arrays {
    bool coef = true;
    bool ind = true;
    bool elm = true;
};

inline constexpr arrays marks_mode{};
inline constexpr arrays list_mode{.elm = false};
inline constexpr arrays dense_mode{.ind = false, .elm = false};
inline constexpr arrays support_only{.coef = false};
inline constexpr arrays index_set{.coef = false, .elm = false};
inline constexpr arrays marks_without_list{.ind = false};
inline constexpr arrays marks_alone{.coef = false, .ind = false};

/// The capacity of a sample, unless it is made with another one.
inline constexpr std::int32_t n = 4;

/// A vector whose arrays have room around them, so that a violation that is reported does no harm.
/// An array that it is without has an extent all the same, as one that was released has, and what
/// is not listed has an element in its place all the same.
class sample {
public:
    explicit sample(const arrays& has = marks_mode, std::int32_t capacity = n) {
        list_.fill(1);
        v.coef = {has.coef ? coefs_.data() + before : nullptr, {has.coef ? capacity : left}, {1}};
        v.ind = {has.ind ? list_.data() + before : nullptr, {has.ind ? capacity : left}, {1}};
        v.elm = {has.elm ? marks_.data() + before : nullptr, {has.elm ? capacity : left}, {1}};
    }
    sample(const sample&) = delete;
    sample& operator=(const sample&) = delete;

    /// Lists and marks elements.
    sample& with(std::initializer_list<std::int32_t> elements) {
        for (const std::int32_t j : elements) {
            listed(++v.nz) = j;
            mark(j) = 1;
            coefs_[place(j)] = 2.5;
        }
        return *this;
    }

    /// What is listed at a position, and the mark of an element, whether there is one or not.
    std::int32_t& listed(std::int32_t k) { return list_[place(k)]; }
    std::int32_t& mark(std::int32_t j) { return marks_[place(j)]; }

    /// All that a procedure can write.
    [[nodiscard]] auto content() const { return std::tuple(coefs_, list_, marks_, v.nz); }

    vector v;

private:
    static constexpr std::int32_t before = 8;
    static constexpr std::int64_t left = n + 3;
    static std::size_t place(std::int32_t k) { return static_cast<std::size_t>(before + k - 1); }

    std::array<double, 24> coefs_{};
    std::array<std::int32_t, 24> list_{};
    std::array<std::int32_t, 24> marks_{};
};

class Violations : public ::testing::Test {
protected:
    // What a violation prints is kept from the console of the tests.
    void SetUp() override {
        standin::reset();
        standin::set_console(standin::console::capture);
    }
    void TearDown() override { standin::reset(); }

    /// The number of reports that a call makes.
    template <class Call>
    static int reports(Call call) {
        int reported = 0;
        standin::set_assertion_handler([&] { ++reported; });
        call();
        return reported;
    }

    /// Whether a call makes a report before it writes anything of x.
    template <class Call>
    static bool reports_first(const sample& x, Call call) {
        const auto before = x.content();
        bool first = false;
        standin::set_assertion_handler([&] { first |= x.content() == before; });
        call();
        return first;
    }
};

using ViolationsDeathTest = Violations;

} // namespace zktarn::testing

#define EXPECT_REPORTED(statement) EXPECT_GE(reports([&] { statement; }), 1) << #statement
#define EXPECT_SILENT(statement) EXPECT_EQ(reports([&] { statement; }), 0) << #statement

/// Of a procedure that verifies all it needs at its beginning.
#define EXPECT_REPORTED_FIRST(x, statement)                                                        \
    EXPECT_TRUE(reports_first(x, [&] { statement; })) << #statement

/// Ends the process at the first report: what follows would use an array that is not there.
#define EXPECT_REPORTED_ABSENCE(statement)                                                         \
    EXPECT_EXIT(                                                                                   \
        {                                                                                          \
            zktarn::standin::set_assertion_handler([] { std::_Exit(3); });                         \
            statement;                                                                             \
            std::_Exit(4);                                                                         \
        },                                                                                         \
        testing::ExitedWithCode(3), "")
