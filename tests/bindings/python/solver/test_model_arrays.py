"""Models from arrays and from files, and what is refused."""

import gzip
import os
import re

import numpy as np
import pytest
import scipy.sparse
from problems import MODELS, model_files, petersen
from scipy.optimize import Bounds, LinearConstraint, milp

from zktarn import zero_half
from zktarn.zero_half import Model, ModelError

FILES = model_files()


def tighten(*arguments, **keywords):
    return zero_half.tighten(*arguments, display="off", time_limit=1e9, **keywords)


def assert_same(first, second):
    assert first.status == second.status
    assert np.array_equal(first.history, second.history)
    assert np.array_equal(first.rhs, second.rhs)
    assert np.array_equal(first.cuts.toarray(), second.cuts.toarray())
    assert np.array_equal(first.point, second.point)
    assert first.objective == second.objective
    assert [each[:4] for each in first.rounds] == [each[:4] for each in second.rounds]


@pytest.mark.parametrize("file", FILES, ids=lambda file: file.name)
def test_a_file_and_its_arrays_give_the_same(file):
    from_file = tighten(file)
    model = zero_half.read_model(file)
    assert_same(from_file, tighten(model))
    from_arrays = tighten(model.c, model.constraints, model.bounds, model.integrality,
                          optimum=from_file.optimum)
    assert_same(from_file, from_arrays)
    assert from_file.model.file == str(file) and from_arrays.model.file is None


def test_every_form_of_constraints_means_the_same():
    problem = petersen()
    matrix, lower, upper = problem["constraints"]
    dense = matrix.toarray()
    expected = tighten(**problem)
    halves = [(dense[:7], lower, upper), LinearConstraint(dense[7:], lower, upper)]
    forms = [
        LinearConstraint(dense, -np.inf, 1), LinearConstraint(matrix, -np.inf, np.ones(15)),
        (dense, [-np.inf] * 15, [1] * 15), [dense, lower, upper], [(dense, lower, upper)],
        (dense.tolist(), lower, upper), (matrix.tocsc(), lower, upper),
        (matrix.tocoo(), lower, upper), (scipy.sparse.csr_matrix(dense), lower, upper),
        (dense.astype(np.int8), lower, upper), (dense.astype(bool), lower, upper),
        halves, tuple(halves),
    ]
    for form in forms:
        assert_same(tighten(problem["model"], form, problem["bounds"], 1), expected)
    for form in ((-dense, -1), [(-dense, -1)], (-matrix, -1)):
        result = tighten(problem["model"], form, problem["bounds"], 1)
        assert np.array_equal(result.model.row_upper, np.full(15, np.inf))
        assert (result.initial_bound, result.bound) == (-5.0, -4.0)


def test_every_form_of_bounds_and_integrality_means_the_same():
    problem = petersen()
    expected = tighten(**problem)
    for bounds in (Bounds(0, 1), Bounds(np.zeros(10), 1), (0, [1] * 10), [0, 1], (0, 1.9),
                   (-0.5, 1)):
        for integrality in (1, [1] * 10, np.ones(10, dtype=bool), np.ones(10)):
            problem.update(bounds=bounds, integrality=integrality)
            assert_same(tighten(**problem), expected)


def test_defaults_are_those_of_milp():
    # Without bounds x >= 0, without constraints no rows, without integrality no integer column.
    result = tighten([1.0, 2.0], integrality=1)
    assert result.status == "integral" and result.bound == 0.0
    assert np.array_equal(result.point, [0.0, 0.0]) and result.objective == 0.0
    with pytest.raises(ModelError, match="no column is integer"):
        tighten([1.0])


@pytest.mark.parametrize("matrix", [
    scipy.sparse.coo_array(([1.0, 1.0, 2.0], ([0, 0, 0], [0, 0, 1])), shape=(1, 2)),
    scipy.sparse.csr_array(([1.0, 2.0, 1.0], [0, 1, 0], [0, 3]), shape=(1, 2))],
    ids=["coo", "csr"])
def test_duplicates_in_a_sparse_matrix_are_added(matrix):
    model = Model([-1, -1], (matrix, -np.inf, 3), (0, 5), 1)
    assert np.array_equal(model.A.toarray(), [[2.0, 2.0]]) and model.A.nnz == 2
    result = tighten(model)
    assert (result.initial_bound, result.bound, result.status) == (-1.5, -1.0, "integral")
    assert matrix.nnz == 3


