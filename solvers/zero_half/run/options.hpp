#pragma once

#include <cstdint>
#include <functional>
#include <optional>

#include "cuts/separation.hpp"
#include "input/memory.hpp"

namespace zero_half {

/// What is printed. The values are the host's codes.
enum class display : std::int32_t { off = 0, final = 1, iter = 2 };

struct run_options {
    int rounds = 1000;
    double seconds = 60.0;
    /// The part of these seconds that was used before the run, to read the model.
    double seconds_used = 0.0;
    /// Seed of the host's generator.
    std::int32_t seed = 1;
    display show = display::iter;
    bool has_output_function = false;
    /// The integer optimum; empty if it is unknown.
    std::optional<double> optimum = {};
    /// The run ends when this share of the gap between relaxation and optimum is closed, in per
    /// cent.
    double stop_at_gap = 100.0;
    /// The run ends after so many rounds in succession that did not raise the bound.
    int most_stalled_rounds = 15;
    /// Cuts that were slack for so many rounds are dropped.
    int most_slack_rounds = 5;
    /// The most other vertices of the optimal face that a round separates.
    int most_other_points = 40;
    separation_options separation = {};
    /// The bytes that may still be allocated. The run ends before a round that may need more.
    std::function<std::optional<std::uint64_t>()> memory_left = [] { return available_memory(); };
};

} // namespace zero_half
