"""The host on which the library runs here: CPython and NumPy.

    functions          dict, name to callable, for the threads that registered none of their own;
                       the library calls "tarnCallback" with a dict of fields. It is what a solver
                       on a thread of C++ calls; `Solve` and `zero_half` register their callable
                       themselves.
    set_bit_generator  what makes the generator of a seed; at first `numpy.random.PCG64`, so that the
                       numbers are those of `numpy.random.default_rng(seed).random()`.
    block_count        how many blocks of memory the library has obtained and not released.
    library            the file of libzktarn_util.
"""

from ._host import block_count, functions, library, set_bit_generator

__all__ = ["block_count", "functions", "library", "set_bit_generator"]