def test_the_arguments_are_copied_and_the_attributes_read_only():
    c = np.array([-1.0, -1.0])
    matrix = scipy.sparse.csr_array(np.array([[2.0, 2.0]]))
    model = Model(c, (matrix, -np.inf, 3), (0, 5), 1)
    c[0] = 7.0
    matrix.data[0] = 7.0
    assert model.c[0] == -1.0 and model.A.data[0] == 2.0
    for array in (model.c, model.A.data, model.lower, model.upper, model.row_lower,
                  model.row_upper, model.integrality):
        with pytest.raises(ValueError, match="read-only"):
            array[0] = 0.0


def test_a_maximised_model_has_upper_bounds():
    least = tighten([-1, -1, -1], ([[1, 1, 0], [0, 1, 1], [1, 0, 1]], -np.inf, 1), (0, 1), 1)
    most = tighten(Model([1, 1, 1], ([[1, 1, 0], [0, 1, 1], [1, 0, 1]], -np.inf, 1), (0, 1), 1,
                         maximise=True, constant=10.0))
    assert (least.initial_bound, least.bound, least.objective) == (-1.5, -1.0, -1.0)
    assert (most.initial_bound, most.bound, most.objective) == (11.5, 11.0, 11.0)
    assert np.array_equal(least.point, most.point)


def test_a_file_may_be_text_or_path_or_bytes_and_lp_or_compressed(tmp_path):
    text = "Maximize\n obj: x + y\nSubject To\n r: 2 x + 2 y <= 3\nBounds\n x <= 5\n y <= 5\n" \
           "Generals\n x y\nEnd\n"
    (tmp_path / "a.lp").write_text(text)
    for name in (tmp_path / "a.lp", str(tmp_path / "a.lp"), os.fsencode(tmp_path / "a.lp")):
        result = tighten(name)
        assert (result.initial_bound, result.bound) == (1.5, 1.0)
    (tmp_path / "p.mps.gz").write_bytes(gzip.compress((MODELS / "p0033.mps").read_bytes()))
    expected = tighten(MODELS / "p0033.mps", optimum=3089)
    assert_same(tighten(tmp_path / "p.mps.gz", optimum=3089), expected)


def test_a_file_named_minus_is_not_standard_input(tmp_path, monkeypatch):
    monkeypatch.chdir(tmp_path)
    with pytest.raises(FileNotFoundError):
        tighten("-")
    (tmp_path / "-").write_bytes((MODELS / "p0033.mps").read_bytes())
    assert len(tighten("-").rhs) > 0


def test_a_name_that_is_not_unicode_is_read_and_shown(tmp_path):
    file = os.fsencode(tmp_path) + b"/\xff\xe4.mps"
    with open(file, "wb") as stream:
        stream.write((MODELS / "p0033.mps").read_bytes())
    result = tighten(file)
    assert os.fsencode(result.model.file) == file
    assert str(result) and repr(result)


def test_the_known_optimum_is_looked_up_beside_the_file(tmp_path):
    (tmp_path / "p.mps").write_bytes((MODELS / "p0033.mps").read_bytes())
    # Without a round, because an integral relaxation would give its bound as the optimum.
    assert tighten(tmp_path / "p.mps", rounds=0).optimum is None
    (tmp_path / "optima.csv").write_text("file,optimum\np.mps,3089\n")
    assert tighten(tmp_path / "p.mps", rounds=0).optimum == 3089.0
    assert tighten(tmp_path / "p.mps", rounds=0, optimum=3100).optimum == 3100.0


def test_the_model_with_its_cuts_has_the_same_integer_optimum(tmp_path):
    result = tighten(MODELS / "p0033.mps")
    model = result.model
    with_cuts = milp(model.c, constraints=[model.constraints, result.constraint],
                     bounds=model.bounds, integrality=model.integrality)
    assert with_cuts.fun == pytest.approx(3089.0)
    result.write_mps(tmp_path / "cuts.mps")
    again = zero_half.read_model(tmp_path / "cuts.mps")
    assert again.A.shape[0] == model.A.shape[0] + len(result.rhs)
    assert np.array_equal(again.A.toarray()[model.A.shape[0]:], result.cuts.toarray())
    assert tighten(again, rounds=0).initial_bound == pytest.approx(result.relaxation_bound)


