#include "solver/replay.hpp"

#include <algorithm>
#include <map>
#include <optional>

#include <boost/multiprecision/cpp_int.hpp>

namespace zero_half::testing {

namespace {

using boost::multiprecision::cpp_int;
using boost::multiprecision::cpp_rational;

cpp_int floor_of(const cpp_rational& value) {
    const cpp_int n = numerator(value);
    const cpp_int d = denominator(value);
    const cpp_int quotient = n / d;
    return n < 0 && quotient * d != n ? cpp_int(quotient - 1) : quotient;
}

/// a * x <= rhs with columns numbered from 1.
struct exact_row {
    std::map<int, cpp_rational> a;
    cpp_rational rhs;
};

exact_row row_of_pool(const row_pool& pool, std::size_t i) {
    exact_row made;
    for (std::size_t k = 0; k < pool.columns(i).size(); ++k) {
        made.a[pool.columns(i)[k]] = cpp_rational(pool.coefficients(i)[k]);
    }
    made.rhs = cpp_rational(pool.rhs(i));
    return made;
}

class replayer {
public:
    replayer(const model& program, const run_result& run) : model_(program), run_(run) {}

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

    /// The row of a term; empty if the term must not use it: a later row, a negative multiplier of
    /// a row of the pool, or an infinite side.
    std::optional<exact_row> term_of(std::size_t i, const row_origin::term& term) const {
        const cpp_rational multiplier(term.multiplier);
        if (!term.is_model_row) {
            if (static_cast<std::size_t>(term.row) >= i || multiplier < 0) {
                return std::nullopt;
            }
            return row_of_pool(run_.pool, static_cast<std::size_t>(term.row));
        }
        const auto row = static_cast<std::size_t>(term.row);
        const double side = multiplier > 0 ? model_.row_upper[row] : model_.row_lower[row];
        if (side <= -no_bound || side >= no_bound) {
            return std::nullopt;
        }
        exact_row made;
        made.rhs = cpp_rational(side);
        const int first = model_.rows.getVectorFirst(term.row);
        for (int k = first; k < first + model_.rows.getVectorSize(term.row); ++k) {
            made.a[model_.rows.getIndices()[k] + 1] = cpp_rational(model_.rows.getElements()[k]);
        }
        return made;
    }

    /// Sums the terms, substitutes a bound for each difference between the sum's coefficients and
    /// the row's, and checks that the rounded right-hand side is at most the row's.
    void check(std::size_t i) {
        const exact_row own = row_of_pool(run_.pool, i);
        const row_origin& origin = run_.pool.origin(i);
        exact_row sum;
        for (const row_origin::term& term : origin.terms) {
            const auto part = term_of(i, term);
            if (!part) {
                return fault(i, "uses a row or a side that it must not use");
            }
            const cpp_rational factor =
                cpp_rational(term.multiplier) / cpp_rational(origin.divisor);
            for (const auto& [j, value] : part->a) {
                sum.a[j] += factor * value;
            }
            sum.rhs += factor * part->rhs;
        }
        if (origin.divisor <= 0.0) {
            return fault(i, "has a divisor that is not positive");
        }
        for (const auto& [j, value] : own.a) {
            if (denominator(value) != 1 ||
                model_.is_integer[static_cast<std::size_t>(j) - 1] == 0) {
                return fault(i, "has a fraction or a continuous column");
            }
            sum.a[j] -= value;
        }
        for (const auto& [j, excess] : sum.a) {
            const auto at = static_cast<std::size_t>(j) - 1;
            const double bound = excess > 0 ? model_.lower[at] : model_.upper[at];
            if (excess != 0 && (bound <= -no_bound || bound >= no_bound)) {
                return fault(i, "needs a bound that does not exist");
            }
            sum.rhs -= excess * (excess != 0 ? cpp_rational(bound) : cpp_rational(0));
        }
        if (own.rhs < cpp_rational(floor_of(sum.rhs))) {
            fault(i, "has a smaller right-hand side than follows");
        }
    }

    const model& model_;
    const run_result& run_;
    verdict verdict_;
};

} // namespace

verdict replay(const model& program, const run_result& run) {
    return replayer(program, run).all();
}

} // namespace zero_half::testing
