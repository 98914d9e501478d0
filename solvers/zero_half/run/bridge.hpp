#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "zktarn/zktarn_util.hpp"

namespace zero_half {

/// What is printed; the values are the host's codes.
enum class display : std::int32_t { off = 0, final = 1, iter = 2 };

/// A solve's way to the host: lines of progress, the output function, interrupts.
class bridge {
public:
    /// The host has the output function "tarnCallback" where that is told.
    bridge(display show, bool has_output_function);
    ~bridge();
    bridge(const bridge&) = delete;
    bridge& operator=(const bridge&) = delete;

    bool is_interrupted() const;
    bool is_stopped() const;

    /// Prints a line where rounds are shown.
    void print_round(const std::string& line) const;
    /// Tells the output function, where there is one, the phase, the round, its bound and all
    /// bounds so far. Its answer 1 stops the run.
    void report(const char* phase, int round, double bound, const std::vector<double>& history);

private:
    zktarn::callbacks_util::cbdata* data_ = nullptr;
    std::int32_t display_;
    std::int32_t indicator_;
    std::int32_t status_ = 0;
};

/// A generator of the host, taken back at the end.
class generator {
public:
    explicit generator(std::int32_t seed);
    ~generator() { zktarn::random::deleterng(state_); }
    generator(const generator&) = delete;
    generator& operator=(const generator&) = delete;

    zktarn::random::rng_state& state() { return state_; }

private:
    zktarn::random::rng_state state_;
};

} // namespace zero_half