A = [[1, 1], [1, -1]]
WRONG = [
    (TypeError, "c has to be an array of real numbers", dict(model=["a", "b"])),
    (TypeError, "c has to be an array of real numbers", dict(model=[1j, 2])),
    (TypeError, "c has to be an array of real numbers", dict(model=[[1, 2], [3]])),
    (TypeError, "c has to be an array of real numbers", dict(model=None)),
    (ValueError, "c has to be a one-dimensional array of at least one", dict(model=[[1, 2]])),
    (ValueError, "c has to be a one-dimensional array of at least one", dict(model=[])),
    (ValueError, "c has to be a one-dimensional array of at least one", dict(model=3.0)),
    (ValueError, "c has a NaN", dict(model=[1, np.nan])),
    (ValueError, "c has an infinite coefficient", dict(model=[1, np.inf])),
    (TypeError, "constraints has to be a LinearConstraint", dict(constraints=3)),
    (TypeError, "constraints has to be a LinearConstraint", dict(constraints="rows")),
    (TypeError, "each of the constraints has to be", dict(constraints=[3, 4])),
    (TypeError, "the matrix A of constraints has to be", dict(constraints=([["a", "b"]], 0, 1))),
    (TypeError, "the matrix A of constraints has to hold real",
     dict(constraints=(scipy.sparse.csr_array(np.array([[1j, 2]])), 0, 1))),
    (ValueError, "has 3 columns, but c has 2", dict(constraints=([[1, 2, 3]], 0, 1))),
    (ValueError, "has 3 dimensions, not 2", dict(constraints=(np.ones((1, 1, 2)), 0, 1))),
    (ValueError, "the matrix A of constraints has a NaN", dict(constraints=([[np.nan, 1]], 0, 1))),
    (ValueError, "the matrix A of constraints has a NaN",
     dict(constraints=(scipy.sparse.csr_array(np.array([[np.nan, 1]])), 0, 1))),
    (ValueError, r"the lower side of constraints has the shape \(3,\)",
     dict(constraints=(A, [0, 0, 0], 1))),
    (ValueError, "the upper side of constraints has a NaN", dict(constraints=(A, 0, np.nan))),
    (TypeError, "the upper side of constraints has to be an array",
     dict(constraints=(A, 0, None))),
    (TypeError, "bounds has to be", dict(bounds=3)),
    (TypeError, "bounds has to be", dict(bounds=(0, 1, 2))),
    (ValueError, r"the upper side of bounds has the shape \(3,\)", dict(bounds=(0, [1, 2, 3]))),
    (ValueError, "the lower side of bounds has a NaN", dict(bounds=(np.nan, 1))),
    (ValueError, "semi-continuous columns are not supported", dict(integrality=2)),
    (ValueError, "neither 0 nor 1", dict(integrality=[0, 0.5])),
    (ValueError, r"integrality has the shape \(3,\)", dict(integrality=[1, 1, 1])),
    (ModelError, "no column is integer", dict(integrality=0)),
    (ModelError, "a coefficient is beyond 1e15", dict(constraints=([[1e16, 1]], 0, 1))),
    (ModelError, "a coefficient is beyond 1e15", dict(constraints=([[np.inf, 1]], 0, 1))),
    (ModelError, "a bound or a right-hand side is beyond 1e15", dict(bounds=(0, 1e16))),
    (ModelError, "there is no integer between the bounds of column c1", dict(bounds=(0.2, 0.8))),
    (ModelError, "the left-hand side of row r2 is above", dict(constraints=(A, [0, 2], 1))),
    (ModelError, "the relaxation has no feasible point", dict(constraints=(A, [5, -9], 9))),
    (ModelError, "the relaxation is unbounded", dict(model=[-1, 0], bounds=(0, np.inf))),
    (TypeError, "rounds is an integer, not float", dict(rounds=1.5)),
    (ValueError, "rounds is -1, but has to be from 0", dict(rounds=-1)),
    (ValueError, "rounds is 1000001, but", dict(rounds=1000001)),
    (TypeError, "time_limit is a number, not str", dict(time_limit="1")),
    (TypeError, "time_limit is a number, not NoneType", dict(time_limit=None)),
    (ValueError, "time_limit is nan, but", dict(time_limit=np.nan)),
    (ValueError, "time_limit is -1, but", dict(time_limit=-1)),
    (TypeError, "seed is an integer, not str", dict(seed="1")),
    (ValueError, "seed is 2147483648, but", dict(seed=2**31)),
    (ValueError, "display is 'all', but", dict(display="all")),
    (ValueError, r"display is \['off'\], but", dict(display=["off"])),
    (ValueError, "stop_at_gap is 101, but", dict(stop_at_gap=101)),
    (TypeError, "optimum is a number, not str", dict(optimum="4")),
    (ValueError, "optimum is inf, but", dict(optimum=np.inf)),
    (TypeError, "output_function has to be callable, not int", dict(output_function=3)),
]


