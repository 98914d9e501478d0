#include <filesystem>
#include <fstream>
#include <functional>
#include <optional>
#include <string>

#include <unistd.h>

#include <gtest/gtest.h>

#include "input/error.hpp"
#include "input/memory.hpp"
#include "input/read_model.hpp"

/// Reading a model: the memory that is left for it, and how a stop ends it.

namespace zero_half::testing {

namespace {

namespace fs = std::filesystem;

/// Folders that describe a process and its control groups, as Linux writes them.
class Memory : public ::testing::Test {
protected:
    void SetUp() override {
        folder_ = fs::path(::testing::TempDir()) / ("zero_half_memory_" + std::to_string(getpid()));
        fs::remove_all(folder_);
        write("proc/meminfo", "MemTotal: 9000 kB\nMemAvailable:    5000 kB\nSwapFree: 1000 kB\n");
    }
    void TearDown() override { fs::remove_all(folder_); }

    void write(const std::string& file, const std::string& text) const {
        fs::create_directories((folder_ / file).parent_path());
        std::ofstream(folder_ / file) << text;
    }
    std::optional<std::uint64_t> available() const {
        return available_memory(folder_ / "proc", folder_ / "cgroup");
    }

    fs::path folder_;
};

constexpr std::uint64_t kilobyte = 1024;

} // namespace

TEST_F(Memory, OfTheSystemIncludesSwap) {
    EXPECT_EQ(available(), 6000 * kilobyte);
}

TEST_F(Memory, IsUnknownWithoutADescription) {
    fs::remove_all(folder_ / "proc");
    EXPECT_EQ(available(), std::nullopt);
}

TEST_F(Memory, IsLimitedByAControlGroupWithoutTheFilesItHasRead) {
    write("proc/self/cgroup", "0::/user/job\n");
    write("cgroup/user/job/memory.max", "2000000\n");
    write("cgroup/user/job/memory.current", "700000\n");
    write("cgroup/user/job/memory.stat", "anon 500000\ninactive_file 200000\n");
    EXPECT_EQ(available(), 1'500'000u);
}

TEST_F(Memory, IsLimitedByTheGroupAbove) {
    write("proc/self/cgroup", "0::/user/job\n");
    write("cgroup/user/job/memory.max", "max\n");
    write("cgroup/user/memory.max", "900000\n");
    write("cgroup/user/memory.current", "1000\n");
    EXPECT_EQ(available(), 899'000u);
}

TEST_F(Memory, IsLimitedByAControlGroupOfTheFirstVersion) {
    write("proc/self/cgroup", "3:cpu,cpuacct:/\n2:memory:/elsewhere\n");
    write("cgroup/memory/memory.limit_in_bytes", "800000\n");
    write("cgroup/memory/memory.usage_in_bytes", "900000\n");
    EXPECT_EQ(available(), 0u);
}

TEST_F(Memory, OfALargerModelIsLarger) {
    EXPECT_GT(memory_to_solve(10, 10, 21), memory_to_solve(10, 10, 20));
    EXPECT_GT(memory_to_solve(11, 10, 20), memory_to_solve(10, 10, 20));
    // A model of 100,000 rows and columns with five entries a row fits in 1 GB.
    EXPECT_LT(memory_to_solve(100'000, 100'000, 500'000), 1'000'000'000u);
    EXPECT_GT(memory_to_solve(100'000, 100'000, 500'000), 50'000'000u);
}

TEST_F(Memory, IsCheckedAgainstTheNeed) {
    EXPECT_NO_THROW(check_memory("file", 100, 100));
    EXPECT_NO_THROW(check_memory("file", 100, std::nullopt));
    try {
        check_memory("file", 5'000'000, 4'000'000);
        FAIL() << "too large a need was accepted";
    } catch (const error& found) {
        EXPECT_STREQ(found.what(),
                     "file: the model needs at least 6 MB of memory, and 4 MB are left");
    }
}

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
    void TearDown() override { fs::remove(file_); }

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
