"""Generators: bit generators of NumPy."""

import threading

import numpy
import pytest

import host

from zktarn import host as public

BIT_GENERATORS = [numpy.random.PCG64, numpy.random.PCG64DXSM, numpy.random.MT19937,
                  numpy.random.Philox, numpy.random.SFC64]
COUNT = 1000


@pytest.fixture(params=["held", "released"])
def library(request):
    """The operations, called with the interpreter's lock and without."""
    return getattr(host, request.param)


@pytest.fixture
def make_generator():
    """Makes generators of a seed, which are deleted at the end."""
    made = []

    def make(seed):
        made.append(host.held.instantiateRngOptim(seed))
        return made[-1]

    yield make
    for generator in made:
        host.held.deleteRngOptim(generator)


@pytest.fixture
def restore_bit_generator():
    """Puts the default bit generator back."""
    yield
    public.set_bit_generator(None)


@pytest.mark.parametrize("seed", [0, 1, 42, (1 << 31) - 1, -1, -(1 << 31)])
def test_the_numbers_are_those_of_default_rng(library, make_generator, seed):
    expected = numpy.random.default_rng(seed % (1 << 32)).random(COUNT)
    assert host.draw(make_generator(seed), COUNT, library) == expected.tolist()


def test_many_numbers_are_drawn_at_once(library, make_generator):
    values = (host.REAL * (COUNT + 1))(*[-1.0] * (COUNT + 1))
    library.getRandUniformOptim(make_generator(3), values, host.I64(COUNT))
    assert list(values) == numpy.random.default_rng(3).random(COUNT).tolist() + [-1.0]


@pytest.mark.parametrize("bit_generator", BIT_GENERATORS)
def test_any_bit_generator_serves(make_generator, restore_bit_generator, bit_generator):
    public.set_bit_generator(bit_generator)
    expected = numpy.random.Generator(bit_generator(7)).random(COUNT)
    assert host.draw(make_generator(7), COUNT) == expected.tolist()


@pytest.mark.parametrize("bit_generator", BIT_GENERATORS)
def test_a_snapshot_is_the_state_and_repeats(make_generator, restore_bit_generator, bit_generator):
    public.set_bit_generator(bit_generator)
    generator = make_generator(7)
    host.draw(generator, 5)
    snapshot = host.held.getRngStateOptim(generator)
    expected = numpy.random.Generator(bit_generator(7))
    expected.random(5)
    assert repr(host.object_of(snapshot)) == repr(expected.bit_generator.state)
    following = host.draw(generator, 20)
    for _ in range(2):
        host.held.setRngStateOptim(generator, snapshot)
        assert host.draw(generator, 20) == following == expected.random(20).tolist()
        host.draw(generator, 3)
        expected = numpy.random.Generator(bit_generator(7))
        expected.random(5)
    host.held.deleteRngStateOptim(snapshot)


def test_a_snapshot_outlives_its_generator_and_restores_another():
    first, second = (host.held.instantiateRngOptim(seed) for seed in (1, 2))
    snapshot = host.held.getRngStateOptim(first)
    expected = host.draw(first, 10)
    host.held.deleteRngOptim(first)
    host.held.setRngStateOptim(second, snapshot)
    assert host.draw(second, 10) == expected
    host.held.deleteRngOptim(second)
    host.held.deleteRngStateOptim(snapshot)


def test_a_snapshot_of_another_kind_is_reported_and_changes_nothing(
        make_generator, restore_bit_generator):
    generator = make_generator(1)
    public.set_bit_generator(numpy.random.Philox)
    snapshot = host.held.getRngStateOptim(make_generator(1))
    host.held.setRngStateOptim(generator, snapshot)
    host.held.deleteRngStateOptim(snapshot)
    with pytest.raises(ValueError, match="PCG64"):
        host.raise_stored()
    assert host.draw(generator, 3) == numpy.random.default_rng(1).random(3).tolist()


def test_null_has_no_snapshot(library):
    assert library.getRngStateOptim(None) is None
    host.raise_stored()


