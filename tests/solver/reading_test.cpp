#include <filesystem>
#include <fstream>
#include <functional>
#include <string>

#include <unistd.h>

#include <gtest/gtest.h>

#include "input/error.hpp"
#include "input/read_model.hpp"

namespace zero_half::testing {

namespace {

constexpr int rows = 30'000;

/// Rows x0 + ... >= 1 over a few columns.
std::string lp_text() {
    std::string text = "Minimize\n x0 + x1\nSubject To\n";
    for (int i = 0; i < rows; ++i) {
        text += " x" + std::to_string(i % 2) + " + y" + std::to_string(i) + " >= 1\n";
    }
    return text + "Generals\n x0 x1\nEnd\n";
}

std::string mps_text() {
    std::string text = "NAME t\nROWS\n N cost\n";
    for (int i = 0; i < rows; ++i) {
        text += " G r" + std::to_string(i) + "\n";
    }
    text += "COLUMNS\n M 'MARKER' 'INTORG'\n x cost 1\n";
    for (int i = 0; i < rows; ++i) {
        text += " x r" + std::to_string(i) + " 1\n";
    }
    return text + " M 'MARKER' 'INTEND'\nRHS\n rhs r0 1\nBOUNDS\n UP b x 1\nENDATA\n";
}

class Reading : public ::testing::TestWithParam<std::string> {
protected:
    void SetUp() override { std::ofstream(file_) << (GetParam() == "lp" ? lp_text() : mps_text()); }
    void TearDown() override { std::filesystem::remove(file_); }

    std::string file_ =
        ::testing::TempDir() + "zero_half_reading" + std::to_string(getpid()) + "." + GetParam();
};

} // namespace

TEST_P(Reading, StopsAtWhicheverPollReturnsTrue) {
    int polls = 0;
    const int row_count = read_model(file_, [&] {
                              ++polls;
                              return false;
                          }).row_count();
    EXPECT_EQ(row_count, rows);
    const int needed = polls;
    // At least each 20,000 rows.
    ASSERT_GE(needed, rows / 20'000);
    for (int k = 1; k <= needed; ++k) {
        polls = 0;
        EXPECT_THROW(read_model(file_, [&] { return ++polls >= k; }), stopped) << k;
        EXPECT_EQ(polls, k) << "polled after the run had to stop";
    }
}

INSTANTIATE_TEST_SUITE_P(All, Reading, ::testing::Values("lp", "mps"),
                         [](const auto& format) { return format.param; });

} // namespace zero_half::testing
