#pragma once

#include <cstddef>
#include <functional>
#include <stdexcept>
#include <utility>

namespace zero_half {

/// An error in a file or a model, as one sentence for the user.
class error : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// Thrown when the stop predicate ends the reading of a file.
class stopped : public error {
public:
    using error::error;
};

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

} // namespace zero_half
