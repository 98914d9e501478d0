"""Problems for the tests of the solver, and the program that some are compared with."""

import itertools
import os
import pathlib

import numpy as np
import scipy.sparse

import zktarn

ROOT = pathlib.Path(__file__).resolve().parents[4]
MODELS = ROOT / "solvers" / "zero_half" / "models"


def model_files():
    """The models that optima.csv lists, smallest first."""
    lines = (MODELS / "optima.csv").read_text().splitlines()[1:]
    files = [MODELS / line.split(",")[0] for line in lines]
    return sorted(files, key=lambda file: file.stat().st_size)


def built(program, variable):
    """A program of the project: what the variable names, that of the package's build tree, or the
    newest of the others; None without one."""
    if os.environ.get(variable):
        return os.environ[variable]
    beside = pathlib.Path(zktarn.__file__).parents[2] / program
    others = sorted(ROOT.glob(f"build/*/{program}"), key=lambda file: file.stat().st_mtime)
    found = [beside] if beside.exists() else others
    return str(found[-1]) if found else None


def program():
    return built("solvers/zero_half/zero_half", "ZKTARN_ZERO_HALF")


def stable_set(edges, nodes):
    """A maximum stable set problem, as arguments of tighten."""
    edges = np.asarray(edges)
    count = len(edges)
    matrix = scipy.sparse.csr_array(
        (np.ones(2 * count), (np.repeat(np.arange(count), 2), edges.ravel())),
        shape=(count, nodes))
    return {"model": -np.ones(nodes), "constraints": (matrix, -np.inf, 1),
            "bounds": (0, 1), "integrality": 1}


def petersen():
    """Ten nodes; LP value -5, optimum -4."""
    return stable_set([(i, (i + 1) % 5) for i in range(5)] + [(i, i + 5) for i in range(5)] +
                      [(5 + i, 5 + (i + 2) % 5) for i in range(5)], 10)


def random_graph(nodes, edges, seed):
    """A stable set problem whose run takes minutes from a few hundred nodes on."""
    numbers = np.random.default_rng(seed)
    chosen = set()
    while len(chosen) < edges:
        a, b = numbers.integers(0, nodes, 2)
        if a != b:
            chosen.add((min(a, b), max(a, b)))
    return stable_set(sorted(chosen), nodes)


def random_program(numbers):
    """A small integer program with at least one integer point, as arguments of tighten, and all
    its integer points. Coefficients include fractions."""
    columns = int(numbers.integers(2, 6))
    rows = int(numbers.integers(1, 6))
    upper = numbers.integers(1, 4, columns)
    matrix = numbers.integers(-4, 5, (rows, columns)) / numbers.choice([1.0, 2.0, 4.0], rows)[:, None]
    points = np.array(list(itertools.product(*(range(u + 1) for u in upper))), dtype=float)
    activity = points[numbers.integers(len(points))] @ matrix.T
    above = np.where(numbers.random(rows) < 0.8, activity + numbers.integers(0, 2, rows), np.inf)
    below = np.where(numbers.random(rows) < 0.3, activity - numbers.integers(0, 2, rows), -np.inf)
    values = points @ matrix.T
    is_feasible = np.all((values <= above + 1e-9) & (values >= below - 1e-9), axis=1)
    problem = {"model": numbers.integers(-5, 6, columns).astype(float),
               "constraints": (matrix, below, above), "bounds": (0, upper), "integrality": 1}
    return problem, points[is_feasible]
