// The methods of `Vector` that work on whole vectors.

#include <cmath>

#include "vector_checks.hpp"
#include "zktarn/vector/vector_mod.hpp"

namespace zktarn::python {

namespace {

using namespace vector_mod;

PyObject* clean_index(vector_object& v) {
    if (v.record->nz >= 1) {
        needs_marks_mode(v, "clean_index");
        needs_elements(v, "clean_index");
    }
    vector_clean_index(*v.record);
    return none();
}

PyObject* clear(vector_object& v) {
    if (v.record->nz >= 1) {
        needs_marks_mode(v, "clear");
        needs_elements(v, "clear");
    }
    vector_clear(*v.record);
    return none();
}

PyObject* rem_zeros(vector_object& v) {
    if (v.record->nz >= 1) {
        needs_coef(v, "rem_zeros");
        needs_elements(v, "rem_zeros");
    }
    vector_rem_zeros(*v.record);
    return none();
}

constexpr parameters<4> combine_parameters{"combine", 4, {"y", "alpha", "beta", "tol"}};
PyObject* combine(vector_object& x, argument_list<4> given) {
    const vector_object& y = to_vector(given[0], "y");
    const double alpha = to_real(given[1], "alpha");
    const double beta = to_real(given[2], "beta");
    const double tol = to_real(given[3], "tol");
    needs_elements(x, "combine");
    needs_common_elements(x, y, "combine");
    if (std::fabs(beta) > tol) {
        needs_room(x, y, "combine");
    }
    vectors_combine(*x.record, *y.record, alpha, beta, tol);
    return none();
}

constexpr parameters<1> sym_diff_parameters{"sym_diff", 1, {"y"}};
PyObject* sym_diff(vector_object& x, argument_list<1> given) {
    const vector_object& y = to_vector(given[0], "y");
    if (y.record->nz >= 1) {
        needs_marks_mode(x, "sym_diff");
        needs_elements(x, "sym_diff");
        needs_common_elements(x, y, "sym_diff");
        needs_room(x, y, "sym_diff");
    }
    vectors_calc_sym_diff(*x.record, *y.record);
    return none();
}

constexpr parameters<1> mod2_parameters{"mod2", 1, {"tol"}};
PyObject* mod2(vector_object& v, argument_list<1> given) {
    const double tol = to_real(given[0], "tol");
    if (v.record->nz >= 1) {
        needs_coef(v, "mod2");
        needs_elements(v, "mod2");
    }
    vector_mod2(*v.record, tol);
    return none();
}

constexpr parameters<2> is_identical_parameters{"is_identical", 2, {"other", "tol"}};
PyObject* is_identical(vector_object& a, argument_list<2> given) {
    const vector_object& b = to_vector(given[0], "other");
    const double tol = to_real(given[1], "tol");
    if (a.record->nz >= 1 && a.record->nz == b.record->nz) {
        needs_coef(a, "is_identical");
        needs_coef(b, "is_identical");
        needs_elm(b, "is_identical");
        needs_common_elements(b, a, "is_identical");
    }
    return PyBool_FromLong(vectors_are_identical(*a.record, *b.record, tol) != 0);
}

} // namespace

PyMethodDef operation_methods[] = {
    plain_method<clean_index>("clean_index", R"(clean_index($self)
--

Removes the mark of every listed element. List and nz stay.

Does nothing if nz is 0. ValueError: nz is at least 1, and the vector has no marks.
Takes time proportional to nz. C++: vector_mod::vector_clean_index.)"),
    plain_method<clear>("clear", R"(clear($self)
--

Removes every entry: the mark of every listed element becomes 0, and so does nz.

Coefficients stay in `coef` and are not read any more. Does nothing if nz is 0. ValueError: nz is at
least 1, and the vector has no marks; in list mode use `x.nz = 0`.
Takes time proportional to nz. C++: vector_mod::vector_clear.)"),
    plain_method<rem_zeros>("rem_zeros", R"(rem_zeros($self)
--

Drops every listed entry whose coefficient is 0.0 or -0.0, or which has no mark. NaN is kept.

Tests position 1, 2, ... in turn; a dropped entry is replaced by the last one, which is tested next.
Does nothing if nz is 0, nor in dense mode. ValueError: nz is at least 1, and the vector has no
coefficients. Takes time proportional to nz. C++: vector_mod::vector_rem_zeros.)"),
    method<combine_parameters, combine>(R"(combine($self, y, alpha, beta, tol)
--

x := alpha * x + beta * y, in place.

y        Vector, in marks or list mode; a dense y contributes nothing. May be x itself, which then
         counts as a copy taken before the call.
alpha    float. Scales x unless abs(alpha - 1) <= tol or the difference is NaN. A dense x is never
         scaled.
beta     float. Nothing of y is added when abs(beta) <= tol or beta is NaN.
tol      float, used in these two tests only: no result is rounded to zero. When it is NaN, x is
         not scaled and nothing is added.

Elements of y that are not members of x are appended in y's order. Each sum is one fused
multiply-add. Entries that are exactly zero are dropped at the end as by `rem_zeros`, also those
that were zero before. When x or y has no coefficients, the elements of y are merged into x and no
sums are formed.

IndexError: y lists an element that x does not have. ValueError: the list of x has no room for the
elements that only y lists. Then x is unchanged. Takes time proportional to the nz of both; with x
in list mode to their product. C++: vector_mod::vectors_combine.)"),
    method<sym_diff_parameters, sym_diff>(R"(sym_diff($self, y)
--

Replaces the members of x by the symmetric difference of the members of x and y, in place.

y    Vector with a list; an empty y changes nothing. May be x itself, which then becomes empty.

Elements that only y lists are appended in y's order; common elements are dropped. Coefficients are
neither read nor written.

IndexError: y lists an element that x does not have. ValueError: x has no marks or no list, or no
room for the elements that only y lists. Then x is unchanged. Takes time proportional to the nz of
both. C++: vector_mod::vectors_calc_sym_diff.)"),
    method<mod2_parameters, mod2>(R"(mod2($self, tol)
--

Reduces coefficients modulo 2, in place.

tol    float, the tolerance of `is_even`.

A listed coefficient that is even within tol becomes 0.0, and its entry is dropped as by
`rem_zeros`. Any other coefficient, integral or not, becomes 1.0. Does nothing if nz is 0, nor in dense
mode.

ValueError: nz is at least 1, and the vector has no coefficients. Takes time proportional to nz.
C++: vector_mod::vector_mod2.)"),
    method<is_identical_parameters, is_identical>(R"(is_identical($self, other, tol)
--

Compares members and coefficients.

other    Vector with marks.
tol      float, the largest difference between coefficients that passes.

Returns True when both have the same nz, every element listed in x is marked in `other`, and no two
coefficients differ by more than tol. A difference that is NaN passes. Returns False otherwise.

ValueError: nz is at least 1 in both, and one has no coefficients, or `other` no marks. Takes time
proportional to nz. C++: vector_mod::vectors_are_identical.)"),
    {},
};

} // namespace zktarn::python
