// The cases of the identity program through Python: implements the procedures of via.h, each by a
// call of package zktarn, and returns the hashes of the results to the tests.

#include <pybind11/numpy.h>
#include <pybind11/pybind11.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>

#include "binary/identity/procedures.hpp"
#include "via.h"

namespace {

namespace py = pybind11;

/// A function or class of the package.
py::object of_package(const char* name) {
    return py::module_::import("zktarn").attr(name);
}

double real(const py::object& value) {
    return value.cast<double>();
}

zktarn_flag truth(const py::object& value) {
    return value.cast<bool>() ? 1 : 0;
}

/// What `nearest` of the library leaves unwritten is NaN in Python.
void write_unless_nan(double* nearest, const py::object& integer) {
    const double value = real(integer);
    if (!std::isnan(value)) {
        *nearest = value;
    }
}

// Vectors
// --------------------------------------------------------------------------------------------

template <class T, class Array>
void copy_to_python(const Array& array, const py::object& view) {
    if (array.data != nullptr) {
        std::copy_n(array.data, array.extent[0], view.cast<py::array_t<T>>().mutable_data());
    }
}

template <class T, class Array>
void copy_from_python(const py::object& view, const Array& array) {
    if (array.data != nullptr) {
        std::copy_n(view.cast<py::array_t<T>>().data(), array.extent[0], array.data);
    }
}

std::int64_t capacity(const zktarn_vector& v) {
    constexpr std::int64_t any = 1000; // of a vector without arrays
    return v.coef.data != nullptr  ? v.coef.extent[0]
           : v.ind.data != nullptr ? v.ind.extent[0]
           : v.elm.data != nullptr ? v.elm.extent[0]
                                   : any;
}

/// A Vector with the contents of a record, which gets them back at the end of the scope.
class mirrored {
public:
    explicit mirrored(const zktarn_vector* v)
        : record_(*v),
          vector_(of_package("Vector")(capacity(*v), py::arg("coef") = v->coef.data != nullptr,
                                       py::arg("ind") = v->ind.data != nullptr,
                                       py::arg("elm") = v->elm.data != nullptr)) {
        copy_to_python<double>(record_.coef, vector_.attr("coef"));
        copy_to_python<std::int32_t>(record_.ind, vector_.attr("ind"));
        copy_to_python<std::int32_t>(record_.elm, vector_.attr("elm"));
        if (record_.ind.data != nullptr) {
            vector_.attr("nz") = record_.nz;
        }
    }

    const py::object& operator*() const { return vector_; }
    py::detail::str_attr_accessor method(const char* name) const { return vector_.attr(name); }

    void copy_back(zktarn_vector* v) const {
        copy_from_python<double>(vector_.attr("coef"), v->coef);
        copy_from_python<std::int32_t>(vector_.attr("ind"), v->ind);
        copy_from_python<std::int32_t>(vector_.attr("elm"), v->elm);
        v->nz = vector_.attr("nz").cast<std::int32_t>();
    }

private:
    zktarn_vector record_;
    py::object vector_;
};

template <class... Args>
void change(zktarn_vector* v, const char* method, const Args&... args) {
    const mirrored mirror(v);
    mirror.method(method)(args...);
    mirror.copy_back(v);
}

template <class Result, class... Args>
Result read(const zktarn_vector* v, const char* method, const Args&... args) {
    return mirrored(v).method(method)(args...).template cast<Result>();
}

} // namespace

// Integrality
// --------------------------------------------------------------------------------------------

double via_fractional(double x) {
    return real(of_package("fractional")(x));
}

void via_epsilon_is_int(double x, double eps, zktarn_flag* is_int, double* nearest) {
    *is_int = truth(of_package("is_int")(x, eps));
    write_unless_nan(nearest, of_package("nearest")(x, eps));
}

void via_epsilon_is_int_scalar(double x, double scalar, double eps, zktarn_flag* is_int,
                               double* nearest) {
    *is_int = truth(of_package("is_int_scalar")(x, scalar, eps));
    write_unless_nan(nearest, of_package("nearest_scalar")(x, scalar, eps));
}

double via_epsilon_fractionality(double x, double eps) {
    return real(of_package("fractionality")(x, eps));
}

double via_epsilon_floor(double x, double eps) {
    return real(of_package("floor")(x, eps));
}

double via_epsilon_ceiling(double x, double eps) {
    return real(of_package("ceil")(x, eps));
}

zktarn_flag via_is_even_real(double x, double eps) {
    return truth(of_package("is_even")(x, eps));
}

zktarn_flag via_is_even_int(int32_t n) {
    return truth(of_package("is_even_int")(n));
}

// Fractions
// --------------------------------------------------------------------------------------------

void via_get_rational_rep(double x, double eps, double max_den, zktarn_flag* found, double* num,
                          double* den) {
    const py::list one(1);
    one[0] = x;
    const py::tuple fractions = of_package("rational")(one, eps, max_den);
    *num = real(fractions[0][py::int_(0)]);
    *den = real(fractions[1][py::int_(0)]);
    *found = truth(fractions[2][py::int_(0)]);
}

double via_xgcd_r8(double a, double b, double eps) {
    return real(of_package("gcd")(a, b, eps));
}

