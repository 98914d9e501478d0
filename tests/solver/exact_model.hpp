#pragma once

#include <optional>
#include <utility>
#include <vector>

#include <boost/multiprecision/cpp_int.hpp>

namespace zero_half::testing {

using rational = boost::multiprecision::number<boost::multiprecision::cpp_rational::backend_type,
                                               boost::multiprecision::et_off>;

struct exact_range {
    std::optional<rational> lower = {};
    std::optional<rational> upper = {};
};

/// A mixed-integer program in rational numbers: a range for each row and column. Columns are
/// counted from 0.
struct exact_model {
    struct row {
        std::vector<std::pair<int, rational>> entries = {};
        exact_range range = {};
    };
    std::vector<row> rows = {};
    std::vector<exact_range> columns = {};
    std::vector<char> is_integer = {};
    std::vector<rational> objective = {};
    rational constant = 0;
    bool is_maximised = false;

    int column_count() const { return static_cast<int>(columns.size()); }
};

} // namespace zero_half::testing
