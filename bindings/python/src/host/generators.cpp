#include <cstdint>
#include <new>

#include <Python.h>

#include <numpy/random/bitgen.h>

#include "interpreter.hpp"
#include "python_host.hpp"
#include "zktarn/host/libzkoptimutil.hpp"

/// Random numbers: each generator draws from a bit generator of NumPy, by its capsule.

namespace zktarn::python_host {

namespace {

struct generator {
    reference bit_generator;
    /// The bit generator's own lock, when Python code can draw from it too.
    reference mutex;
    bitgen_t* functions = nullptr;
};

/// What makes the bit generator of a seed; null stands for numpy.random.PCG64.
PyObject* factory = nullptr;

reference bit_generator_of_seed(std::int32_t seed) noexcept {
    // NumPy takes no negative seed.
    const reference number(PyLong_FromUnsignedLong(static_cast<std::uint32_t>(seed)));
    if (!number) {
        return {};
    }
    if (factory != nullptr) {
        return reference(PyObject_CallOneArg(factory, number.get()));
    }
    const reference module(PyImport_ImportModule("numpy.random"));
    return module ? reference(PyObject_CallMethod(module.get(), "PCG64", "O", number.get()))
                  : reference();
}

/// A generator over a bit generator; null with an exception set when that is none, or memory is
/// missing.
generator* make(reference bit_generator) noexcept {
    const reference capsule(PyObject_GetAttrString(bit_generator.get(), "capsule"));
    if (!capsule) {
        return nullptr;
    }
    void* const functions = PyCapsule_GetPointer(capsule.get(), "BitGenerator");
    if (functions == nullptr) {
        return nullptr;
    }
    auto* const made = new (std::nothrow) generator;
    if (made == nullptr) {
        PyErr_NoMemory();
        return nullptr;
    }
    made->bit_generator = std::move(bit_generator);
    made->functions = static_cast<bitgen_t*>(functions);
    return made;
}

/// Makes draws hold the bit generator's lock from now on. Returns false with an exception set.
bool share(generator& made) noexcept {
    if (!made.mutex) {
        made.mutex = reference(PyObject_GetAttrString(made.bit_generator.get(), "lock"));
    }
    return static_cast<bool>(made.mutex);
}

void draw(bitgen_t& functions, double* values, std::int64_t count) noexcept {
    for (std::int64_t i = 0; i < count; ++i) {
        values[i] = functions.next_double(functions.state);
    }
}

void draw_shared(const generator& from_python, double* values, std::int64_t count) noexcept {
    const interpreter_lock lock;
    if (!lock) {
        return;
    }
    const reference entered(PyObject_CallMethod(from_python.mutex.get(), "acquire", nullptr));
    if (!entered) {
        lock.fail();
        return;
    }
    draw(*from_python.functions, values, count);
    const reference left(PyObject_CallMethod(from_python.mutex.get(), "release", nullptr));
    if (!left) {
        lock.fail();
    }
}

generator& at(void* address) noexcept {
    return *static_cast<generator*>(address);
}

} // namespace

} // namespace zktarn::python_host

namespace zktarn::host {

using python_host::at;
using python_host::interpreter_lock;
using python_host::reference;

extern "C" {

void* instantiateRngOptim(std::int32_t seed) noexcept {
    const interpreter_lock lock;
    if (!lock) {
        return nullptr;
    }
    reference bit_generator = python_host::bit_generator_of_seed(seed);
    void* const made = bit_generator ? python_host::make(std::move(bit_generator)) : nullptr;
    if (made == nullptr) {
        lock.fail();
    }
    return made;
}

void deleteRngOptim(void* generator) noexcept {
    const interpreter_lock lock;
    if (lock) {
        delete &at(generator);
    }
}

/// The functions of a bit generator need no lock of the interpreter, so a thread draws from its own
/// generator without one.
void getRandUniformOptim(void* generator, double* values, const std::int64_t* count) noexcept {
    if (at(generator).mutex) {
        python_host::draw_shared(at(generator), values, *count);
    } else {
        python_host::draw(*at(generator).functions, values, *count);
    }
}

void* getRngStateOptim(void* generator) noexcept {
    if (generator == nullptr) {
        return nullptr;
    }
    const interpreter_lock lock;
    if (!lock) {
        return nullptr;
    }
    PyObject* const state = PyObject_GetAttrString(at(generator).bit_generator.get(), "state");
    if (state == nullptr) {
        lock.fail();
    }
    return state;
}

void setRngStateOptim(void* generator, void* state) noexcept {
    const interpreter_lock lock;
    if (lock && PyObject_SetAttrString(at(generator).bit_generator.get(), "state",
                                       static_cast<PyObject*>(state)) != 0) {
        lock.fail();
    }
}

void deleteRngStateOptim(void* state) noexcept {
    const interpreter_lock lock;
    if (lock) {
        Py_DECREF(static_cast<PyObject*>(state));
    }
}
}

} // namespace zktarn::host

void* zktarn_python_adopt_generator(PyObject* generator) {
    using namespace zktarn::python_host;
    // A numpy.random.Generator has a bit generator; a bit generator has a capsule.
    reference bit_generator(PyObject_GetAttrString(generator, "bit_generator"));
    if (!bit_generator && PyErr_ExceptionMatches(PyExc_AttributeError) != 0) {
        PyErr_Clear();
        bit_generator = reference::share(generator);
    }
    zktarn::python_host::generator* const made =
        bit_generator ? make(std::move(bit_generator)) : nullptr;
    if (made != nullptr && share(*made)) {
        return made;
    }
    delete made;
    if (PyErr_ExceptionMatches(PyExc_AttributeError) != 0 ||
        PyErr_ExceptionMatches(PyExc_ValueError) != 0) {
        PyErr_Format(PyExc_TypeError,
                     "a generator has to be a numpy.random.Generator or a NumPy bit generator, not "
                     "'%.200s'",
                     Py_TYPE(generator)->tp_name);
    }
    return nullptr;
}

PyObject* zktarn_python_bit_generator(void* generator) {
    using namespace zktarn::python_host;
    return share(at(generator)) ? reference::share(at(generator).bit_generator.get()).release()
                                : nullptr;
}

int zktarn_python_set_bit_generator(PyObject* wanted) {
    using namespace zktarn::python_host;
    const bool is_default = wanted == nullptr || wanted == Py_None;
    if (!is_default && PyCallable_Check(wanted) == 0) {
        PyErr_Format(PyExc_TypeError,
                     "a bit generator is set by a callable of one seed, not by '%.200s'",
                     Py_TYPE(wanted)->tp_name);
        return -1;
    }
    const reference previous(
        std::exchange(factory, is_default ? nullptr : reference::share(wanted).release()));
    return 0;
}
