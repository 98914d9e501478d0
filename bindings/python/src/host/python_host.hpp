#pragma once

/// The host made of CPython and NumPy: what its users call in addition to the operations of
/// zktarn/host/*.hpp.
///
/// Every function here requires that the caller holds the interpreter's lock and has called
/// `zktarn_python_start`. The operations require neither: each acquires the lock itself.
///
/// Exceptions. An operation cannot raise: the library that called it is compiled without
/// exceptions. The host stores an exception of the output function, of Ctrl-C, of a false assertion
/// or of a closed console, and the extension module raises it when the library returns:
///
///     zktarn::vector_mod::some_procedure(...);
///     if (zktarn_python_raise() != 0) {
///         throw pybind11::error_already_set();
///     }
///
/// Each thread of Python has its own stored exception. All threads made by C++ share one, which
/// `zktarn_python_raise` raises on any thread that has no exception of its own. A second exception
/// is dropped while one is stored, unless it is no subclass of `Exception` (KeyboardInterrupt,
/// SystemExit): then it replaces the first, which becomes its context. While one is stored,
/// `utIsInterruptPending` returns true, so a solve that polls ends.
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

/// Raises the stored exception of the calling thread, with its traceback, and clears the store.
///
/// Returns -1 with an exception set, or 0 when none was stored.
int zktarn_python_raise(void);

/// Registers a callable as function `name` of the host's language: the library calls
/// "tarnCallback". The callable is used on the thread of Python that registered it; null or None
/// removes it. Threads without a callable of that name use the dict `zktarn_python_functions`.
///
/// The callable gets a copy of each struct as a dict. Its answer is a real number, or an array of
/// at least one, or None, which counts as 0.0. An exception is stored, and the answer is 1.0, which
/// ends the solve.
///
/// Returns a new reference to the callable that this thread had registered before, or to None; null
/// with an exception set (TypeError: not callable).
PyObject* zktarn_python_set_function(const char* name, PyObject* callable);

/// Returns a borrowed reference to the dict of functions, name to callable, of threads that have
/// registered none of that name.
PyObject* zktarn_python_functions(void);

/// Returns a generator, to be released by `deleteRngOptim`, that draws from a NumPy bit generator
/// or from the bit generator of a `numpy.random.Generator`, which it shares: a number drawn on one
/// side is not drawn again on the other. Draws hold the bit generator's own lock.
///
/// Returns null with an exception set: TypeError, or MemoryError.
void* zktarn_python_adopt_generator(PyObject* generator);

/// Returns a new reference to the NumPy bit generator behind a generator of the host.
PyObject* zktarn_python_bit_generator(void* generator);

/// Sets the callable that makes the bit generators of `instantiateRngOptim`. Its one argument is
/// the seed from 0 to 2^32 - 1; a negative seed s arrives as 2^32 + s. Initially
/// `numpy.random.PCG64`, which draws the numbers of `numpy.random.default_rng(seed).random()`. None
/// restores it.
///
/// Returns 0, or -1 with an exception set (TypeError: not callable).
int zktarn_python_set_bit_generator(PyObject* factory);
}
