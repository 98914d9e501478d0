#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "run/run.hpp"
#include "zktarn/zktarn_util.hpp"

namespace zero_half {

/// The connection of a run with the host: printed lines, the output function, interrupts.
class bridge {
public:
    /// `has_output_function` says whether the host has the function "tarnCallback".
    bridge(display show, bool has_output_function);
    ~bridge();
    bridge(const bridge&) = delete;
    bridge& operator=(const bridge&) = delete;

    bool is_interrupted() const;
    /// Whether the output function asked to stop.
    bool is_stopped() const;

    /// Prints the line when the display shows rounds.
    void print_round(const std::string& line) const;
    /// Calls the output function, if there is one, with the phase, the round, its bound and all
    /// bounds so far. The run stops when it returns 1.
    void report(const char* phase, int round, double bound, const std::vector<double>& history);

private:
    zktarn::callbacks_util::cbdata* data_ = nullptr;
    std::int32_t display_;
    std::int32_t indicator_;
    std::int32_t status_ = 0;
};

} // namespace zero_half
