#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include <benchmark/benchmark.h>

/// Contenders that do the same job, timed side by side in one process.
///
/// A comparison runs in rounds. In each round every contender does the job the same number of
/// times, in a new random order, so that a slowdown of the machine affects all of them equally.
/// Reported are medians over the rounds: the time of one repetition for each contender, and the
/// ratio of the first contender's time to that of each other contender in the same round.

namespace zktarn::bench {

struct contender {
    std::string name;
    /// Does the job that many times; only this is timed.
    std::function<void(std::int64_t repetitions)> run;
    /// Makes fresh input for that many repetitions, before each `run` and untimed; may be empty.
    std::function<void(std::int64_t repetitions)> prepare;
};

/// A contender that does `job(i)` for i = 0, 1, ...: with fresh input, i is the number of the
/// input.
template <class Job>
contender doing(std::string name, Job job,
                std::function<void(std::int64_t repetitions)> prepare = {}) {
    auto run = [job](std::int64_t repetitions) {
        for (std::int64_t i = 0; i < repetitions; ++i) {
            job(i);
        }
    };
    return {std::move(name), std::move(run), std::move(prepare)};
}

/// Registers a comparison of the first contender with each other one.
///
/// A round repeats the job until it can be timed well, but not more often than `most_repetitions`,
/// which bounds the fresh input that must be held at a time.
void compare(const std::string& name, std::vector<contender> contenders,
             std::int64_t most_repetitions = std::int64_t{1} << 20);

/// The arguments of the program that are not options. A program that never calls this function
/// refuses such arguments.
const std::vector<std::string>& operands();

/// Registers all comparisons of a program; every benchmark program defines it. An exception ends
/// the program with its message.
void register_comparisons();

} // namespace zktarn::bench
