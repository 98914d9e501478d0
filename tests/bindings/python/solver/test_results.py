"""Cuts are satisfied by every integer point, bounds are bounds, and the package finds what the program finds, on
the models of the solver.

The program zero_half runs on the stand-in, whose generator is the 64-bit Mersenne Twister with the
upper 53 bits of each number. With the same numbers the package has to give the same figures.
"""

import ctypes
import json
import subprocess

import numpy as np
import pytest
from problems import model_files, petersen, program, random_program
from scipy.optimize import milp

from zktarn import _host, zero_half

FILES = model_files()
RUNS = 300
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


def test_the_twister_draws_the_numbers_of_its_standard():
    # The C++ standard gives the 10000th number of the default seed.
    twister = Twister(5489)
    for _ in range(9999):
        twister.next()
    assert twister.next() == 9981545732273789042


@pytest.fixture
def standin_numbers():
    _host.set_bit_generator(StandinNumbers)
    yield
    _host.set_bit_generator(None)


def figures_of(result):
    return {
        "lp_bound": result.initial_bound, "bound": result.bound, "optimum": result.optimum,
        "gap_closed_percent": result.gap_closed, "cuts_kept": len(result.rhs),
        "status": result.status, "seed": result.seed,
        "rounds": [(each.number, each.bound, each.cuts_found, each.cuts_kept)
                   for each in result.rounds],
    }


def figures_of_program(file, folder, seed):
    """The figures of the JSON report of the program, and the model with its cuts."""
    command = [program(), str(file), "--display=off", f"--seed={seed}", "--time-limit=1e9",
               f"--json={folder / 'report.json'}", f"--cuts={folder / 'cuts.mps'}"]
    subprocess.run(command, check=True)
    report = json.loads((folder / "report.json").read_text())["models"][0]
    figures = {name: report[name] for name in (
        "lp_bound", "bound", "optimum", "gap_closed_percent", "cuts_kept", "status", "seed")}
    figures["rounds"] = [(each["round"], each["bound"], each["cuts_found"], each["cuts_kept"])
                         for each in report["rounds"]]
    return figures, (folder / "cuts.mps").read_bytes()


@pytest.mark.skipif(program() is None, reason="the program zero_half is not built; "
                    "ZKTARN_ZERO_HALF names it")
@pytest.mark.parametrize("file", FILES, ids=lambda file: file.name)
@pytest.mark.parametrize("seed", [1, -7])
def test_the_same_seed_gives_the_figures_and_the_cuts_of_the_program(
        file, seed, tmp_path, standin_numbers):
    StandinNumbers.drawn = 0
    expected, expected_cuts = figures_of_program(file, tmp_path, seed)
    result = zero_half.tighten(file, seed=seed, time_limit=1e9, display="off")
    assert figures_of(result) == expected
    assert StandinNumbers.drawn > 0
    result.write_mps(tmp_path / "python.mps")
    assert (tmp_path / "python.mps").read_bytes() == expected_cuts


@pytest.mark.parametrize("file", FILES, ids=lambda file: file.name)
def test_cuts_raise_the_bound_and_never_beyond_the_optimum(file):
    result = zero_half.tighten(file, display="off", time_limit=1e9)
    assert result.initial_bound is not None and result.bound is not None
    assert result.optimum is not None
    assert len(result.rhs) > 0
    if file.name != "misc03.mps":
        assert result.bound > result.initial_bound
    assert result.bound <= result.optimum + 1e-6


def test_cuts_of_random_programs_keep_every_integer_point():
    numbers = np.random.default_rng(2024)
    cuts = points = closed = 0
    for _ in range(RUNS):
        problem, feasible = random_program(numbers)
        assert len(feasible) > 0
        result = zero_half.tighten(**problem, display="off", time_limit=1e9,
                                   seed=int(numbers.integers(1000)))
        activity = feasible @ result.cuts.toarray().T
        assert (activity <= result.rhs).all()
        best = (feasible @ problem["model"]).min()
        assert result.initial_bound <= result.bound + 1e-9
        assert result.bound <= best + 1e-6
        assert result.status != "no_integer_point"
        if result.objective is not None:
            assert result.objective == pytest.approx(best)
            assert (feasible == np.round(result.point)).all(axis=1).any()
        cuts += len(result.rhs)
        points += len(feasible)
        closed += result.bound > result.initial_bound + 1e-6
    # The programs are not trivial.
    assert cuts > RUNS / 2 and points > RUNS and closed > RUNS / 10


def test_a_program_without_an_integer_point_is_proven_to_have_none():
    # Exactly one end of each edge of an odd cycle.
    edges = [[1, 1, 0], [0, 1, 1], [1, 0, 1]]
    result = zero_half.tighten([1, 1, 1], (edges, 1, 1), (0, 1), 1, display="off")
    assert result.status == "no_integer_point"
    assert result.initial_bound == 1.5 and result.objective is None
    assert not milp([1, 1, 1], constraints=(np.array(edges), 1, 1), bounds=(0, 1),
                    integrality=1).success


def test_continuous_columns_keep_the_optimum():
    numbers = np.random.default_rng(7)
    cuts = 0
    for _ in range(60):
        problem, _ = random_program(numbers)
        columns = len(problem["model"])
        problem["integrality"] = [1] * (columns - 1) + [0]
        result = zero_half.tighten(**problem, display="off", time_limit=1e9)
        model = result.model
        keywords = dict(bounds=model.bounds, integrality=model.integrality)
        plain = milp(model.c, constraints=model.constraints, **keywords)
        with_cuts = milp(model.c, constraints=[model.constraints, result.constraint], **keywords)
        assert plain.success and with_cuts.success
        assert with_cuts.fun == pytest.approx(plain.fun, abs=1e-6)
        assert result.bound <= plain.fun + 1e-6
        cuts += len(result.rhs)
    assert cuts > 10


@pytest.mark.parametrize("file", model_files()[:3], ids=lambda file: file.name)
def test_cuts_are_integers_over_integer_columns_and_the_point_satisfies_all(file):
    result = zero_half.tighten(file, display="off", time_limit=1e9)
    dense = result.cuts.toarray()
    assert dense.shape == (len(result.rhs), len(result.model.c)) and dense.any(axis=1).all()
    assert np.array_equal(dense, np.round(dense))
    assert not dense[:, result.model.integrality == 0].any()
    model = result.model
    assert (dense @ result.point <= result.rhs + 1e-6).all()
    activity = model.A @ result.point
    slip = 1e-6 * (1 + np.abs(activity))
    assert (activity <= model.row_upper + slip).all()
    assert (activity >= model.row_lower - slip).all()
    assert model.c @ result.point + model.constant == pytest.approx(result.relaxation_bound)


def test_the_point_of_an_integral_end_is_an_optimum():
    result = zero_half.tighten(**petersen(), display="off")
    assert result.status == "integral" and result.message.endswith("is integral")
    assert result.optimum == result.objective == result.bound == -4.0
    assert set(result.point) <= {0.0, 1.0} and result.point.sum() == 4.0
    assert result.gap_closed == 100.0


def test_seeds_select_the_numbers_of_numpy():
    # The same seed gives the same run; some other seed gives another one.
    file = model_files()[1]
    runs = [zero_half.tighten(file, display="off", time_limit=1e9, seed=seed)
            for seed in (5, 5, 6, 7, -1)]
    assert np.array_equal(runs[0].history, runs[1].history)
    assert np.array_equal(runs[0].cuts.toarray(), runs[1].cuts.toarray())
    assert any(not np.array_equal(runs[0].history, other.history) for other in runs[2:])
