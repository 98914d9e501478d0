"""Random numbers."""

from operator import index
from typing import Any, Union

import numpy as np
from numpy.typing import NDArray

from . import _core
from ._numbers import _int32


class GeneratorState:
    """A snapshot of a `Generator`, as `Generator.state` returns it.

    It can be restored any number of times, in its generator or in one with the same kind of bit
    generator.
    """

    def __init__(self, snapshot: _core.GeneratorState) -> None:
        if not isinstance(snapshot, _core.GeneratorState):
            raise TypeError("Generator.state() makes a GeneratorState; it has no constructor")
        self._snapshot = snapshot


class Generator:
    """A generator of random numbers, uniformly distributed in [0, 1).

    source    int of 32 bits: a seed; the numbers are those of
              `numpy.random.default_rng(seed).random()`. A negative seed s selects the
              numbers of 2**32 + s.
              Or a `numpy.random` bit generator or `Generator`, which is then shared: a number
              that one of them draws is not drawn again by the other.

    TypeError: another type. ValueError: the seed needs more than 32 bits. One generator must not be
    used by two threads at once.
    C++: random::instantiaterng; random::deleterng runs with the last reference.
    """

    def __init__(
        self, source: Union[int, np.random.BitGenerator, np.random.Generator]
    ) -> None:
        if isinstance(source, (np.random.BitGenerator, np.random.Generator)):
            self._generator = _core.adopt_generator(source)
        else:
            self._generator = _core.generator_from_seed(_int32(source, "a seed"))

    def number(self) -> float:
        """Draws the next number. Returns a float. C++: random::rand_number."""
        return self._generator.draw()

    def numbers(self, count: int) -> NDArray[np.float64]:
        """Draws the next `count` numbers, one after the other.

        count    int, 0 or more.

        Returns a new array, float64, shape (count,). C++: random::rand_number.
        """
        try:
            size = index(count)
        except TypeError:
            raise TypeError(f"count must be an integer, not {type(count).__name__}") from None
        if size < 0:
            raise ValueError(f"count must be 0 or more, not {size}")
        numbers = np.empty(size)
        self._generator.fill(numbers)
        return numbers

    def state(self) -> GeneratorState:
        """Takes a snapshot of the state. C++: random::getrngstate; random::deleterngstate runs with
        the last reference to the snapshot."""
        return GeneratorState(self._generator.save())

    def restore(self, state: GeneratorState) -> None:
        """Returns to a snapshot: the numbers that followed it are drawn again.

        state    GeneratorState.

        TypeError: another type. ValueError: the snapshot is that of another kind of bit generator.
        C++: random::setrngstate.
        """
        if not isinstance(state, GeneratorState):
            raise TypeError(f"state must be a GeneratorState, not {type(state).__name__}")
        self._generator.restore(state._snapshot)

    @property
    def bit_generator(self) -> Any:
        """The NumPy bit generator from which the numbers are drawn."""
        return self._generator.bit_generator()

    def __repr__(self) -> str:
        return f"<Generator of {type(self.bit_generator).__name__}>"
