#include "interpreter.hpp"

#include <algorithm>
#include <cstring>
#include <string_view>
#include <utility>

/// Struct arrays, real arrays and texts.

namespace zktarn::python_host {

namespace {

reference text_object(const char* text, std::int64_t length) noexcept {
    // Bytes that are not UTF-8 become escapes, \xe4.
    return reference(PyUnicode_DecodeUTF8(text, length, "backslashreplace"));
}

/// The name in a slot, without the blanks that pad it.
reference name_in_slot(const char* slot, std::int64_t width) noexcept {
    const std::string_view padded(slot, static_cast<std::size_t>(width));
    const std::size_t last = padded.find_last_not_of(' ');
    return text_object(slot,
                       last == std::string_view::npos ? 0 : static_cast<std::int64_t>(last) + 1);
}

/// A dict with the fields of the slots, all empty; null with an exception set.
reference empty_struct(std::int32_t nfields, const char* slots, std::int64_t width) noexcept {
    reference fields(PyDict_New());
    for (std::int32_t i = 0; fields && i < nfields; ++i) {
        const reference name = name_in_slot(slots + i * width, width);
        if (!name || PyDict_SetItem(fields.get(), name.get(), Py_None) != 0) {
            return {};
        }
    }
    return fields;
}

/// The elements of a struct array: first, and how many.
struct elements {
    PyObject** first = nullptr;
    std::int64_t count = 0;
};

/// `one` is room for the only element of a 1-by-1 struct. Sets TypeError when the object is no
/// struct array.
elements elements_of(PyObject* structure, PyObject*& one) noexcept {
    if (PyDict_Check(structure) != 0) {
        one = structure;
        return {&one, 1};
    }
    if (PyArray_Check(structure) != 0) {
        auto* const array = reinterpret_cast<PyArrayObject*>(structure);
        if (PyArray_TYPE(array) == NPY_OBJECT) {
            return {static_cast<PyObject**>(PyArray_DATA(array)), PyArray_SIZE(array)};
        }
    }
    PyErr_Format(PyExc_TypeError, "a struct array is expected here, not '%.200s'",
                 Py_TYPE(structure)->tp_name);
    return {};
}

/// Element `index`, counted from 1, borrowed; null with an exception set when there is none.
PyObject* element(host::array_handle structure, std::int64_t index) noexcept {
    PyObject* one = nullptr;
    const elements all = elements_of(object_of(structure), one);
    if (all.first == nullptr) {
        return nullptr;
    }
    if (index < 1 || index > all.count) {
        PyErr_Format(PyExc_IndexError, "a struct array of %lld elements has no element %lld",
                     static_cast<long long>(all.count), static_cast<long long>(index));
        return nullptr;
    }
    return all.first[index - 1];
}

/// The name of field `number`, counted from 1, borrowed; null without such a field.
PyObject* field_name(PyObject* fields, std::int32_t number) noexcept {
    PyObject* name = nullptr;
    Py_ssize_t position = 0;
    std::int32_t current = 0;
    while (PyDict_Next(fields, &position, &name, nullptr) != 0) {
        if (++current == number) {
            return name;
        }
    }
    return nullptr;
}

/// The number of a field, counted from 1; 0 without such a field.
std::int32_t field_number(PyObject* fields, PyObject* wanted) noexcept {
    PyObject* name = nullptr;
    Py_ssize_t position = 0;
    std::int32_t current = 0;
    while (PyDict_Next(fields, &position, &name, nullptr) != 0) {
        ++current;
        if (PyUnicode_Compare(name, wanted) == 0) {
            return current;
        }
    }
    return 0;
}

/// Stores `value` in the field of that name. `name` may be null: then there is no such field.
void set_field(const interpreter_lock& lock, host::array_handle structure, std::int64_t index,
               PyObject* name, const reference& value) noexcept {
    PyObject* const fields = element(structure, index);
    if (fields == nullptr || PyDict_SetItem(fields, name, value.get()) != 0) {
        lock.fail();
    }
}

/// An array of dicts, in the order of the host; null with an exception set.
reference struct_array(int ndims, const npy_intp* extents, std::int32_t nfields, const char* slots,
                       std::int64_t width) noexcept {
    reference made(PyArray_EMPTY(ndims, extents, NPY_OBJECT, 1));
    if (!made) {
        return {};
    }
    PyObject* one = nullptr;
    const elements all = elements_of(made.get(), one);
    for (std::int64_t i = 0; i < all.count; ++i) {
        reference fields = empty_struct(nfields, slots, width);
        if (!fields) {
            return {};
        }
        Py_XDECREF(std::exchange(all.first[i], fields.release()));
    }
    return made;
}

/// The handle of what an operation has made; after a failure 0.
host::array_handle result(const interpreter_lock& lock, reference made) noexcept {
    if (!made) {
        lock.fail();
    }
    return handle_of(std::move(made));
}

/// Whether the elements of such an array, numbers or references, can have an address each. NumPy
/// reports what cannot as a wrong argument, the host as missing memory.
bool fits(std::int64_t ndims, const std::int64_t* extents) noexcept {
    std::int64_t nbytes = sizeof(double);
    for (std::int64_t i = 0; i < ndims; ++i) {
        if (extents[i] < 0 || __builtin_mul_overflow(nbytes, extents[i], &nbytes)) {
            return false;
        }
    }
    return true;
}

} // namespace

} // namespace zktarn::python_host

