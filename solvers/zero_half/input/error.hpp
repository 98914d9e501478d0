#pragma once

#include <stdexcept>

namespace zero_half {

/// What is wrong with a file or a model, as one sentence for the user.
class error : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

} // namespace zero_half
