"""The host's operations by ctypes, for the tests.

Each operation is there twice: `held` calls it with the interpreter's lock, `released` without.
"""

import ctypes
import gc
import os
import pathlib
import sys
import tracemalloc

import zktarn

LIB = pathlib.Path(zktarn.__file__).parent / "_lib"
HOST = str(LIB / "libzktarn_python_host.so")
HARNESS = pathlib.Path(os.environ.get("ZKTARN_PYTHON_HARNESS",
                                      LIB.parents[1] / "zktarn_python_harness.so"))

VOID, POINTER, I32, I64, REAL = (
    None, ctypes.c_void_p, ctypes.c_int32, ctypes.c_int64, ctypes.c_double)
BY_I32, BY_I64, BY_REAL = (ctypes.POINTER(each) for each in (I32, I64, REAL))
TEXT = ctypes.c_char_p

SIGNATURES = {
    "qvMallocExOptim": (POINTER, [I64]),
    "qvFreeExOptim": (VOID, [POINTER]),
    "instantiateRngOptim": (POINTER, [I32]),
    "deleteRngOptim": (VOID, [POINTER]),
    "getRandUniformOptim": (VOID, [POINTER, BY_REAL, BY_I64]),
    "getRngStateOptim": (POINTER, [POINTER]),
    "setRngStateOptim": (VOID, [POINTER, POINTER]),
    "deleteRngStateOptim": (VOID, [POINTER]),
    "assertOptim": (VOID, [ctypes.c_bool]),
    "ioFlushOptim": (VOID, []),
    "utIsInterruptPending": (ctypes.c_bool, []),
    "qvcreatestructarray800_": (I64, [BY_I64, BY_I64, BY_I32, TEXT, I64]),
    "qvcreatestring800_": (I64, [TEXT, I64]),
    "qvcreatedoublescalar800_": (I64, [BY_REAL]),
    "qvcreatedoublematrix800_": (I64, [BY_I64, BY_I64, BY_I32]),
    "qvsetfield800_": (VOID, [BY_I64, BY_I64, TEXT, BY_I64, I64]),
    "qvsetfieldbynumber800_": (VOID, [BY_I64, BY_I64, BY_I32, BY_I64]),
    "qvgetfieldnumber800_": (I32, [BY_I64, TEXT, I64]),
    "qvaddfield800_": (I32, [BY_I64, TEXT, I64]),
    "qvgetpr800_": (POINTER, [BY_I64]),
    "qvcopyptrtoreal8800_": (VOID, [ctypes.POINTER(POINTER), BY_REAL, BY_I64]),
    "qvcopyreal8toptr800_": (VOID, [BY_REAL, ctypes.POINTER(POINTER), BY_I64]),
    "qvdestroyarray800_": (VOID, [BY_I64]),
    "qvxcallquarn800_": (I32, [BY_I32, BY_I64, BY_I32, BY_I64, TEXT, I64]),
    "qvxprintf800_": (I32, [TEXT, I64]),
}

HARNESS_SIGNATURES = {
    "harness_start": (ctypes.c_int, []),
    "harness_attempt": (ctypes.c_int, [ctypes.c_int, I64]),
    "harness_repeat": (I64, [ctypes.c_int, I64]),
    "harness_names": (TEXT, []),
    "harness_raise_and_poll": (ctypes.c_int, [ctypes.c_int]),
    "harness_poll_until_true": (I64, []),
    "harness_assert_elsewhere": (VOID, []),
    "harness_call_elsewhere": (REAL, []),
    "harness_keeps_exception": (ctypes.c_int, []),
}

HOOK_SIGNATURES = {
    "zktarn_python_raise": (ctypes.c_int, []),
    "zktarn_python_block_count": (ctypes.c_ssize_t, []),
    "zktarn_python_set_function": (ctypes.py_object, [TEXT, ctypes.py_object]),
    "zktarn_python_adopt_generator": (POINTER, [ctypes.py_object]),
    "zktarn_python_bit_generator": (ctypes.py_object, [POINTER]),
}


def declare(library, signatures):
    """Sets the types of a library's functions; returns the library."""
    for name, (result, arguments) in signatures.items():
        function = getattr(library, name)
        function.restype = result
        function.argtypes = arguments
    return library


held = declare(ctypes.PyDLL(HOST), SIGNATURES | HOOK_SIGNATURES)
released = declare(ctypes.CDLL(HOST), SIGNATURES)

_block = ctypes.PyDLL(HOST).zktarn_python_block
_block.restype = ctypes.c_void_p
_block.argtypes = [POINTER]


def harness(keep_lock=True):
    """The library of harness.cpp, called with the interpreter's lock or without."""
    return declare((ctypes.PyDLL if keep_lock else ctypes.CDLL)(str(HARNESS)), HARNESS_SIGNATURES)