@pytest.mark.parametrize("bit_generator", BIT_GENERATORS)
@pytest.mark.parametrize("as_generator", [False, True])
def test_an_adopted_generator_shares_its_numbers(library, bit_generator, as_generator):
    mine = bit_generator(7)
    expected = numpy.random.Generator(bit_generator(7)).random(30).tolist()
    python_side = numpy.random.Generator(mine)
    generator = host.held.zktarn_python_adopt_generator(python_side if as_generator else mine)
    drawn = []
    for _ in range(10):
        drawn += host.draw(generator, 2, library)
        drawn.append(python_side.random())
    assert drawn == expected
    host.held.deleteRngOptim(generator)
    python_side.random()


def test_the_bit_generator_behind_a_generator_is_shared(make_generator):
    generator = make_generator(7)
    bit_generator = host.held.zktarn_python_bit_generator(generator)
    assert type(bit_generator) is numpy.random.PCG64
    drawn = host.draw(generator, 1) + [numpy.random.Generator(bit_generator).random()]
    assert drawn == numpy.random.default_rng(7).random(2).tolist()


@pytest.mark.parametrize("name", ["held", "released"])
def test_draws_from_a_shared_bit_generator_wait_for_its_lock(name):
    mine = numpy.random.PCG64(7)
    generator = host.held.zktarn_python_adopt_generator(mine)
    drawn = []
    thread = threading.Thread(
        target=lambda: drawn.extend(host.draw(generator, 1, getattr(host, name))))
    with mine.lock:
        thread.start()
        thread.join(0.2)
        assert thread.is_alive() and drawn == []
    thread.join()
    assert drawn == numpy.random.default_rng(7).random(1).tolist()
    host.held.deleteRngOptim(generator)


@pytest.mark.parametrize("what", [None, 7, "PCG64", numpy.random.PCG64, numpy.random.RandomState,
                                  object()])
def test_only_generators_are_adopted(what):
    with pytest.raises(TypeError, match="numpy.random.Generator or a NumPy bit generator"):
        host.held.zktarn_python_adopt_generator(what)


def test_a_factory_has_to_be_callable():
    with pytest.raises(TypeError, match="callable"):
        public.set_bit_generator(7)


def test_a_factory_that_fails_is_null_and_reported(restore_bit_generator):
    def fail(seed):
        raise LookupError(f"no generator for {seed}")

    public.set_bit_generator(fail)
    assert host.held.instantiateRngOptim(-1) is None
    with pytest.raises(LookupError, match="no generator for 4294967295"):
        host.raise_stored()
    public.set_bit_generator(lambda seed: object())
    assert host.held.instantiateRngOptim(1) is None
    with pytest.raises(AttributeError, match="capsule"):
        host.raise_stored()


def test_a_factory_without_memory_is_null_and_nothing_else(restore_bit_generator):
    def fail(seed):
        raise MemoryError

    public.set_bit_generator(fail)
    assert host.held.instantiateRngOptim(1) is None
    host.raise_stored()


def test_threads_have_generators_of_their_own():
    results = {}

    def work(seed):
        generator = host.released.instantiateRngOptim(seed)
        results[seed] = host.draw(generator, COUNT, host.released)
        host.released.deleteRngOptim(generator)

    threads = [threading.Thread(target=work, args=(seed,)) for seed in range(8)]
    for thread in threads:
        thread.start()
    for thread in threads:
        thread.join()
    assert results == {seed: numpy.random.default_rng(seed).random(COUNT).tolist()
                       for seed in range(8)}


@pytest.mark.without_sanitizer
def test_calls_leave_nothing():
    mine = numpy.random.PCG64(7)

    def once():
        generator = host.held.zktarn_python_adopt_generator(mine)
        snapshot = host.held.getRngStateOptim(generator)
        host.held.setRngStateOptim(generator, snapshot)
        host.held.deleteRngStateOptim(snapshot)
        host.draw(generator)
        host.held.zktarn_python_bit_generator(generator)
        host.held.deleteRngOptim(generator)

    assert host.bytes_left_by(once) < 1
    assert host.references_left_by(once, mine, mine.lock, calls=1000) == [0, 0]
