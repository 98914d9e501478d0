#pragma once

/// The fixture of the tests of violated preconditions. In every build, these tests link a library
/// that is compiled with the checks.

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

/// The default capacity of a sample.
inline constexpr std::int32_t n = 4;

/// A vector whose arrays are parts of larger blocks, so that an access outside of an array stays
/// inside its block. An absent array keeps a nonzero extent, as after a release. Unused list
/// positions hold 1.
class sample {
public:
    explicit sample(const arrays& has = marks_mode, std::int32_t capacity = n) {
        list_.fill(1);
        v.coef = {
            has.coef ? coefs_.data() + before : nullptr, {has.coef ? capacity : stale_extent}, {1}};
        v.ind = {
            has.ind ? list_.data() + before : nullptr, {has.ind ? capacity : stale_extent}, {1}};
        v.elm = {
            has.elm ? marks_.data() + before : nullptr, {has.elm ? capacity : stale_extent}, {1}};
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

    /// The list position k and the mark of j, which may be outside of the arrays.
    std::int32_t& listed(std::int32_t k) { return list_[place(k)]; }
    std::int32_t& mark(std::int32_t j) { return marks_[place(j)]; }

    /// Everything that a procedure can write.
    [[nodiscard]] auto content() const { return std::tuple(coefs_, list_, marks_, v.nz); }

    vector v;

private:
    static constexpr std::int32_t before = 8;
    static constexpr std::int64_t stale_extent = n + 3;
    static std::size_t place(std::int32_t k) { return static_cast<std::size_t>(before + k - 1); }

    std::array<double, 24> coefs_{};
    std::array<std::int32_t, 24> list_{};
    std::array<std::int32_t, 24> marks_{};
};

class Violations : public ::testing::Test {
protected:
    // Captures the printed violations, so that the test's own output stays readable.
    void SetUp() override {
        standin::reset();
        standin::set_console(standin::console::capture);
    }
    void TearDown() override { standin::reset(); }

    /// The number of reports that a call makes.
    template <class Call>
    static int reports(Call call) {
        int count = 0;
        standin::set_assertion_handler([&] { ++count; });
        call();
        return count;
    }

    /// Whether a call reports a violation before it changes x.
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

/// Expects a report before the statement changes x.
#define EXPECT_REPORTED_FIRST(x, statement)                                                        \
    EXPECT_TRUE(reports_first(x, [&] { statement; })) << #statement

/// Expects a report of an absent array. The statement runs in a child process that ends at the
/// first report, because the call would go on to use the array.
#define EXPECT_REPORTED_ABSENCE(statement)                                                         \
    EXPECT_EXIT(                                                                                   \
        {                                                                                          \
            zktarn::standin::set_assertion_handler([] { std::_Exit(3); });                         \
            statement;                                                                             \
            std::_Exit(4);                                                                         \
        },                                                                                         \
        testing::ExitedWithCode(3), "")
