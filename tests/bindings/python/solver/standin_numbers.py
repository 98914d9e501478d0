"""The random numbers of the stand-in host as a NumPy bit generator.

The program zero_half runs on the stand-in, whose generator is the 64-bit Mersenne Twister with the
upper 53 bits of each number. With the same numbers the package has to give the same figures.
"""

import ctypes

N, M = 312, 156
MASK = (1 << 64) - 1
UPPER = MASK ^ ((1 << 31) - 1)


class Twister:
    """The 64-bit Mersenne Twister (Nishimura 2000)."""

    def __init__(self, seed):
        self.state = [seed & MASK]
        for i in range(1, N):
            last = self.state[-1]
            self.state.append((6364136223846793005 * (last ^ (last >> 62)) + i) & MASK)
        self.place = N

    def _turn(self):
        x = self.state
        for i in range(N):
            y = (x[i] & UPPER) | (x[(i + 1) % N] & ~UPPER & MASK)
            x[i] = x[(i + M) % N] ^ (y >> 1) ^ (0xB5026F5AA96619E9 if y & 1 else 0)
        self.place = 0

    def next(self):
        if self.place == N:
            self._turn()
        x = self.state[self.place]
        self.place += 1
        x ^= (x >> 29) & 0x5555555555555555
        x ^= (x << 17) & 0x71D67FFFEDA60000
        x ^= (x << 37) & 0xFFF7EEE000000000
        return x ^ (x >> 43)


DOUBLE = ctypes.CFUNCTYPE(ctypes.c_double, ctypes.c_void_p)


class Functions(ctypes.Structure):
    """`bitgen_t` of numpy/random/bitgen.h."""

    _fields_ = [("state", ctypes.c_void_p), ("next_uint64", ctypes.c_void_p),
                ("next_uint32", ctypes.c_void_p), ("next_double", DOUBLE),
                ("next_raw", ctypes.c_void_p)]


new_capsule = ctypes.pythonapi.PyCapsule_New
new_capsule.restype = ctypes.py_object
new_capsule.argtypes = [ctypes.c_void_p, ctypes.c_char_p, ctypes.c_void_p]


class StandinNumbers:
    """A bit generator that draws what the stand-in draws with this seed."""

    drawn = 0

    def __init__(self, seed):
        twister = Twister(seed)

        def next_double(_):
            StandinNumbers.drawn += 1
            return (twister.next() >> 11) * 2.0**-53

        self.functions = Functions(None, None, None, DOUBLE(next_double), None)
        self.capsule = new_capsule(ctypes.addressof(self.functions), b"BitGenerator", None)
