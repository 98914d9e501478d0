"""The host on which the library runs here: CPython and NumPy.

    functions          dict, name to callable: the functions of the host's language. The library
                       calls "tarnCallback" with a dict of fields. `Solve` and `zero_half` register
                       their own callable for the thread on which they run; every other thread uses
                       this dict.
    set_bit_generator  sets the callable that makes the bit generator of a seed; initially
                       `numpy.random.PCG64`, which draws the numbers of
                       `numpy.random.default_rng(seed).random()`. None restores it.
    block_count        returns how many blocks of memory the library has obtained and not released.
    library            the file of libzktarn_util.
"""

from ._host import block_count, functions, library, set_bit_generator

__all__ = ["block_count", "functions", "library", "set_bit_generator"]
