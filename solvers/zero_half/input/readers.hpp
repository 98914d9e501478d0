#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <utility>

#include "input/model.hpp"

/// The readers of the two formats. They do not check the model: `complete` does.

namespace zero_half {

/// Calls a stop predicate while a file is read: at every 10,000th step, because a call costs more
/// than reading a line.
class reading_poll {
public:
    explicit reading_poll(std::function<bool()> should_stop)
        : should_stop_(std::move(should_stop)) {}

    /// Counts a line or a row. Returns `is_stopped`.
    bool step() {
        constexpr int steps_a_call = 10'000;
        return ++steps_ % steps_a_call == 0 ? call() : is_stopped_;
    }
    /// Calls the predicate. Returns `is_stopped`.
    bool call() {
        is_stopped_ = is_stopped_ || (should_stop_ && should_stop_());
        return is_stopped_;
    }
    /// Whether the predicate has returned true.
    bool is_stopped() const { return is_stopped_; }

private:
    std::function<bool()> should_stop_;
    std::size_t steps_ = 0;
    bool is_stopped_ = false;
};

/// The text with '?' for every character that is not printable.
std::string printable(std::string text);

/// Reads an MPS file, plain or compressed by gzip, as fixed MPS, and if that fails as free MPS.
/// `source` is opened, `file` is the name in messages. Each line is a step of the poll. Throws
/// `error` when the file is not MPS or not supported, and when the poll stopped.
model read_mps(const std::string& source, const std::string& file, reading_poll& poll);

/// Whether the text begins like an LP file: after comments, with the sense of the objective.
bool begins_as_lp(const std::string& text);

/// Reads the text of an LP file: objective, rows with one side or two, bounds, generals, binaries.
/// A keyword stands at the beginning of a line. `file` is the name in messages. Each row is a step
/// of the poll; after it stopped, the result is not the model.
///
/// Throws `error` with the number of the line for anything else: sets, semi-continuous columns,
/// quadratic and logical parts, lazy rows, a column that occurs twice in a row, a text without End.
model read_lp(const std::string& text, const std::string& file, reading_poll& poll);

} // namespace zero_half
