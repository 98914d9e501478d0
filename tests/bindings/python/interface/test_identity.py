"""The cases of the identity program, each call made through Python, give the same hashes."""

import pathlib

import pytest

from built_modules import load

ROOT = pathlib.Path(__file__).resolve().parents[4]
GOLDEN = ROOT / "tests" / "binary" / "identity" / "results.golden"

# What Python does with its own means, and what the host decides: see the table in docs/python.md.
ELSEWHERE = {"random._rng_stateinitialise", "random.deleterng", "random.deleterngstate",
             "random.getrngstate", "random.instantiaterng", "random.rand_number",
             "random.setrngstate", "util.xcopy_i1", "util.xcopy_i4", "util.xcopy_r8",
             "util.xzero_i4", "util.xzero_r8"}


@pytest.fixture(scope="module")
def through_python():
    """The module that draws the cases, beside the package in the build tree."""
    return load("identity_through_python")


def test_hashes_are_those_of_every_other_language(through_python):
    golden = dict(line.split() for line in GOLDEN.read_text().splitlines())
    for name in ELSEWHERE:
        del golden[name]
    assert through_python.hashes() == golden
