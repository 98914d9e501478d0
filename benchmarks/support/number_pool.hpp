#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "support/compare.hpp"

/// Inputs of pure procedures, held ready in an array.
///
/// A branch predictor learns repeated inputs. The array therefore holds more than it can learn, and
/// each round starts at another position. Lines that end in `trained` use few inputs on purpose.

namespace zktarn::bench {

inline constexpr std::size_t many_inputs = std::size_t{1} << 17;
inline constexpr std::size_t few_inputs = 32;

template <class Input>
class number_pool {
public:
    /// @param inputs  a power of two of them.
    explicit number_pool(std::vector<Input> inputs) : inputs_(std::move(inputs)) {}

    void move_on() { start_ += 4099; }

    const Input& operator[](std::int64_t i) const {
        return inputs_[(start_ + static_cast<std::size_t>(i)) & (inputs_.size() - 1)];
    }

private:
    std::vector<Input> inputs_;
    std::size_t start_ = 0;
};

/// A contender that does `job(input)` for one input after the other.
template <class Input, class Job>
contender on_inputs(std::string name, const std::shared_ptr<number_pool<Input>>& pool, Job job) {
    return doing(
        std::move(name), [=](std::int64_t i) { benchmark::DoNotOptimize(job((*pool)[i])); },
        [=](std::int64_t) { pool->move_on(); });
}

} // namespace zktarn::bench
