#pragma once

#include <stdexcept>

namespace zero_half {

/// An error in a file or a model, as one sentence for the user.
class error : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

} // namespace zero_half