@pytest.mark.parametrize("kind, sentence, changed", WRONG, ids=lambda value: str(value)[:40])
def test_a_wrong_argument_is_named_in_one_sentence(kind, sentence, changed):
    arguments = dict(model=[1, 1], constraints=(A, -np.inf, 1), bounds=(0, 1), integrality=1,
                     display="off")
    if changed.get("bounds") == (0, np.inf):
        arguments["constraints"] = None
    arguments.update(changed)
    with pytest.raises(kind) as caught:
        zero_half.tighten(**arguments)
    assert caught.type is kind
    assert re.search(sentence, str(caught.value)), str(caught.value)
    assert "\n" not in str(caught.value) and len(str(caught.value)) < 200
    assert zero_half.partial_result(caught.value) is None


WRONG_MODELS = [
    (ValueError, "column_names has 1 texts, but has to have 2", dict(column_names=["a"])),
    (TypeError, "row_names has to hold texts", dict(row_names=[1, 2])),
    (TypeError, "constant is a number, not str", dict(constant="1")),
    (ValueError, "constant is nan, but", dict(constant=np.nan)),
]


@pytest.mark.parametrize("kind, sentence, changed", WRONG_MODELS,
                         ids=lambda value: str(value)[:40])
def test_a_wrong_keyword_of_a_model_is_named(kind, sentence, changed):
    with pytest.raises(kind, match=sentence):
        Model([1, 1], (A, -np.inf, 1), (0, 1), 1, **changed)


def test_a_name_that_occurs_twice_is_refused():
    model = Model([1, 1], (A, -np.inf, 1), (0, 1), 1, column_names=["x", "x"])
    with pytest.raises(ModelError, match="the name x occurs twice"):
        tighten(model)


@pytest.mark.parametrize("name", ["constraints", "bounds", "integrality"])
def test_a_file_takes_no_arrays(name):
    value = {"constraints": (A, 0, 1), "bounds": (0, 1), "integrality": 1}[name]
    for model in (MODELS / "p0033.mps", Model([1], integrality=1)):
        with pytest.raises(TypeError, match=f"{name} belongs to an array c"):
            tighten(model, **{name: value})


def test_a_file_that_cannot_be_opened_raises_the_error_of_open(tmp_path):
    with pytest.raises(FileNotFoundError, match="none.mps") as caught:
        tighten(tmp_path / "none.mps")
    assert caught.value.filename is not None
    with pytest.raises(IsADirectoryError):
        tighten(tmp_path)
    with pytest.raises(ValueError, match="null character"):
        tighten("a\0b")
    with pytest.raises(FileNotFoundError):
        tighten(MODELS / "p0033.mps").write_mps(tmp_path / "none" / "out.mps")


def test_a_file_that_holds_no_model_is_refused(tmp_path):
    for content, sentence in ((b"", "the file is empty"), (b"no model\n", "this is not an MPS file")):
        (tmp_path / "a.mps").write_bytes(content)
        with pytest.raises(ModelError, match=f"a.mps: {sentence}"):
            tighten(tmp_path / "a.mps")
    for content in ("no model", "Minimize\n x\nSubject To\n", "no model\nEnd\n"):
        (tmp_path / "a.lp").write_text(content)
        with pytest.raises(ModelError, match="this is not an LP file"):
            tighten(tmp_path / "a.lp")
