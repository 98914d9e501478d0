"""Cuts are satisfied by every integer point, and bounds are bounds."""

import numpy as np
import pytest
from problems import model_files, petersen, random_program
from scipy.optimize import milp

from zktarn import zero_half

RUNS = 300


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
    # The programs are no trivial ones.
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
