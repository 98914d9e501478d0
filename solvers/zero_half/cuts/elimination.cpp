#include "cuts/searches.hpp"

#include <algorithm>
#include <bit>
#include <limits>
#include <numeric>
#include <utility>

#include "cuts/hashing.hpp"

namespace zero_half {

namespace {

/// The rows with the least slack: all, or as many as an elimination can process within a limit on
/// the words that it touches.
std::vector<std::size_t> rows_with_least_slack(const parity_system& system) {
    constexpr double most_words = 3e8;
    const auto columns = static_cast<double>(system.columns());
    auto count = static_cast<double>(system.rows());
    while (count * columns * (count + columns) / 64.0 > most_words) {
        count *= 0.9;
    }
    std::vector<std::size_t> rows(system.rows());
    std::iota(rows.begin(), rows.end(), std::size_t{0});
    const auto kept = static_cast<std::size_t>(count);
    if (kept < rows.size()) {
        std::nth_element(rows.begin(), rows.begin() + static_cast<std::ptrdiff_t>(kept), rows.end(),
                         [&](std::size_t a, std::size_t b) {
                             return std::pair(system.value(system.slack_of(a)), a) <
                                    std::pair(system.value(system.slack_of(b)), b);
                         });
        rows.resize(kept);
    }
    return rows;
}

/// The seed of an elimination's own random numbers. It is the only number that the elimination
/// draws from the generator, because each draw is a call of the host.
std::uint64_t seed_of(const zktarn::random::rng_state& random) {
    return static_cast<std::uint64_t>(0x1p53 * zktarn::random::rand_number(random));
}

class elimination {
public:
    elimination(const parity_system& system, const zktarn::random::rng_state& random);

    void run(const stop_predicate& should_stop, odd_sums& sums);

private:
    static constexpr std::size_t word_bits = 64;

    static std::size_t lowest(std::uint64_t word) {
        return static_cast<std::size_t>(std::countr_zero(word));
    }

    std::span<std::uint64_t> bits(std::size_t row) {
        return std::span(words_).subspan(row * width_, width_);
    }
    bool has(std::size_t row, std::size_t bit) const {
        return (words_[row * width_ + bit / word_bits] >> (bit % word_bits) & 1u) != 0;
    }
    void set(std::size_t row, std::size_t bit) {
        words_[row * width_ + bit / word_bits] |= std::uint64_t{1} << (bit % word_bits);
    }
    std::vector<std::int32_t> column_order();
    double random_number();
    std::size_t best_pivot(std::span<const std::size_t> rows) const;
    void add(std::size_t pivot, std::size_t row);
    /// The first bits of a row stand for the slacks of `members_`, the others for the columns.
    std::int32_t element_of(std::size_t bit) const {
        return bit < members_.size() ? system_.slack_of(members_[bit])
                                     : static_cast<std::int32_t>(bit - members_.size()) + 1;
    }
    std::size_t bit_of(std::int32_t column) const {
        return members_.size() + static_cast<std::size_t>(column) - 1;
    }
    void set_slack(std::size_t row);
    void offer(std::size_t row, odd_sums& sums);
    void eliminate(std::int32_t column, odd_sums& sums);

