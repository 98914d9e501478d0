// Built twice: against the inline procedures, and against the symbols of the shared library.
#include <cstdint>
#include <limits>
#include <span>
#include <string>

#include <gtest/gtest.h>

#include "zktarn/callbacks/callbacks_util.hpp"

#ifdef ZKTARN_TEST_EXPORTED
#include "support/exported.hpp"
#define PROCEDURE(name, mangled)                                                                   \
    (*zktarn::testing::exported<decltype(&zktarn::callbacks_util::name)>(mangled))
#else
#define PROCEDURE(name, mangled) zktarn::callbacks_util::name
#endif

namespace {

using zktarn::flag;

constexpr std::int32_t least = std::numeric_limits<std::int32_t>::min();
constexpr std::int32_t most = std::numeric_limits<std::int32_t>::max();

TEST(Codes, OnlyStatusThreeMeansStoppedByTheOutputFunction) {
    const auto stopped = [](std::int32_t status) {
        return PROCEDURE(cbstopfromoutputfcn,
                         "_ZN6zktarn14callbacks_util19cbstopfromoutputfcnERKi")(status);
    };
    EXPECT_EQ(stopped(3), 1);
    for (const std::int32_t other : {0, 1, 2, 4, -3, 259, least, most}) {
        EXPECT_EQ(stopped(other), 0) << other;
    }
}

TEST(Codes, AnIndicatorAboveZeroMeansAnOutputFunction) {
    const auto present = [](std::int32_t indicator) {
        return PROCEDURE(cbhasoutputfcn,
                         "_ZN6zktarn14callbacks_util14cbhasoutputfcnERKi")(indicator);
    };
    for (const std::int32_t some : {1, 2, most}) {
        EXPECT_EQ(present(some), 1) << some;
    }
    for (const std::int32_t none : {0, -1, least}) {
        EXPECT_EQ(present(none), 0) << none;
    }
}

TEST(Codes, OnlyDisplayZeroIsOff) {
    const auto off = [](std::int32_t display) {
        return PROCEDURE(cbisdisplayoff, "_ZN6zktarn14callbacks_util14cbisdisplayoffERKi")(display);
    };
    EXPECT_EQ(off(0), 1);
    for (const std::int32_t other : {1, 2, -1, 256, least, most}) {
        EXPECT_EQ(off(other), 0) << other;
    }
}

TEST(Codes, OnlyDisplayOneIsFinal) {
    const auto final_only = [](std::int32_t display) {
        return PROCEDURE(cbisdisplayfinal,
                         "_ZN6zktarn14callbacks_util16cbisdisplayfinalERKi")(display);
    };
    EXPECT_EQ(final_only(1), 1);
    for (const std::int32_t other : {0, 2, -1, 257, least, most}) {
        EXPECT_EQ(final_only(other), 0) << other;
    }
}

TEST(Codes, OnlySwitchOnePolls) {
    const auto on = [](std::int32_t ctrlc) {
        return PROCEDURE(cbisctrlcon, "_ZN6zktarn14callbacks_util11cbisctrlconERKi")(ctrlc);
    };
    EXPECT_EQ(on(1), 1);
    for (const std::int32_t other : {0, 2, -1, 257, least, most}) {
        EXPECT_EQ(on(other), 0) << other;
    }
}

// No test of this program calls cbinit.
TEST(Interrupts, TheFlagIsClearWhenTheLibraryIsLoaded) {
    constexpr std::int32_t running = 0;
    constexpr std::int32_t no_poll = 0;
    EXPECT_EQ(zktarn::callbacks_util::cbhasinterrupt(running, no_poll), 0);
}

// LLVM's standard library has its types in an inline namespace.
#ifdef _LIBCPP_VERSION
#define ZKTARN_TEST_SPAN "NSt3__14spanIcLm18446744073709551615EEE"
#else
#define ZKTARN_TEST_SPAN "St4spanIcLm18446744073709551615EE"
#endif

std::string lowered(std::string text) {
    PROCEDURE(lowercasee, "_ZN6zktarn14callbacks_util10lowercaseeE" ZKTARN_TEST_SPAN)(text);
    return text;
}

TEST(Lowercasee, LowersTheLetterOfAnExponent) {
    EXPECT_EQ(lowered("1.5E+03"), "1.5e+03");
    EXPECT_EQ(lowered("1.5D+03"), "1.5D+03");
}

TEST(Lowercasee, LowersEveryEAndNoOtherLetter) {
    EXPECT_EQ(lowered("Elapsed TIME"), "elapsed TIMe");
    EXPECT_EQ(lowered("eEeEABCDF"), "eeeeABCDF");
    EXPECT_EQ(lowered("E"), "e");
}

TEST(Lowercasee, LeavesBlanksAndEmptyTextsAlone) {
    EXPECT_EQ(lowered(""), "");
    EXPECT_EQ(lowered("     "), "     ");
    EXPECT_EQ(lowered("  E  "), "  e  ");
    EXPECT_EQ(lowered(std::string("E\0E \t", 5)), std::string("e\0e \t", 5));
}

// The loop handles long texts in blocks of characters, at any alignment.
TEST(Lowercasee, ChangesTheSameCharactersInALongText) {
    std::string letters;
    for (int i = 0; i < 160; ++i) {
        letters += i % 3 == 0 ? 'E' : static_cast<char>(i * 37 % 256);
    }
    for (std::size_t begin = 0; begin <= 17; ++begin) {
        for (std::size_t length = 0; begin + length <= letters.size(); ++length) {
            std::string expected = letters;
            for (std::size_t i = begin; i < begin + length; ++i) {
                if (expected[i] == 'E') {
                    expected[i] = 'e';
                }
            }
            std::string text = letters;
            PROCEDURE(lowercasee, "_ZN6zktarn14callbacks_util10lowercaseeE" ZKTARN_TEST_SPAN)
            (std::span<char>(text).subspan(begin, length));
            ASSERT_EQ(text, expected) << begin << ", " << length;
        }
    }
}

} // namespace
