#include "zktarn/sorting/sorting_mod.hpp"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <numeric>
#include <random>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "property/reference/sort_reference.hpp"
#include "support/scale.hpp"

namespace {

using zktarn::flag;
using zktarn::testing::scaled;
namespace reference = zktarn::reference;

/// The inline or the exported form, whichever this program tests.
template <class Exchange>
void sort(std::int32_t first, std::int32_t last, Exchange&& exchange) {
#ifdef ZKTARN_TEST_EXPORTED
    zktarn::sorting_mod::sort(first, last, zktarn::sorting_mod::exchange_procedure(exchange));
#else
    zktarn::sorting_mod::sort(first, last, std::forward<Exchange>(exchange));
#endif
}

struct compared_pair {
    std::int64_t a;
    std::int64_t b;
    bool exchanged;
    bool operator==(const compared_pair&) const = default;
};

using keys = std::vector<int>;

/// Sorts `elements`, at positions from `first` on; returns the calls of the exchange procedure.
std::vector<compared_pair> calls_for(keys& elements, std::int32_t first) {
    std::vector<compared_pair> calls;
    const auto exchange = [&](const std::int32_t& a, const std::int32_t& b) {
        int& lower = elements.at(static_cast<std::size_t>(a - first));
        int& upper = elements.at(static_cast<std::size_t>(b - first));
        const bool exchanged = lower > upper;
        if (exchanged) {
            std::swap(lower, upper);
        }
        calls.push_back({a, b, exchanged});
        return exchanged;
    };
    sort(first, first + static_cast<std::int32_t>(elements.size()) - 1, exchange);
    return calls;
}

/// The calls of an exchange procedure that moves nothing and returns `result(a, b)`.
template <class Result>
std::vector<compared_pair> calls_for_results(std::int32_t first, std::int32_t last, Result result) {
    std::vector<compared_pair> calls;
    sort(first, last, [&](std::int32_t a, std::int32_t b) {
        calls.push_back({a, b, result(a, b)});
        return calls.back().exchanged;
    });
    return calls;
}

template <class Result>
std::vector<compared_pair> reference_for_results(std::int32_t first, std::int32_t last,
                                                 Result result) {
    std::vector<compared_pair> calls;
    reference::sort(first, last, [&](std::int64_t a, std::int64_t b) {
        calls.push_back({a, b, result(static_cast<std::int32_t>(a), static_cast<std::int32_t>(b))});
        return calls.back().exchanged;
    });
    return calls;
}

std::vector<std::int64_t> gaps_of(const std::vector<compared_pair>& calls) {
    std::vector<std::int64_t> gaps;
    for (const compared_pair& each : calls) {
        if (gaps.empty() || gaps.back() != each.b - each.a) {
            gaps.push_back(each.b - each.a);
        }
    }
    return gaps;
}

constexpr auto never = [](std::int32_t, std::int32_t) { return false; };
constexpr auto always = [](std::int32_t, std::int32_t) { return true; };

/// Whether the inline form accepts an object as an exchange procedure.
template <class Exchange>
concept is_accepted = requires(Exchange& exchange) {
    zktarn::sorting_mod::sort(1, 2, exchange);
};

constexpr auto returns_nothing = [](std::int32_t, std::int32_t) {};
constexpr auto takes_one_position = [](std::int32_t) { return true; };
static_assert(!is_accepted<decltype(returns_nothing)>);
static_assert(!is_accepted<decltype(takes_one_position)>);
static_assert(is_accepted<decltype(never)>);

TEST(Sort, CallsNothingForFewerThanTwoPositions) {
    for (const auto& [first, last] : {std::pair{5, 5}, {5, 4}, {5, -5}, {0, 0}}) {
        EXPECT_TRUE(calls_for_results(first, last, always).empty());
    }
    constexpr std::int32_t least = std::numeric_limits<std::int32_t>::min();
    constexpr std::int32_t most = std::numeric_limits<std::int32_t>::max();
    EXPECT_TRUE(calls_for_results(most, least, always).empty());
    EXPECT_TRUE(calls_for_results(most, most, always).empty());
    EXPECT_TRUE(calls_for_results(least, least, always).empty());
}

TEST(Sort, CallsOnceForTwoPositions) {
    EXPECT_EQ(calls_for_results(7, 8, always), (std::vector<compared_pair>{{7, 8, true}}));
    EXPECT_EQ(calls_for_results(7, 8, never), (std::vector<compared_pair>{{7, 8, false}}));
}

TEST(Sort, CallsForFiveDescendingKeysAsExpected) {
    keys elements = {5, 4, 3, 2, 1};
    EXPECT_EQ(calls_for(elements, 1), (std::vector<compared_pair>{{1, 5, true},
                                                                  {1, 2, false},
                                                                  {2, 3, true},
                                                                  {1, 2, false},
                                                                  {3, 4, true},
                                                                  {2, 3, true},
                                                                  {1, 2, false},
                                                                  {4, 5, false}}));
    EXPECT_EQ(elements, (keys{1, 2, 3, 4, 5}));
}

TEST(Sort, UsesTheGapsBelowTheNumberOfElements) {
    const std::pair<std::int32_t, std::vector<std::int64_t>> expected[] = {
        {2, {1}},
        {3, {1}},
        {4, {1}},
        {5, {4, 1}},
        {13, {4, 1}},
        {14, {13, 4, 1}},
        {40, {13, 4, 1}},
        {41, {40, 13, 4, 1}},
        {121, {40, 13, 4, 1}},
        {122, {121, 40, 13, 4, 1}}};
    for (const auto& [n, gaps] : expected) {
        EXPECT_EQ(gaps_of(calls_for_results(1, n, never)), gaps) << n;
    }
}

TEST(Sort, CallsNMinusGapTimesForAProcedureThatNeverExchanges) {
    for (std::int32_t n = 2; n <= 130; ++n) {
        std::int64_t expected = 0;
        for (std::int64_t gap = 1; gap < n; gap = 3 * gap + 1) {
            expected += n - gap;
        }
        EXPECT_EQ(static_cast<std::int64_t>(calls_for_results(1, n, never).size()), expected) << n;
    }
}

TEST(Sort, StaysWithinARangeThatDoesNotStartAtOne) {
    keys elements = {3, 1, 4, 1, 5, 9, 2, 6};
    for (const compared_pair& each : calls_for(elements, -3)) {
        EXPECT_GE(each.a, -3);
        EXPECT_LT(each.a, each.b);
        EXPECT_LE(each.b, 4);
    }
    EXPECT_TRUE(std::is_sorted(elements.begin(), elements.end()));
}

TEST(Sort, NeverExchangesEqualKeysByAStrictProcedure) {
    std::mt19937 random(1);
    std::vector<std::pair<int, int>> elements(200);
    for (int i = 0; i < 200; ++i) {
        elements[static_cast<std::size_t>(i)] = {static_cast<int>(random() % 5), i};
    }
    sort(0, 199, [&](std::int32_t a, std::int32_t b) {
        auto& lower = elements[static_cast<std::size_t>(a)];
        auto& upper = elements[static_cast<std::size_t>(b)];
        if (lower.first <= upper.first) {
            return false;
        }
        EXPECT_NE(lower.first, upper.first);
        std::swap(lower, upper);
        return true;
    });
    EXPECT_TRUE(std::is_sorted(elements.begin(), elements.end(),
                               [](const auto& a, const auto& b) { return a.first < b.first; }));
}

TEST(Sort, SortsDescendingByADescendingProcedure) {
    keys elements(100);
    std::iota(elements.begin(), elements.end(), 0);
    sort(0, 99, [&](std::int32_t a, std::int32_t b) {
        int& lower = elements[static_cast<std::size_t>(a)];
        int& upper = elements[static_cast<std::size_t>(b)];
        return lower < upper ? (std::swap(lower, upper), true) : false;
    });
    EXPECT_TRUE(std::is_sorted(elements.rbegin(), elements.rend()));
}

TEST(Sort, CountsEveryNonzeroResultAsTrue) {
    for (const flag yes : {flag{1}, flag{-1}, flag{2}, flag{1} << 32, flag{1} << 62}) {
        int calls = 0;
        sort(1, 3, [&](std::int32_t, std::int32_t) {
            ++calls;
            return yes;
        });
        EXPECT_EQ(calls, 3) << yes;
    }
}

TEST(Sort, PassesCopiesOfThePositions) {
    const auto overwrite = [](const std::int32_t& position) {
        const_cast<std::int32_t&>(position) = 1000;
    };
    std::vector<compared_pair> calls;
    sort(1, 20, [&](const std::int32_t& a, const std::int32_t& b) {
        calls.push_back({a, b, true});
        overwrite(a);
        overwrite(b);
        return true;
    });
    EXPECT_EQ(calls, reference_for_results(1, 20, always));
}

TEST(Sort, ReadsTheRangeOnce) {
    std::int32_t first = 1;
    std::int32_t last = 20;
    std::vector<compared_pair> calls;
    const auto exchange = [&](std::int32_t a, std::int32_t b) -> flag {
        calls.push_back({a, b, true});
        first = 10;
        last = 5;
        return 1;
    };
#ifdef ZKTARN_TEST_EXPORTED
    zktarn::sorting_mod::sort(first, last, zktarn::sorting_mod::exchange_procedure(exchange));
#else
    zktarn::sorting_mod::sort(first, last, exchange);
#endif
    EXPECT_EQ(calls, reference_for_results(1, 20, always));
}

TEST(Sort, SpansAll32BitPositions) {
    // The first pass alone would take an hour, so the procedure ends it.
    constexpr std::int64_t least = std::numeric_limits<std::int32_t>::min();
    constexpr std::int64_t gap = 1'743'392'200; // the largest of the sequence below 2^32
    struct enough {};
    std::vector<compared_pair> calls;
    const auto exchange = [&](std::int32_t a, std::int32_t b) -> bool {
        calls.push_back({a, b, true});
        if (calls.size() == 3) {
            throw enough{};
        }
        return true;
    };
    const auto run = [&] {
        zktarn::sorting_mod::detail::shell_sort(std::numeric_limits<std::int32_t>::min(),
                                                std::numeric_limits<std::int32_t>::max(), exchange);
    };
    EXPECT_THROW(run(), enough);
    EXPECT_EQ(calls, (std::vector<compared_pair>{{least, least + gap, true},
                                                 {least + 1, least + gap + 1, true},
                                                 {least + 2, least + gap + 2, true}}));
}

TEST(Sort, SortsAtBothEndsOfThe32BitPositions) {
    constexpr std::int32_t least = std::numeric_limits<std::int32_t>::min();
    constexpr std::int32_t most = std::numeric_limits<std::int32_t>::max();
    EXPECT_EQ(calls_for_results(most - 60, most, always),
              reference_for_results(most - 60, most, always));
    EXPECT_EQ(calls_for_results(least, least + 60, always),
              reference_for_results(least, least + 60, always));
}

TEST(SortProperty, CallsAsTheReferenceForEveryRangeOfUpTo200Positions) {
    std::mt19937 random(20261121);
    for (std::int32_t n = 0; n <= 200; ++n) {
        const std::int32_t first = static_cast<std::int32_t>(random() % 41) - 20;
        const std::int32_t last = first + n - 1;
        EXPECT_EQ(calls_for_results(first, last, never), reference_for_results(first, last, never));
        EXPECT_EQ(calls_for_results(first, last, always),
                  reference_for_results(first, last, always));
        const auto salt = static_cast<std::uint32_t>(random());
        const auto erratic = [salt](std::int32_t a, std::int32_t b) {
            std::uint32_t mixed = (static_cast<std::uint32_t>(a) * 2654435761U) ^
                                  (static_cast<std::uint32_t>(b) * 40503U) ^ salt;
            mixed ^= mixed >> 15;
            return (mixed * 2246822519U >> 13 & 1) != 0;
        };
        EXPECT_EQ(calls_for_results(first, last, erratic),
                  reference_for_results(first, last, erratic));
    }
}

TEST(SortProperty, CallsAsTheReferenceForRandomAndAdversarialKeys) {
    std::mt19937 random(20261122);
    const std::int64_t rounds = scaled(40);
    for (std::int64_t round = 0; round < rounds; ++round) {
        for (std::int32_t n = 2; n <= 200; ++n) {
            keys elements(static_cast<std::size_t>(n));
            const unsigned kind = random() % 4;
            for (std::int32_t i = 0; i < n; ++i) {
                elements[static_cast<std::size_t>(i)] =
                    kind == 0   ? static_cast<int>(random() % 1000)
                    : kind == 1 ? n - i
                    : kind == 2 ? i
                                : static_cast<int>(random() % 3);
            }
            keys copy = elements;
            std::vector<compared_pair> expected;
            reference::sort(1, n, [&](std::int64_t a, std::int64_t b) {
                int& lower = copy[static_cast<std::size_t>(a - 1)];
                int& upper = copy[static_cast<std::size_t>(b - 1)];
                const bool exchanged = lower > upper;
                if (exchanged) {
                    std::swap(lower, upper);
                }
                expected.push_back({a, b, exchanged});
                return exchanged;
            });
            ASSERT_EQ(calls_for(elements, 1), expected) << n;
            ASSERT_EQ(elements, copy);
            ASSERT_TRUE(std::is_sorted(elements.begin(), elements.end()));
        }
    }
}

#ifndef ZKTARN_TEST_EXPORTED
TEST(Sort, AcceptsPlainFunctionsInBothForms) {
    static int calls;
    calls = 0;
    struct counting {
        static flag exchange(const std::int32_t&, const std::int32_t&) {
            ++calls;
            return 0;
        }
    };
    zktarn::sorting_mod::sort(1, 2, counting::exchange);
    zktarn::sorting_mod::sort(1, 2, zktarn::sorting_mod::exchange_procedure(counting::exchange));
    EXPECT_EQ(calls, 2);
}
#endif

} // namespace
