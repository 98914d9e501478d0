// Iteration over the entries of a `Vector`, and what follows from it: its length and its text.

#include <string>

#include "errors.hpp"
#include "vector_checks.hpp"

namespace zktarn::python {

namespace {

/// An iterator: a reference to the vector, and a position.
struct iterator_object {
    PyObject_HEAD PyObject* vector;
    entry_cursor cursor;
    std::int32_t nz; // when the iteration began
};

PyTypeObject* iterator_class = nullptr;

iterator_object& as_iterator(PyObject* self) noexcept {
    return *reinterpret_cast<iterator_object*>(self);
}

PyObject* advance(PyObject* self) noexcept {
    return protect<PyObject*>(nullptr, [&]() -> PyObject* {
        iterator_object& it = as_iterator(self);
        if (as_vector(it.vector).record->nz != it.nz) {
            raise(PyExc_RuntimeError, "entries were added or removed during the iteration");
        }
        vector_entry entry{};
        if (!it.cursor.next(entry)) {
            return nullptr;
        }
        PyObject* const pair = require(PyTuple_New(2));
        PyTuple_SET_ITEM(pair, 0, PyLong_FromLong(entry.index));
        PyTuple_SET_ITEM(pair, 1, PyFloat_FromDouble(entry.value));
        if (PyTuple_GET_ITEM(pair, 0) == nullptr || PyTuple_GET_ITEM(pair, 1) == nullptr) {
            Py_DECREF(pair);
            throw python_error{};
        }
        return pair;
    });
}

void release_iterator(PyObject* self) noexcept {
    PyTypeObject* const type = Py_TYPE(self);
    Py_DECREF(as_iterator(self).vector);
    type->tp_free(self);
    Py_DECREF(type);
}

/// The shortest text that reads back as the same real.
std::string text_of(double value) {
    char* const digits = require(PyOS_double_to_string(value, 'r', 0, Py_DTSF_ADD_DOT_0, nullptr));
    std::string text(digits);
    PyMem_Free(digits);
    return text;
}

const char* mode_of(const vector_object& v) noexcept {
    return v.form.elm ? "marks" : v.form.ind ? "list" : "dense";
}

} // namespace

void add_iterator_type() {
    static PyType_Slot slots[] = {
        {Py_tp_dealloc, reinterpret_cast<void*>(release_iterator)},
        {Py_tp_iter, reinterpret_cast<void*>(PyObject_SelfIter)},
        {Py_tp_iternext, reinterpret_cast<void*>(advance)},
        {0, nullptr},
    };
    static PyType_Spec spec = {"zktarn._core.VectorIterator", sizeof(iterator_object), 0,
                               Py_TPFLAGS_DEFAULT | Py_TPFLAGS_DISALLOW_INSTANTIATION, slots};
    iterator_class = reinterpret_cast<PyTypeObject*>(require(PyType_FromSpec(&spec)));
}

PyObject* iterate(PyObject* self) noexcept {
    PyObject* const made = iterator_class->tp_alloc(iterator_class, 0);
    if (made != nullptr) {
        iterator_object& it = as_iterator(made);
        it.vector = Py_NewRef(self);
        it.cursor = entry_cursor(as_vector(self));
        it.nz = as_vector(self).record->nz;
    }
    return made;
}

Py_ssize_t length(PyObject* self) noexcept {
    return protect<Py_ssize_t>(-1, [&] {
        const vector_object& v = as_vector(self);
        if (!v.form.elm) {
            return Py_ssize_t{v.form.ind ? v.record->nz : v.n};
        }
        entry_cursor cursor(v);
        vector_entry entry{};
        Py_ssize_t count = 0;
        while (cursor.next(entry)) {
            ++count;
        }
        return count;
    });
}

PyObject* describe(PyObject* self) noexcept {
    return protect<PyObject*>(nullptr, [&] {
        constexpr int most_shown = 8;
        const vector_object& v = as_vector(self);
        std::string text = "<Vector n=" + std::to_string(v.n) + " " + mode_of(v) + " {";
        entry_cursor cursor(v);
        vector_entry entry{};
        int shown = 0;
        for (; shown < most_shown && cursor.next(entry); ++shown) {
            text += shown == 0 ? "" : ", ";
            text += std::to_string(entry.index);
            text += v.form.coef ? ": " + text_of(entry.value) : "";
        }
        std::int64_t more = 0;
        while (cursor.next(entry)) {
            ++more;
        }
        text += more == 0 ? "}>" : ", ... and " + std::to_string(more) + " more}>";
        return PyUnicode_FromStringAndSize(text.data(), static_cast<Py_ssize_t>(text.size()));
    });
}

} // namespace zktarn::python