    const parity_system& system_;
    std::uint64_t random_state_;
    /// The rows of the system that take part.
    std::vector<std::size_t> members_;
    /// The number of words of a row.
    std::size_t width_;
    std::vector<std::uint64_t> words_;
    std::vector<char> is_odd_;
    /// For each row, which is a sum of members, the total slack of these members.
    std::vector<double> slack_;
    /// A small random number for each row, which decides between pivots with equal slack.
    std::vector<double> perturbation_;
    /// The rows that have not been pivots, and whose slack is below the limit.
    std::vector<std::size_t> remaining_;
    /// Those of them that contain the column being eliminated.
    std::vector<std::size_t> rows_;
    std::vector<std::int32_t> odd_;
};

elimination::elimination(const parity_system& system, const zktarn::random::rng_state& random)
    : system_(system), random_state_(seed_of(random)), members_(rows_with_least_slack(system)),
      width_((static_cast<std::size_t>(system.columns()) + members_.size() + word_bits - 1) /
             word_bits),
      words_(width_ * members_.size()) {
    constexpr double perturbation = 1e-3;
    for (std::size_t row = 0; row < members_.size(); ++row) {
        for (const std::int32_t column : system.odd_columns(members_[row])) {
            set(row, bit_of(column));
        }
        set(row, row);
        is_odd_.push_back(system.is_odd(members_[row]) ? 1 : 0);
        slack_.push_back(system.value(system.slack_of(members_[row])));
        perturbation_.push_back(perturbation * random_number());
        remaining_.push_back(row);
    }
}

/// A number in [0, 1).
double elimination::random_number() {
    return static_cast<double>(mixed(random_state_++) >> 11) * 0x1p-53;
}

std::vector<std::int32_t> elimination::column_order() {
    std::vector<std::pair<double, std::int32_t>> keys;
    for (std::int32_t column = 1; column <= system_.columns(); ++column) {
        keys.emplace_back(-system_.value(column) * (0.5 + random_number()), column);
    }
    std::sort(keys.begin(), keys.end());
    std::vector<std::int32_t> order(keys.size());
    std::transform(keys.begin(), keys.end(), order.begin(),
                   [](const auto& key) { return key.second; });
    return order;
}

std::size_t elimination::best_pivot(std::span<const std::size_t> rows) const {
    std::size_t best = rows.front();
    double least = std::numeric_limits<double>::infinity();
    for (const std::size_t row : rows) {
        const double key = slack_[row] + perturbation_[row];
        if (key < least) {
            least = key;
            best = row;
        }
    }
    return best;
}

void elimination::add(std::size_t pivot, std::size_t row) {
    const std::span<const std::uint64_t> summand = bits(pivot);
    const std::span<std::uint64_t> sum = bits(row);
    for (std::size_t w = 0; w < width_; ++w) {
        sum[w] ^= summand[w];
    }
    is_odd_[row] = is_odd_[row] != is_odd_[pivot] ? 1 : 0;
}

/// Computes the total slack of the members in the sum. Stops adding once the limit is reached.
void elimination::set_slack(std::size_t row) {
    double slack = 0.0;
    const std::span<const std::uint64_t> words = bits(row);
    for (std::size_t bit = 0; bit < members_.size() && slack < slack_limit; bit += word_bits) {
        std::uint64_t rest = words[bit / word_bits];
        for (; rest != 0 && bit + lowest(rest) < members_.size(); rest &= rest - 1) {
            slack += system_.value(element_of(bit + lowest(rest)));
        }
    }
    slack_[row] = slack;
}

/// Adds the row to `sums` if it is violated.
void elimination::offer(std::size_t row, odd_sums& sums) {
    odd_.clear();
    double slack = 0.0;
    const std::span<const std::uint64_t> words = bits(row);
    for (std::size_t w = 0; w < width_; ++w) {
        for (std::uint64_t rest = words[w]; rest != 0; rest &= rest - 1) {
            const std::int32_t element = element_of(w * word_bits + lowest(rest));
            slack += system_.value(element);
            if (slack >= slack_limit) {
                return;
            }
            odd_.push_back(element);
        }
    }
    sums.add_if_violated(odd_, is_odd_[row] != 0);
}

/// Discards sums whose members have too much slack. Such a sum can become violated only by the
/// addition of another sum of nearly the same members.
void elimination::eliminate(std::int32_t column, odd_sums& sums) {
    rows_.clear();
    for (const std::size_t row : remaining_) {
        if (has(row, bit_of(column))) {
            rows_.push_back(row);
        }
    }
    if (rows_.empty()) {
        return;
    }
    const std::size_t pivot = best_pivot(rows_);
    for (const std::size_t row : rows_) {
        if (row != pivot) {
            add(pivot, row);
            set_slack(row);
            if (slack_[row] < slack_limit) {
                offer(row, sums);
            }
        }
    }
    std::erase_if(remaining_,
                  [&](std::size_t row) { return row == pivot || slack_[row] >= slack_limit; });
}

void elimination::run(const stop_predicate& should_stop, odd_sums& sums) {
    for (const std::int32_t column : column_order()) {
        if (should_stop()) {
            return;
        }
        eliminate(column, sums);
    }
}

} // namespace

void find_by_elimination(const parity_system& system, const zktarn::random::rng_state& random,
                         const stop_predicate& should_stop, odd_sums& sums) {
    elimination(system, random).run(should_stop, sums);
}

} // namespace zero_half
