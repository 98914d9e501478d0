#pragma once

/// The host made of CPython and NumPy, as the extension modules of the package see it: what they
/// call beside the 25 operations (zktarn/host/*.hpp).
///
/// Every function here needs the interpreter's lock, and `zktarn_python_start` called before. The
/// operations need neither: each takes the lock itself.
///
/// Exceptions. An operation cannot raise: the library that called it is compiled without
/// exceptions. What would be raised - by the output function, by Ctrl-C, by a false assertion, by a
/// console that is closed - is stored, and raised by the extension module when the library returns:
///
///     zktarn::vector_mod::some_procedure(...);
///     if (zktarn_python_raise() != 0) {
///         throw pybind11::error_already_set();
///     }
///
/// Each thread of Python has a stored exception of its own; all threads that are none (made by C++)
/// share one, which `zktarn_python_raise` returns on any thread that has none. A second exception
/// is dropped while one is stored, unless it is no subclass of `Exception` (KeyboardInterrupt,
/// SystemExit): then it takes the place of the first, which becomes its context. While one is
/// stored `utIsInterruptPending` returns true, so that a solve that polls ends.
///
/// A MemoryError inside an operation is never stored: the operation returns its failure value.

#include <Python.h>

extern "C" {

/// Prepares the host: imports NumPy. Call it in the initialisation of each extension module.
///
/// Returns 0, or -1 with an exception set.
int zktarn_python_start(void);

/// Returns a new reference to the NumPy array behind a block of `qvMallocExOptim`: one dimension of
/// uint8, as many as bytes were requested. Null, without an exception, when `address` is not that
/// of a block in use.
///
/// A view whose base is that array stays valid after the library releases the block.
PyObject* zktarn_python_block(const void* address);

/// Returns the number of blocks in use.
Py_ssize_t zktarn_python_block_count(void);

/// Raises the stored exception of the calling thread, with its traceback, and forgets it.
///
/// Returns -1 with an exception set, or 0 when there is none.
int zktarn_python_raise(void);

/// Registers a callable as function `name` of the host's language: the library calls
/// "tarnCallback". A callable serves the thread of Python that registered it; a null or None
/// removes it. Threads that have none of that name use the dict `zktarn_python_functions`.
///
/// The callable gets a copy of each struct as a dict. Its answer is a real number, or an array of
/// at least one, or None, which counts as 0.0. An exception is stored, and the answer is 1.0, which
/// ends the solve.
///
/// Returns a new reference to the callable that was registered before on this thread, None without
/// one; null with an exception set (TypeError: not callable).
PyObject* zktarn_python_set_function(const char* name, PyObject* callable);

/// Returns a borrowed reference to the dict of functions, name to callable, that serve every
/// thread.
PyObject* zktarn_python_functions(void);

/// Returns a generator, to be released by `deleteRngOptim`, that draws from a NumPy bit generator
/// or from the bit generator of a `numpy.random.Generator`, which it shares: numbers drawn on
/// either side are gone on the other. Draws hold the bit generator's own lock.
///
/// Returns null with an exception set: TypeError, or MemoryError.
void* zktarn_python_adopt_generator(PyObject* generator);

/// Returns a new reference to the NumPy bit generator behind a generator of the host.
PyObject* zktarn_python_bit_generator(void* generator);

/// Sets what makes the bit generator of `instantiateRngOptim`: a callable of one argument, the seed
/// from 0 to 2^32 - 1 (a negative seed counts from 2^32 down). At first `numpy.random.PCG64`, so
/// that the numbers are those of `numpy.random.default_rng(seed).random()`. None restores that.
///
/// Returns 0, or -1 with an exception set (TypeError: not callable).
int zktarn_python_set_bit_generator(PyObject* factory);
}
