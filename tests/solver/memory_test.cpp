#include <filesystem>
#include <fstream>
#include <optional>
#include <string>

#include <unistd.h>

#include <gtest/gtest.h>

#include "input/error.hpp"
#include "input/memory.hpp"

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

} // namespace zero_half::testing