int32_t via_xgcd_i4(int32_t a, int32_t b) {
    return of_package("gcd")(a, b).cast<int32_t>();
}

void via_find_scalar_integral(int32_t n, zktarn_element_supplier get_element, void* context,
                              double eps, double max_den, double max_scalar, zktarn_flag* found,
                              double* scalar, const zktarn_flag* skip_marked,
                              const zktarn_flag* selected_only) {
    const auto element = [=](int32_t index) {
        double value = 0.0;
        zktarn_flag marked = 0;
        zktarn_flag selected = 0;
        get_element(index, &value, &marked, &selected, context);
        return py::make_tuple(value, marked != 0, selected != 0);
    };
    const py::object result = of_package("find_scalar_integral")(
        n, py::cpp_function(element), eps, max_den, max_scalar,
        py::arg("skip_marked") = *skip_marked != 0, py::arg("selected_only") = *selected_only != 0);
    *found = result.is_none() ? 0 : 1;
    *scalar = result.is_none() ? 0.0 : real(result);
}

// Sorting
// --------------------------------------------------------------------------------------------

void via_sort(int32_t first, int32_t last, zktarn_exchange_procedure exchange, void* context) {
    of_package("sort")(first, last, py::cpp_function([=](int32_t a, int32_t b) {
                           return exchange(a, b, context) != 0;
                       }));
}

// Vectors
// --------------------------------------------------------------------------------------------

int32_t via_vector_get_nz(const zktarn_vector* v) {
    return (*mirrored(v)).attr("nz").cast<int32_t>();
}

void via_vector_set_nz(zktarn_vector* v, int32_t n) {
    const mirrored mirror(v);
    (*mirror).attr("nz") = n;
    mirror.copy_back(v);
}

int32_t via_vector_get_ind(const zktarn_vector* v, int32_t k) {
    return read<int32_t>(v, "get_ind", k);
}

/// The cases also store indices that are not elements, which the method refuses and the view takes.
void via_vector_set_ind(zktarn_vector* v, int32_t k, int32_t j) {
    if (j <= capacity(*v)) {
        change(v, "set_ind", k, j);
        return;
    }
    const mirrored mirror(v);
    try {
        mirror.method("set_ind")(k, j);
    } catch (py::error_already_set& error) {
        if (!error.matches(PyExc_IndexError)) {
            throw;
        }
        (*mirror).attr("ind")[py::int_(k - 1)] = j;
        mirror.copy_back(v);
        return;
    }
    throw std::runtime_error("set_ind stored an index that is not an element");
}

void via_vector_set_coef(zktarn_vector* v, int32_t j, double value) {
    change(v, "set_coef", j, value);
}

double via_vector_get_coef(const zktarn_vector* v, int32_t j) {
    return read<double>(v, "get_coef", j);
}

zktarn_flag via_vector_is_elm(const zktarn_vector* v, int32_t j) {
    return read<bool>(v, "is_elm", j) ? 1 : 0;
}

void via_vector_set_elm(zktarn_vector* v, int32_t j) {
    change(v, "set_elm", j);
}

void via_vector_rem_elm(zktarn_vector* v, int32_t j) {
    change(v, "rem_elm", j);
}

void via_vector_add_nz(zktarn_vector* v, int32_t j, const double* value) {
    if (value != nullptr) {
        change(v, "add_nz", j, *value);
    } else {
        change(v, "add_nz", j);
    }
}

void via_vector_rem_nz(zktarn_vector* v, int32_t k) {
    change(v, "rem_nz", k);
}

void via_vector_clear(zktarn_vector* v) {
    change(v, "clear");
}

void via_vector_clean_index(zktarn_vector* v) {
    change(v, "clean_index");
}

void via_vector_rem_zeros(zktarn_vector* v) {
    change(v, "rem_zeros");
}

void via_vectors_combine(zktarn_vector* x, const zktarn_vector* y, double alpha, double beta,
                         double tol) {
    const mirrored mirror(x);
    mirror.method("combine")(x == y ? *mirror : *mirrored(y), alpha, beta, tol);
    mirror.copy_back(x);
}

void via_vectors_calc_sym_diff(zktarn_vector* x, const zktarn_vector* y) {
    const mirrored mirror(x);
    mirror.method("sym_diff")(x == y ? *mirror : *mirrored(y));
    mirror.copy_back(x);
}

void via_vector_mod2(zktarn_vector* v, double tol) {
    change(v, "mod2", tol);
}

zktarn_flag via_vectors_are_identical(const zktarn_vector* a, const zktarn_vector* b, double tol) {
    return read<bool>(a, "is_identical", *mirrored(b), tol) ? 1 : 0;
}

// Hashes
// --------------------------------------------------------------------------------------------

namespace {

/// Name to hash, of every procedure that Python has and whose results do not depend on the host.
py::dict hashes() {
    py::dict all;
    for (const auto& subject :
         {zktarn::identity::util_procedures(), zktarn::identity::vector_procedures(),
          zktarn::identity::sorting_procedures()}) {
        for (const zktarn::identity::procedure& each : subject) {
            all[each.name] = hash_of(each);
        }
    }
    return all;
}

} // namespace

PYBIND11_MODULE(identity_through_python, module) {
    module.def("hashes", hashes);
}
