#pragma once

#include <stdexcept>

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

} // namespace zero_half
