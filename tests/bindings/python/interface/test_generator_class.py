"""Generator: the numbers are NumPy's, snapshots restore them, errors."""

import numpy as np
import pytest

import zktarn
from test_whole_arrays import refuses


@pytest.mark.parametrize("seed", [0, 1, 12345, 2**31 - 1, -1, -2**31])
def test_the_numbers_are_those_of_numpy(seed):
    numbers = np.random.default_rng(seed % 2**32).random(1000)
    assert zktarn.Generator(seed).numbers(1000).tolist() == numbers.tolist()
    rng = zktarn.Generator(seed)
    assert [rng.number() for _ in range(5)] == numbers[:5].tolist()


@pytest.mark.parametrize("kind", [np.random.PCG64, np.random.MT19937, np.random.Philox,
                                  np.random.SFC64])
def test_a_bit_generator_is_shared(kind):
    shared, alone = kind(3), np.random.Generator(kind(3))
    rng = zktarn.Generator(shared)
    drawn = [rng.number(), np.random.Generator(shared).random(), rng.number()]
    assert drawn == alone.random(3).tolist()
    assert rng.bit_generator is shared
    other = np.random.Generator(kind(3))
    assert zktarn.Generator(other).number() == np.random.Generator(kind(3)).random()
    assert repr(rng) == f"<Generator of {kind.__name__}>"


def test_a_snapshot_restores_the_numbers_any_number_of_times():
    rng = zktarn.Generator(9)
    rng.number()
    state = rng.state()
    numbers = rng.numbers(10).tolist()
    for _ in range(3):
        rng.restore(state)
        assert rng.numbers(10).tolist() == numbers
    other = zktarn.Generator(1)
    other.restore(state)
    assert other.number() == numbers[0]
    del rng
    other.restore(state)
    assert other.number() == numbers[0]


def test_numbers_have_the_shape_asked_for():
    rng = zktarn.Generator(1)
    assert rng.numbers(0).shape == (0,) and rng.numbers(np.int64(3)).dtype == np.float64


def test_what_generators_refuse():
    make = zktarn.Generator
    refuses(TypeError, "a seed must be an integer, not float", make, 1.0)
    refuses(TypeError, "a seed must be an integer, not str", make, "1")
    refuses(ValueError, f"a seed must be an integer of 32 bits, not {2**31}", make, 2**31)
    refuses(ValueError, "count must be 0 or more, not -1", make(1).numbers, -1)
    refuses(TypeError, "count must be an integer, not float", make(1).numbers, 1.0)
    refuses(TypeError, "state must be a GeneratorState, not int", make(1).restore, 1)
    refuses(TypeError, "Generator.state() makes a GeneratorState; it has no constructor",
            zktarn.GeneratorState, 1)
    with pytest.raises(ValueError):
        make(np.random.MT19937(1)).restore(make(1).state())
