#include "binary/identity/procedures.hpp"
#include "binary/identity/sparse.hpp"
#include "property/reports_pass.hpp"
#include "zktarn/vector/vector_mod.hpp"

namespace zktarn::identity {

namespace {

using namespace vector_mod;

void call_rem_zeros(draws& draw, digest& results) {
    const std::int32_t n = drawn_size(draw);
    sparse v(draw, n, draw.chance(3) ? with_list : with_marks);
    vector_rem_zeros(v.record);
    v.add_to(results);
}

void call_combine(draws& draw, digest& results) {
    const std::int32_t n = drawn_size(draw);
    const form x_form = drawn_form(draw);
    sparse x(draw, n, x_form);
    const form y_form = drawn_form(draw);
    const sparse y(draw, n, y_form);
    const double alpha = draw.factor();
    const double beta = draw.factor();
    const double tol = draw.tolerance();
    const bool with_itself = draw.chance(6);
    vectors_combine(x.record, with_itself ? x.record : y.record, alpha, beta, tol);
    x.add_to(results);
}

void call_sym_diff(draws& draw, digest& results) {
    const std::int32_t n = drawn_size(draw);
    sparse x(draw, n, draw.chance(2) ? with_marks : support_only);
    const sparse y(draw, n, draw.chance(2) ? with_list : support_only);
    const bool with_itself = draw.chance(10);
    vectors_calc_sym_diff(x.record, with_itself ? x.record : y.record);
    x.add_to(results);
}

void call_mod2(draws& draw, digest& results) {
    const std::int32_t n = drawn_size(draw);
    sparse v(draw, n, draw.chance(3) ? with_list : with_marks);
    const double tol = draw.tolerance();
    vector_mod2(v.record, tol);
    v.add_to(results);
}

/// Usually a copy with one coefficient changed a little, because two random vectors rarely match.
void call_are_identical(draws& draw, digest& results) {
    const std::int32_t n = drawn_size(draw);
    const sparse a(draw, n, with_marks);
    sparse b(a);
    const std::int32_t j = draw.between(1, n);
    const double change = draw.tolerance();
    if (!draw.chance(3)) {
        vector_set_coef(b.record, j, b.record.coef(j) + change);
    }
    if (draw.chance(8)) {
        vector_rem_elm(b.record, j);
    }
    const double tol = draw.tolerance();
    results.integer(vectors_are_identical(a.record, b.record, tol));
}

constexpr int calls = 4000;

constexpr procedure procedures[] = {
    {"vector_mod.vector_rem_zeros", call_rem_zeros, calls},
    {"vector_mod.vectors_combine", call_combine, 2 * calls},
    {"vector_mod.vectors_calc_sym_diff", call_sym_diff, calls},
    {"vector_mod.vector_mod2", call_mod2, calls},
    {"vector_mod.vectors_are_identical", call_are_identical, calls},
};

} // namespace

std::span<const procedure> whole_vector_procedures() {
    return procedures;
}

} // namespace zktarn::identity
