// The methods of `Vector` that read or write one component or one entry.

#include "vector_checks.hpp"
#include "zktarn/vector/vector_mod.hpp"

namespace zktarn::python {

namespace {

using namespace vector_mod;

std::int32_t element(PyObject* value, const vector_object& v) {
    return to_index(value, v.n, index_kind::element);
}

/// The number of list positions is the capacity, also where nothing is listed.
std::int32_t position(PyObject* value, const vector_object& v) {
    return to_index(value, v.n, index_kind::position);
}

double coefficient(const vector_object& v, std::int32_t j, const char* procedure) {
    if (!v.form.coef && is_member(v, j)) [[unlikely]] {
        needs_coef(v, procedure);
    }
    return vector_get_coef(*v.record, j);
}

void add(vector_object& v, std::int32_t j, PyObject* value, const char* procedure) {
    needs_room_for(v, j, procedure);
    if (value == nullptr || value == Py_None) {
        vector_add_nz(*v.record, j);
        return;
    }
    const double real = to_real(value, "value");
    needs_coef(v, procedure);
    vector_add_nz(*v.record, j, real);
}

constexpr parameters<1> get_coef_parameters{"get_coef", 1, {"j"}};
PyObject* get_coef(vector_object& v, argument_list<1> given) {
    return PyFloat_FromDouble(coefficient(v, element(given[0], v), "get_coef"));
}

constexpr parameters<2> set_coef_parameters{"set_coef", 2, {"j", "value"}};
PyObject* set_coef(vector_object& v, argument_list<2> given) {
    const std::int32_t j = element(given[0], v);
    const double value = to_real(given[1], "value");
    needs_coef(v, "set_coef");
    vector_set_coef(*v.record, j, value);
    return none();
}

constexpr parameters<1> get_ind_parameters{"get_ind", 1, {"k"}};
PyObject* get_ind(vector_object& v, argument_list<1> given) {
    const std::int32_t k = position(given[0], v);
    needs_ind(v, "get_ind");
    return PyLong_FromLong(vector_get_ind(*v.record, k));
}

constexpr parameters<2> set_ind_parameters{"set_ind", 2, {"k", "j"}};
PyObject* set_ind(vector_object& v, argument_list<2> given) {
    const std::int32_t k = position(given[0], v);
    const std::int32_t j = element(given[1], v);
    needs_ind(v, "set_ind");
    vector_set_ind(*v.record, k, j);
    return none();
}

constexpr parameters<1> is_elm_parameters{"is_elm", 1, {"j"}};
PyObject* is_elm(vector_object& v, argument_list<1> given) {
    const std::int32_t j = element(given[0], v);
    needs_elm(v, "is_elm");
    return PyBool_FromLong(vector_is_elm(*v.record, j) != 0);
}

constexpr parameters<1> set_elm_parameters{"set_elm", 1, {"j"}};
PyObject* set_elm(vector_object& v, argument_list<1> given) {
    const std::int32_t j = element(given[0], v);
    needs_elm(v, "set_elm");
    vector_set_elm(*v.record, j);
    return none();
}

constexpr parameters<1> rem_elm_parameters{"rem_elm", 1, {"j"}};
PyObject* rem_elm(vector_object& v, argument_list<1> given) {
    const std::int32_t j = element(given[0], v);
    needs_elm(v, "rem_elm");
    vector_rem_elm(*v.record, j);
    return none();
}

constexpr parameters<2> add_nz_parameters{"add_nz", 1, {"j", "value"}};
PyObject* add_nz(vector_object& v, argument_list<2> given) {
    add(v, element(given[0], v), given[1], "add_nz");
    return none();
}

constexpr parameters<1> rem_nz_parameters{"rem_nz", 1, {"k"}};
PyObject* rem_nz(vector_object& v, argument_list<1> given) {
    needs_marks_mode(v, "rem_nz");
    const std::int32_t k = to_index(given[0], v.record->nz, index_kind::position);
    const std::int32_t j = vector_get_ind(*v.record, k);
    if (j < 1 || j > v.n) {
        needs_elements(v, "rem_nz");
    }
    vector_rem_nz(*v.record, k);
    return none();
}

/// Removes element j, wherever it is listed.
void remove_element(vector_object& v, std::int32_t j) {
    needs_marks_mode(v, "del");
    const std::int32_t* const list = v.record->ind.data;
    std::int32_t k = 1;
    while (k <= v.record->nz && list[k - 1] != j) {
        ++k;
    }
    if (k > v.record->nz) {
        raise(PyExc_KeyError, "element %d is not listed", j);
    }
    vector_rem_nz(*v.record, k);
}

} // namespace

PyObject* get_item(PyObject* self, PyObject* index) noexcept {
    return protect<PyObject*>(nullptr, [&] {
        const vector_object& v = as_vector(self);
        return PyFloat_FromDouble(coefficient(v, element(index, v), "x[j]"));
    });
}

int set_item(PyObject* self, PyObject* index, PyObject* value) noexcept {
    return protect(-1, [&] {
        vector_object& v = as_vector(self);
        const std::int32_t j = element(index, v);
        if (value == nullptr) {
            remove_element(v, j);
        } else if (value == Py_None) {
            to_real(value, "value");
        } else {
            add(v, j, value, "x[j] = value");
        }
        return 0;
    });
}

int contains(PyObject* self, PyObject* index) noexcept {
    return protect(-1, [&] {
        const vector_object& v = as_vector(self);
        const long long j = to_integer(index, "an element index");
        return j >= 1 && j <= v.n && is_member(v, static_cast<std::int32_t>(j)) ? 1 : 0;
    });
}

PyMethodDef component_methods[] = {
    method<get_coef_parameters, get_coef>(R"(get_coef($self, j)
--

The coefficient of element j.

j    int, 1 to n.

Returns the coefficient of a member, and 0.0 for any other element; in dense mode coef(j). `x[j]`
returns the same.

IndexError: j is out of range. ValueError: j is a member, and the vector has no coefficients.
Constant time; in list mode proportional to nz. C++: vector_mod::vector_get_coef.)"),
    method<set_coef_parameters, set_coef>(R"(set_coef($self, j, value)
--

Stores a coefficient, of a member or not.

j        int, 1 to n.
value    float.

Membership stays as it is: the coefficient of an element that is not a member is not read. Use `add_nz`
to add an element.

IndexError: j is out of range. ValueError: the vector has no coefficients.
C++: vector_mod::vector_set_coef.)"),
    method<get_ind_parameters, get_ind>(R"(get_ind($self, k)
--

The element index at a position of the list.

k    int, 1 to n. Positions behind nz hold scratch values.

Returns an int.

IndexError: k is out of range. ValueError: the vector has no list.
C++: vector_mod::vector_get_ind.)"),
    method<set_ind_parameters, set_ind>(R"(set_ind($self, k, j)
--

Stores an element index at a position of the list.

k    int, 1 to n.
j    int, 1 to n.

nz and marks stay as they are; the caller keeps them consistent with the list (see `check`).

IndexError: k or j is out of range. ValueError: the vector has no list.
C++: vector_mod::vector_set_ind.)"),
    method<is_elm_parameters, is_elm>(R"(is_elm($self, j)
--

Whether element j is marked.

j    int, 1 to n.

Returns a bool. For membership in every mode use `j in x`.

IndexError: j is out of range. ValueError: the vector has no marks.
C++: vector_mod::vector_is_elm.)"),
    method<set_elm_parameters, set_elm>(R"(set_elm($self, j)
--

Marks element j.

j    int, 1 to n.

The list stays as it is; the caller lists the element (see `check`), or uses `add_nz` instead.

IndexError: j is out of range. ValueError: the vector has no marks.
C++: vector_mod::vector_set_elm.)"),
    method<rem_elm_parameters, rem_elm>(R"(rem_elm($self, j)
--

Removes the mark of element j.

j    int, 1 to n.

The list stays as it is. A listed element without a mark counts as 0.0, and the next operation that
drops zeros drops it.

IndexError: j is out of range. ValueError: the vector has no marks.
C++: vector_mod::vector_rem_elm.)"),
    method<add_nz_parameters, add_nz>(R"(add_nz($self, j, value=None)
--

Makes element j a member and stores its coefficient.

j        int, 1 to n.
value    float, stored in coef(j), 0.0 included. None leaves coef(j) as it is.

A member keeps its position in the list. Any other element is appended to the list, and gets mark 1
if the vector has marks. In dense mode only the coefficient is stored. `x[j] = value` does the same.

IndexError: j is out of range. ValueError: a value without `coef`, or no room in the list. Then the
vector is unchanged. Constant time; in list mode proportional to nz.
C++: vector_mod::vector_add_nz.)"),
    method<rem_nz_parameters, rem_nz>(R"(rem_nz($self, k)
--

Removes the entry at a position of the list. The last entry moves there.

k    int, 1 to nz.

The mark of the element becomes 0; its coefficient stays in `coef` and is not read any more.
`del x[j]` searches the position of element j and removes the entry.

IndexError: k is out of range. ValueError: the vector has no list or no marks.
C++: vector_mod::vector_rem_nz.)"),
    {},
};

} // namespace zktarn::python
