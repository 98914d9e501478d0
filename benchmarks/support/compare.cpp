#include "support/compare.hpp"

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <ctime>
#include <functional>
#include <memory>
#include <numeric>
#include <random>

namespace zktarn::bench {

namespace {

/// Processor time of this thread in nanoseconds, without the time of other processes.
double processor_time() {
    std::timespec now{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) * 1e9 + static_cast<double>(now.tv_nsec);
}

/// The least number of rounds of a comparison. ZKTARN_BENCH_ROUNDS=1 only shows that a program
/// runs.
std::size_t least_rounds() {
    const char* const rounds = std::getenv("ZKTARN_BENCH_ROUNDS");
    return rounds == nullptr ? 15 : std::strtoul(rounds, nullptr, 10);
}

/// Long compared with the resolution of the clock, short compared with the system's time slices.
constexpr double round_target = 20'000.0;

double median(std::vector<double> values) {
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

/// The nanoseconds of `repetitions`.
double timed(const contender& each, std::int64_t repetitions) {
    if (each.prepare) {
        each.prepare(repetitions);
    }
    const double start = processor_time();
    each.run(repetitions);
    return processor_time() - start;
}

class comparison {
public:
    comparison(std::vector<contender> contenders, std::int64_t most_repetitions)
        : contenders_(std::move(contenders)), order_(contenders_.size()),
          most_repetitions_(most_repetitions) {
        std::iota(order_.begin(), order_.end(), std::size_t{0});
    }

    void measure(benchmark::State& state) {
        if (repetitions_ == 0) {
            calibrate();
        }
        std::vector<std::vector<double>> times(contenders_.size());
        for ([[maybe_unused]] auto _ : state) {
            state.SetIterationTime(round(times) * 1e-9);
        }
        while (times.front().size() < least_rounds()) {
            round(times);
        }
        report(times, state);
    }

private:
    /// Doubles the repetitions until the fastest contender takes as long as a round should.
    void calibrate() {
        repetitions_ = 1;
        fastest(); // The first run is slower, because pages and caches are cold.
        while (repetitions_ < most_repetitions_ && fastest() < round_target) {
            repetitions_ *= 2;
        }
    }

    double fastest() const {
        double least = timed(contenders_.front(), repetitions_);
        for (const contender& each : contenders_) {
            least = std::min(least, timed(each, repetitions_));
        }
        return least;
    }

    /// Records each contender's time for one repetition. Returns the time of the whole round.
    double round(std::vector<std::vector<double>>& times) {
        std::shuffle(order_.begin(), order_.end(), generator_);
        double total = 0;
        for (const std::size_t i : order_) {
            const double time = timed(contenders_[i], repetitions_);
            times[i].push_back(time / static_cast<double>(repetitions_));
            total += time;
        }
        return total;
    }

    void report(const std::vector<std::vector<double>>& times, benchmark::State& state) const {
        state.counters["rounds"] = static_cast<double>(times.front().size());
        for (std::size_t i = 0; i < contenders_.size(); ++i) {
            state.counters[contenders_[i].name + "_ns"] = median(times[i]);
            if (i > 0) {
                std::vector<double> ratios(times[0].size());
                std::transform(times[0].begin(), times[0].end(), times[i].begin(), ratios.begin(),
                               std::divides<>{});
                state.counters[contenders_[0].name + "/" + contenders_[i].name] = median(ratios);
            }
        }
    }

    std::vector<contender> contenders_;
    std::vector<std::size_t> order_;
    std::int64_t most_repetitions_;
    std::int64_t repetitions_ = 0;
    std::mt19937 generator_{1};
};

} // namespace

void compare(const std::string& name, std::vector<contender> contenders,
             std::int64_t most_repetitions) {
    const auto shared = std::make_shared<comparison>(std::move(contenders), most_repetitions);
    benchmark::RegisterBenchmark(name.c_str(),
                                 [shared](benchmark::State& state) { shared->measure(state); })
        ->UseManualTime()
        ->Unit(benchmark::kMicrosecond);
}

} // namespace zktarn::bench
