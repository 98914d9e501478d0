"""The tutorial about a solver inside Python: its solver compiled, its script run from the page."""

import pathlib
import shutil
import subprocess
import sys

import pytest
import zktarn

ROOT = pathlib.Path(__file__).resolve().parents[4]
PAGE = ROOT / "docs" / "tutorials" / "python.md"
CHECK = [sys.executable, str(ROOT / "tests" / "pages" / "check_readme.py")]


def run(*command):
    ran = subprocess.run([str(each) for each in command], capture_output=True, text=True, check=False)
    assert ran.returncode == 0, ran.stdout + ran.stderr


def test_the_script_prints_what_the_page_says(tmp_path):
    compiler = shutil.which("c++")
    if compiler is None:
        pytest.skip("there is no c++ to compile the solver with")
    library = next((pathlib.Path(zktarn.__file__).parent / "_lib").glob("libzktarn_util.*"))
    run(*CHECK, "extract", PAGE, "packing", tmp_path / "packing.cpp")
    run(*CHECK, "extract", PAGE, "script", tmp_path / "script.py")
    run(compiler, "-std=c++20", "-shared", "-fPIC", "-I", ROOT / "src", tmp_path / "packing.cpp", library,
        "-o", tmp_path / "libpacking.so")
    run(*CHECK, "output", PAGE, "script", sys.executable, tmp_path / "script.py", tmp_path / "libpacking.so")