def raise_stored():
    """Raises the stored exception of this thread, if there is one."""
    held.zktarn_python_raise()


def block(address):
    """The array behind a block, or None."""
    found = _block(address)
    if found is None:
        return None
    array = ctypes.cast(found, ctypes.py_object).value
    ctypes.pythonapi.Py_DecRef(ctypes.py_object(array))
    return array


def object_of(handle):
    """The object behind a handle."""
    return ctypes.cast(handle, ctypes.py_object).value


# Arguments travel by reference; ctypes passes an instance where a pointer to its type is declared.

def make_struct(slots, extents=(1, 1), width=10):
    """A struct array whose fields have these names; its handle."""
    names = "".join(slot.ljust(width) for slot in slots).encode()
    return held.qvcreatestructarray800_(
        I64(len(extents)), (I64 * len(extents))(*extents), I32(len(slots)), names, width)


def make_text(text):
    """A text made of characters or bytes; its handle."""
    data = text if isinstance(text, bytes) else text.encode()
    return held.qvcreatestring800_(data, len(data))


def make_scalar(value):
    """A real scalar; its handle."""
    return held.qvcreatedoublescalar800_(REAL(value))


def make_matrix(rows, columns=1, complexity=0):
    """A matrix; its handle."""
    return held.qvcreatedoublematrix800_(I64(rows), I64(columns), I32(complexity))


def set_field(structure, name, value, index=1):
    """Stores a value by the name of a field, or by its number."""
    if isinstance(name, int):
        held.qvsetfieldbynumber800_(I64(structure), I64(index), I32(name), I64(value))
    else:
        data = name.encode()
        held.qvsetfield800_(I64(structure), I64(index), data, I64(value), len(data))


def field_number(structure, name):
    """The number of a field."""
    data = name.encode()
    return held.qvgetfieldnumber800_(I64(structure), data, len(data))


def add_field(structure, name):
    """Adds a field; returns its number."""
    data = name.encode()
    return held.qvaddfield800_(I64(structure), data, len(data))


def address(handle):
    """The address of an array's reals, or None."""
    return held.qvgetpr800_(I64(handle))


def reals(handle, count):
    """The first numbers of an array."""
    room = (REAL * count)(*[-1.0] * count)
    held.qvcopyptrtoreal8800_(POINTER(address(handle)), room, I64(count))
    return list(room)


def destroy(handle):
    """Destroys an array."""
    held.qvdestroyarray800_(I64(handle))


def call(inputs=(), name="tarnCallback", noutputs=1, library=held):
    """Calls a function of the host's language; returns the status and the handles of the outputs."""
    outputs = (I64 * max(noutputs, 1))()
    status = library.qvxcallquarn800_(
        I32(noutputs), outputs, I32(len(inputs)), (I64 * max(len(inputs), 1))(*inputs),
        name.encode(), len(name))
    return status, list(outputs)[:noutputs]


def set_function(callable_, name="tarnCallback"):
    """Registers a function for this thread; returns the one that was there."""
    return held.zktarn_python_set_function(name.encode(), callable_)


def answer_of(returned):
    """What the solver reads when the output function returns this object."""
    previous = set_function(lambda fields: returned)
    structure = make_struct(["phase"])
    try:
        _, (output,) = call([structure])
        value = reals(output, 1)[0]
        destroy(output)
        return value
    finally:
        destroy(structure)
        set_function(previous)


def draw(generator, count=1, library=held):
    """The next numbers of a generator, drawn one at a time."""
    values = (REAL * count)()
    for i in range(count):
        library.getRandUniformOptim(generator, ctypes.cast(
            ctypes.byref(values, i * 8), BY_REAL), I64(1))
    return list(values)


def print_text(text, library=held):
    """Prints characters or bytes on the console; returns the status."""
    data = text if isinstance(text, bytes) else text.encode()
    return library.qvxprintf800_(data, len(data))


# Leaks: what many calls leave behind.

CALLS = 10_000


def bytes_left_by(operation, calls=CALLS):
    """The bytes a call leaves in Python's and NumPy's memory. Whatever a call leaks is at least one;
    caches that fill up during the calls are far below."""
    gc.collect()
    tracemalloc.start()
    try:
        for _ in range(200):
            operation()
        before = tracemalloc.get_traced_memory()[0]
        for _ in range(calls):
            operation()
        gc.collect()
        return (tracemalloc.get_traced_memory()[0] - before) / calls
    finally:
        tracemalloc.stop()


def references_left_by(operation, *objects, calls=CALLS):
    """The references to the objects that `calls` calls leave."""
    def counts():
        return [sys.getrefcount(each) for each in objects]

    before = counts()
    for _ in range(calls):
        operation()
    gc.collect()
    return [after - count for after, count in zip(counts(), before)]
