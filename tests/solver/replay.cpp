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

/// a * x <= rhs, columns counted from 1.
struct exact_row {
    std::map<int, cpp_rational> a;
    cpp_rational rhs;
};

exact_row claimed(const integral_row& row) {
    exact_row made;
    for (const auto [j, coefficient] : zktarn::entries(row.coefficients)) {
        made.a[j] = cpp_rational(coefficient);
    }
    made.rhs = cpp_rational(row.rhs);
    return made;
}

class replayer {
public:
    replayer(const model& program, const run_result& run) : model_(program), run_(run) {}

    verdict all() {
        for (std::size_t i = 0; i < run_.pool.size(); ++i) {
            const integral_row& row = run_.pool[i];
            const exact_row says = claimed(row);
            const bool is_cut = row.origin.model_row < 0;
            verdict_.cuts += is_cut ? 1 : 0;
            if (is_cut) {
                check_cut(i, row, says);
            } else {
                check_model_row(i, row, says);
            }
        }
        return verdict_;
    }

private:
    void fault(std::size_t i, const std::string& what) {
        verdict_.faults.push_back("row " + std::to_string(i) + " " + what);
    }

    /// The most that rounding a coefficient adds to the left-hand side; nothing without a bound.
    std::optional<cpp_rational> most_added(int j, const cpp_rational& error) const {
        const auto at = static_cast<std::size_t>(j - 1);
        const double bound = error > 0 ? model_.upper[at] : model_.lower[at];
        if (error != 0 && (bound <= -no_bound || bound >= no_bound)) {
            return std::nullopt;
        }
        return error == 0 ? cpp_rational(0) : cpp_rational(error * cpp_rational(bound));
    }

    void check_model_row(std::size_t i, const integral_row& row, exact_row says) {
        const int r = row.origin.model_row;
        const auto at = static_cast<std::size_t>(r);
        const cpp_rational scale(row.origin.scale);
        const double bound = scale > 0 ? model_.row_upper[at] : model_.row_lower[at];
        if (bound <= -no_bound || bound >= no_bound) {
            return fault(i, "comes from a side of its row that is infinite");
        }
        cpp_rational rhs = scale * cpp_rational(bound);
        const int first = model_.rows.getVectorFirst(r);
        for (int k = 0; k < model_.rows.getVectorSize(r); ++k) {
            const int j = model_.rows.getIndices()[first + k] + 1;
            const cpp_rational exact = scale * cpp_rational(model_.rows.getElements()[first + k]);
            const auto added = most_added(j, cpp_rational(says.a[j] - exact));
            if (!added) {
                return fault(i, "has a rounded coefficient without a bound");
            }
            rhs += *added;
            says.a.erase(j);
        }
        if (!says.a.empty()) {
            fault(i, "has a column that its row does not have");
        }
        if (says.rhs < cpp_rational(floor_of(rhs))) {
            fault(i, "has too small a right-hand side");
        }
    }

    void check_cut(std::size_t i, const integral_row& row, const exact_row& says) {
        exact_row sum;
        for (const int member : row.origin.summed) {
            if (static_cast<std::size_t>(member) >= i) {
                return fault(i, "is a sum that includes a later row");
            }
            const exact_row part = claimed(run_.pool[static_cast<std::size_t>(member)]);
            for (const auto& [j, value] : part.a) {
                sum.a[j] += value;
            }
            sum.rhs += part.rhs;
        }
        const std::optional<exact_row> derived = halved(sum, row.origin.complemented);
        if (!derived) {
            return fault(i, "was rounded in a column that has no bound or is not integer");
        }
        compare(i, says, *derived);
    }

    /// The row may be the derived one divided by an integer and rounded down once more.
    void compare(std::size_t i, const exact_row& says, const exact_row& derived) {
        if (says.a.empty() || derived.a.count(says.a.begin()->first) == 0) {
            return fault(i, "has another first column than is derived");
        }
        const cpp_rational factor = derived.a.begin()->second / says.a.begin()->second;
        if (factor <= 0 || denominator(factor) != 1 || says.a.size() != derived.a.size()) {
            return fault(i, "is not a divisor of what is derived");
        }
        for (const auto& [j, value] : derived.a) {
            const auto own = says.a.find(j);
            if (own == says.a.end() || own->second * factor != value) {
                return fault(i, "has another coefficient than is derived");
            }
            if (denominator(own->second) != 1) {
                return fault(i, "has a coefficient that is no integer");
            }
        }
        if (says.rhs < cpp_rational(floor_of(derived.rhs / factor))) {
            fault(i, "has a smaller right-hand side than is derived");
        }
    }

    /// The sum halved and rounded down. Nothing where a coefficient is rounded and its column is
    /// not integer or lacks the bound.
    std::optional<exact_row> halved(const exact_row& sum,
                                    const std::vector<int>& complemented) const {
        exact_row made;
        cpp_rational rhs = sum.rhs;
        cpp_rational moved = 0;
        for (const auto& [j, value] : sum.a) {
            const bool is_upper =
                std::find(complemented.begin(), complemented.end(), j) != complemented.end();
            const auto at = static_cast<std::size_t>(j - 1);
            const double bound = is_upper ? model_.upper[at] : model_.lower[at];
            const bool has_bound = bound > -no_bound && bound < no_bound;
            const cpp_rational b(has_bound ? bound : 0.0);
            const cpp_rational own = is_upper ? cpp_rational(-value) : value;
            const cpp_rational half = cpp_rational(floor_of(own / 2));
            if (model_.is_integer[at] == 0 || (!has_bound && half * 2 != own)) {
                return std::nullopt;
            }
            rhs -= value * b;
            moved += is_upper ? cpp_rational(-half * b) : cpp_rational(half * b);
            if (half != 0) {
                made.a[j] = is_upper ? cpp_rational(-half) : half;
            }
        }
        made.rhs = cpp_rational(floor_of(rhs / 2)) + moved;
        return made;
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
