"""Results have the bits of the procedures: the hashes of the identity program's cases, each call made through
Python, and whole arrays processed by vectors of every width."""

import importlib.util
import os
import pathlib

import numpy as np
import pytest

ROOT = pathlib.Path(__file__).resolve().parents[4]
GOLDEN = ROOT / "tests" / "binary" / "identity" / "results.golden"

# Procedures that Python replaces, and results that the host decides: see the table in docs/python.md.
ELSEWHERE = {"random._rng_stateinitialise", "random.deleterng", "random.deleterngstate",
             "random.getrngstate", "random.instantiaterng", "random.rand_number",
             "random.setrngstate", "util.xcopy_i1", "util.xcopy_i4", "util.xcopy_r8",
             "util.xzero_i4", "util.xzero_r8"}
FLAGS = {"is_int", "is_int_scalar", "is_even"}
NAMES = sorted(FLAGS | {"fractional", "floor", "ceil", "fractionality", "nearest", "nearest_scalar"})


def load(name):
    """Loads an extension module that the target zktarn_python_tests has built."""
    package_dir = pathlib.Path(os.environ["PYTHONPATH"].split(os.pathsep)[0])
    found = list((package_dir.parent / "python_tests").glob(f"{name}*.so"))
    assert found, "build the target zktarn_python_tests"
    spec = importlib.util.spec_from_file_location(name, found[0])
    module = importlib.util.module_from_spec(spec)
    spec.loader.exec_module(module)
    return module


@pytest.fixture(scope="module")
def through_python():
    """The module that draws the cases, beside the package in the build tree."""
    return load("identity_through_python")


def test_hashes_are_those_of_every_other_language(through_python):
    golden = dict(line.split() for line in GOLDEN.read_text().splitlines())
    for name in ELSEWHERE:
        del golden[name]
    assert through_python.hashes() == golden


def numbers():
    """Ordinary numbers, numbers near integers and halves, and numbers that are not ordinary."""
    rng = np.random.default_rng(5)
    integers = rng.integers(-10**9, 10**9, 2000).astype(np.float64)
    near = integers + rng.choice([0.0, 1e-9, -1e-9, 1e-6, -1e-6, 0.5, 2e-6], integers.size)
    special = [0.0, -0.0, 0.5, -0.5, 1e-7, -1e-7, 5e-324, -5e-324, 2.0**31 - 2, 1 - 2.0**31, 2.0**31,
               -2.0**31 + 0.5, 2.0**52, -2.0**52 - 1, 2.0**53, 1e300, -1e300, np.inf, -np.inf, np.nan]
    return np.concatenate([near, rng.uniform(-5.0, 5.0, 2001), special, near[:50]])


@pytest.mark.parametrize("name", NAMES)
@pytest.mark.parametrize("width", [16, 32])
def test_each_width_has_the_bits_of_the_procedure(name, width):
    module = load("formulas_by_width")
    if width not in module.widths():
        pytest.skip("this processor has no such vectors")
    formula = getattr(module, name)
    kind = np.bool_ if name in FLAGS else np.float64
    for eps in (1e-6, 0.0, -0.0, 0.3, 0.5, 1.5, 1e9, -1e-6, np.nan, np.inf):
        for x in (numbers(), numbers()[1:], np.ones(3)):
            by_procedure, by_vectors = np.empty(x.size, kind), np.empty(x.size, kind)
            formula(0, x, by_procedure, 10.0, eps)
            formula(width, x, by_vectors, 10.0, eps)
            assert np.array_equal(by_procedure.view(np.uint8), by_vectors.view(np.uint8)), eps
            if kind is np.float64:
                formula(width, x, x, 10.0, eps)  # the results take the place of the numbers
                assert np.array_equal(by_procedure.view(np.uint8), x.view(np.uint8)), eps
