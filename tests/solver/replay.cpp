#include "solver/replay.hpp"

#include <algorithm>
#include <cmath>
#include <optional>
#include <span>
#include <unordered_map>
#include <vector>

#include <boost/multiprecision/cpp_int.hpp>

namespace zero_half::testing {

namespace {

using boost::multiprecision::cpp_int;
using boost::multiprecision::cpp_rational;

/// Exact for the integers of most rows, and many times as fast as rationals.
__extension__ typedef __int128 wide_integer;

wide_integer floor_of_quotient(wide_integer n, wide_integer d) {
    return n / d - (n % d != 0 && n < 0 ? 1 : 0);
}

cpp_rational floor_of_quotient(const cpp_rational& n, const cpp_rational& d) {
    const cpp_rational value = n / d;
    const cpp_int numerator_of = numerator(value);
    const cpp_int quotient = numerator_of / denominator(value);
    const bool is_below = numerator_of < 0 && quotient * denominator(value) != numerator_of;
    return cpp_rational(is_below ? cpp_int(quotient - 1) : quotient);
}

bool is_integer(double value) {
    return std::trunc(value) == value;
}

/// a * x <= rhs with columns counted from 0.
struct row_view {
    std::vector<int> columns;
    std::span<const double> values;
    double rhs;
};

class replayer {
public:
    replayer(const model& program, const run_result& run) : model_(program), run_(run) {
        for (const auto* bounds : {&program.lower, &program.upper}) {
            for (const double bound : *bounds) {
                if (std::fabs(bound) < no_bound) {
                    largest_bound_ = std::max(largest_bound_, std::fabs(bound));
                    are_bounds_integers_ = are_bounds_integers_ && is_integer(bound);
                }
            }
        }
    }

    verdict all() {
        for (std::size_t i = 0; i < run_.pool.size(); ++i) {
            verdict_.cuts += i >= run_.first_cut ? 1 : 0;
            check(i);
        }
        return verdict_;
    }

private:
    void fault(std::size_t i, const std::string& what) {
        verdict_.faults.push_back("row " + std::to_string(i) + " " + what);
    }

    row_view row_of_pool(std::size_t i) const {
        row_view made{{}, run_.pool.coefficients(i), run_.pool.rhs(i)};
        for (const std::int32_t j : run_.pool.columns(i)) {
            made.columns.push_back(j - 1);
        }
        return made;
    }

    /// The row of a term; empty if the term must not use it: a later row, a negative multiplier of
    /// a row of the pool, or an infinite side.
    std::optional<row_view> term_of(std::size_t i, const row_origin::term& term) const {
        if (!term.is_model_row) {
            if (static_cast<std::size_t>(term.row) >= i || term.multiplier < 0.0) {
                return std::nullopt;
            }
            return row_of_pool(static_cast<std::size_t>(term.row));
        }
        const auto row = static_cast<std::size_t>(term.row);
        const double side = term.multiplier > 0.0 ? model_.row_upper[row] : model_.row_lower[row];
        if (side <= -no_bound || side >= no_bound) {
            return std::nullopt;
        }
        const int first = model_.rows.getVectorFirst(term.row);
        const int* const columns = model_.rows.getIndices() + first;
        const auto size = static_cast<std::size_t>(model_.rows.getVectorSize(term.row));
        return row_view{{columns, columns + size}, {model_.rows.getElements() + first, size}, side};
    }

    void check(std::size_t i) {
        const row_origin& origin = run_.pool.origin(i);
        std::vector<row_view> parts;
        for (const row_origin::term& term : origin.terms) {
            const auto part = term_of(i, term);
            if (!part) {
                return fault(i, "uses a row or a side that it must not use");
            }
            parts.push_back(*part);
        }
        if (!(origin.divisor > 0.0)) {
            return fault(i, "has a divisor that is not positive");
        }
        const row_view own = row_of_pool(i);
        for (std::size_t k = 0; k < own.columns.size(); ++k) {
            if (!is_integer(own.values[k]) ||
                model_.is_integer[static_cast<std::size_t>(own.columns[k])] == 0) {
                return fault(i, "has a fraction or a continuous column");
            }
        }
        if (are_small_integers(parts, own, origin)) {
            check_sum<wide_integer>(i, parts, own, origin);
        } else {
            check_sum<cpp_rational>(i, parts, own, origin);
        }
    }

    /// Whether no number of the computation has a fraction or exceeds 2^126.
    bool are_small_integers(const std::vector<row_view>& parts, const row_view& own,
                            const row_origin& origin) const {
        bool are_integers = are_bounds_integers_ && is_integer(origin.divisor);
        double sum = 0.0;
        const auto add = [&](double factor, const row_view& row) {
            double largest = std::fabs(row.rhs);
            are_integers = are_integers && is_integer(factor) && is_integer(row.rhs);
            for (const double value : row.values) {
                are_integers = are_integers && is_integer(value);
                largest = std::max(largest, std::fabs(value));
            }
            sum += std::fabs(factor) * largest * static_cast<double>(row.values.size() + 1);
        };
        for (std::size_t t = 0; t < parts.size(); ++t) {
            add(origin.terms[t].multiplier, parts[t]);
        }
        add(origin.divisor, own);
        return are_integers && sum * largest_bound_ < 0x1p126;
    }

    /// Everything is multiplied by the divisor. Adds the terms, substitutes a bound for each
    /// difference between the coefficients of the sum and of the row, and checks that the rounded
    /// right-hand side is at most that of the row.
    template <class Number>
    void check_sum(std::size_t i, const std::vector<row_view>& parts, const row_view& own,
                   const row_origin& origin) {
        std::unordered_map<int, Number> excess;
        Number rhs = 0;
        const auto add = [&](const Number& factor, const row_view& row) {
            for (std::size_t k = 0; k < row.columns.size(); ++k) {
                excess[row.columns[k]] += factor * static_cast<Number>(row.values[k]);
            }
        };
        for (std::size_t t = 0; t < parts.size(); ++t) {
            const auto multiplier = static_cast<Number>(origin.terms[t].multiplier);
            add(multiplier, parts[t]);
            rhs += multiplier * static_cast<Number>(parts[t].rhs);
        }
        const auto divisor = static_cast<Number>(origin.divisor);
        add(-divisor, own);
        for (const auto& [j, value] : excess) {
            if (value == 0) {
                continue;
            }
            const auto at = static_cast<std::size_t>(j);
            const double bound = value > 0 ? model_.lower[at] : model_.upper[at];
            if (bound <= -no_bound || bound >= no_bound) {
                return fault(i, "needs a bound that does not exist");
            }
            rhs -= value * static_cast<Number>(bound);
        }
        if (static_cast<Number>(own.rhs) < floor_of_quotient(rhs, divisor)) {
            fault(i, "has a smaller right-hand side than follows");
        }
    }

    const model& model_;
    const run_result& run_;
    double largest_bound_ = 1.0;
    bool are_bounds_integers_ = true;
    verdict verdict_;
};

} // namespace

verdict replay(const model& program, const run_result& run) {
    return replayer(program, run).all();
}

} // namespace zero_half::testing