namespace zktarn::host {

using python_host::interpreter_lock;
using python_host::object_of;
using python_host::reference;

extern "C" {

array_handle qvcreatestructarray800_(const std::int64_t& ndims, const std::int64_t* extents,
                                     const std::int32_t& nfields, const char* field_names,
                                     std::int64_t slot_width) noexcept {
    const interpreter_lock lock;
    if (!lock) {
        return 0;
    }
    if (ndims < 1 || ndims > NPY_MAXDIMS || slot_width < 0 ||
        std::any_of(extents, extents + ndims, [](std::int64_t extent) { return extent < 0; })) {
        PyErr_SetString(PyExc_ValueError, "no struct array has such extents or names");
        return python_host::result(lock, {});
    }
    if (std::all_of(extents, extents + ndims, [](std::int64_t extent) { return extent == 1; })) {
        return python_host::result(lock,
                                   python_host::empty_struct(nfields, field_names, slot_width));
    }
    if (!python_host::fits(ndims, extents)) {
        return 0;
    }
    npy_intp shape[NPY_MAXDIMS];
    std::copy_n(extents, ndims, shape);
    return python_host::result(lock, python_host::struct_array(static_cast<int>(ndims), shape,
                                                               nfields, field_names, slot_width));
}

array_handle qvcreatestring800_(const char* text, std::int64_t text_length) noexcept {
    const interpreter_lock lock;
    return lock ? python_host::result(lock, python_host::text_object(text, text_length)) : 0;
}

array_handle qvcreatedoublescalar800_(const double& value) noexcept {
    const interpreter_lock lock;
    return lock ? python_host::result(lock, reference(PyFloat_FromDouble(value))) : 0;
}

array_handle qvcreatedoublematrix800_(const std::int64_t& rows, const std::int64_t& columns,
                                      const std::int32_t& complexity) noexcept {
    const interpreter_lock lock;
    if (!lock) {
        return 0;
    }
    if (complexity != 0) {
        PyErr_SetString(PyExc_ValueError, "this host has real matrices only");
        return python_host::result(lock, {});
    }
    const std::int64_t extents[] = {rows, columns};
    constexpr std::int64_t ndims = 2;
    if (!python_host::fits(ndims, extents)) {
        return 0;
    }
    const npy_intp shape[] = {rows, columns};
    constexpr int by_columns = 1;
    return python_host::result(
        lock, reference(PyArray_ZEROS(columns == 1 ? 1 : 2, shape, NPY_DOUBLE, by_columns)));
}

void qvsetfield800_(const array_handle& structure, const std::int64_t& index,
                    const char* field_name, const array_handle& value,
                    std::int64_t field_name_length) noexcept {
    const interpreter_lock lock;
    if (!lock) {
        return;
    }
    const reference owned(object_of(value));
    if (structure == 0 || !owned) {
        return;
    }
    const reference name = python_host::text_object(field_name, field_name_length);
    if (name) {
        python_host::set_field(lock, structure, index, name.get(), owned);
    } else {
        lock.fail();
    }
}

void qvsetfieldbynumber800_(const array_handle& structure, const std::int64_t& index,
                            const std::int32_t& number, const array_handle& value) noexcept {
    const interpreter_lock lock;
    if (!lock) {
        return;
    }
    const reference owned(object_of(value));
    if (structure == 0 || number == 0 || !owned) {
        return;
    }
    PyObject* const fields = python_host::element(structure, index);
    PyObject* const name = fields == nullptr ? nullptr : python_host::field_name(fields, number);
    if (name != nullptr) {
        python_host::set_field(lock, structure, index, name, owned);
        return;
    }
    if (fields != nullptr) {
        PyErr_Format(PyExc_IndexError, "a struct has no field %d", static_cast<int>(number));
    }
    lock.fail();
}

std::int32_t qvgetfieldnumber800_(const array_handle& structure, const char* field_name,
                                  std::int64_t field_name_length) noexcept {
    const interpreter_lock lock;
    if (!lock || structure == 0) {
        return 0;
    }
    PyObject* const fields = python_host::element(structure, 1);
    const reference name = python_host::text_object(field_name, field_name_length);
    if (fields == nullptr || !name) {
        lock.fail();
        return 0;
    }
    return python_host::field_number(fields, name.get());
}

std::int32_t qvaddfield800_(const array_handle& structure, const char* field_name,
                            std::int64_t field_name_length) noexcept {
    const interpreter_lock lock;
    if (!lock || structure == 0) {
        return 0;
    }
    PyObject* one = nullptr;
    const python_host::elements all = python_host::elements_of(object_of(structure), one);
    const reference name = python_host::text_object(field_name, field_name_length);
    for (std::int64_t i = 0; name && i < all.count; ++i) {
        if (PyDict_SetItem(all.first[i], name.get(), Py_None) != 0) {
            lock.fail();
            return 0;
        }
    }
    if (all.count == 0 || !name) {
        lock.fail();
        return 0;
    }
    return static_cast<std::int32_t>(PyDict_Size(all.first[0]));
}

data_address qvgetpr800_(const array_handle& array) noexcept {
    const interpreter_lock lock;
    if (!lock || array == 0) {
        return nullptr;
    }
    PyObject* const object = object_of(array);
    if (PyFloat_CheckExact(object) != 0) {
        return &reinterpret_cast<PyFloatObject*>(object)->ob_fval;
    }
    if (PyArray_Check(object) == 0) {
        return nullptr;
    }
    auto* const values = reinterpret_cast<PyArrayObject*>(object);
    return PyArray_TYPE(values) == NPY_DOUBLE ? static_cast<double*>(PyArray_DATA(values))
                                              : nullptr;
}

void qvcopyptrtoreal8800_(const data_address& source, double* destination,
                          const std::int64_t& count) noexcept {
    if (source != nullptr && count > 0) {
        std::memcpy(destination, source, static_cast<std::size_t>(count) * sizeof(double));
    }
}

void qvcopyreal8toptr800_(const double* source, const data_address& destination,
                          const std::int64_t& count) noexcept {
    if (destination != nullptr && count > 0) {
        std::memcpy(destination, source, static_cast<std::size_t>(count) * sizeof(double));
    }
}

void qvdestroyarray800_(const array_handle& array) noexcept {
    const interpreter_lock lock;
    if (lock) {
        Py_XDECREF(object_of(array));
    }
}
}

} // namespace zktarn::host
