"""Builds the package by the project's CMake.

The wheel holds what the CMake component `python` installs: the Python files, the extension modules,
libzktarn_util, and the host's libraries beside it. Run by pip; see README.md.
"""

import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile

from setuptools import Extension, setup
from setuptools.command.build_ext import build_ext

ROOT = pathlib.Path(__file__).resolve().parents[2]


def fail(sentence):
    """Ends the build with one sentence."""
    raise SystemExit(f"zktarn: {sentence}")


def version():
    """Returns the version that the library states."""
    header = ROOT / "src" / "zktarn" / "version.hpp"
    if not header.is_file():
        fail("the package is built inside the project's sources, and src/zktarn/version.hpp is not "
             "above bindings/python; run pip in a checkout")
    text = header.read_text(encoding="utf-8")
    return ".".join(re.search(rf"VERSION_{part} (\d+)", text)[1]
                    for part in ("MAJOR", "MINOR", "PATCH"))


def require_tools():
    """Ends the build with one sentence when this Python, or the system, lacks what it needs."""
    try:
        import numpy  # noqa: F401, pylint: disable=import-outside-toplevel,unused-import
    except ImportError:
        fail(f"{sys.executable} has no NumPy; on Debian make the environment by "
             "/usr/bin/python3 -m venv --system-site-packages, and run pip install with "
             "--no-build-isolation")
    if shutil.which("cmake") is None:
        fail("there is no cmake on PATH; on Debian install cmake and g++")


def run(*command):
    """Runs a command; ends the build with one sentence when it fails."""
    try:
        subprocess.run(command, check=True)
    except subprocess.CalledProcessError as error:
        fail(f"'{' '.join(command[:3])} ...' ended with status {error.returncode}; its output is "
             "above")


def build_package(prefix, jobs):
    """Builds the package and puts its folder below `prefix`."""
    with tempfile.TemporaryDirectory() as build:
        generator = ["-G", "Ninja"] if shutil.which("ninja") else []
        run("cmake", "-S", str(ROOT), "-B", build, *generator,
            "-DCMAKE_BUILD_TYPE=Release", f"-DPython_EXECUTABLE={sys.executable}",
            "-DZKTARN_PYTHON=ON", "-DZKTARN_PYTHON_INSTALL_DIR=.", "-DZKTARN_C=OFF",
            "-DZKTARN_INSTALL=OFF", "-DZKTARN_WERROR=OFF")
        run("cmake", "--build", build, "--target", "zktarn_python", "--parallel", str(jobs))
        run("cmake", "--install", build, "--component", "python", "--prefix", str(prefix))


class CMakeBuild(build_ext):
    """Builds all extension modules at once, and copies the package to the folder that setuptools packs."""

    def run(self):
        if self.inplace or getattr(self, "editable_mode", False):
            fail("there is no editable installation; build with cmake -DZKTARN_PYTHON=ON and set "
                 "PYTHONPATH to the folder python/ of the build tree")
        require_tools()
        prefix = pathlib.Path(self.build_lib).resolve()
        # Files of an earlier build would get into the wheel.
        shutil.rmtree(prefix / "zktarn", ignore_errors=True)
        build_package(prefix, self.parallel or os.cpu_count() or 1)

    def get_outputs(self):
        package = pathlib.Path(self.build_lib) / "zktarn"
        return [str(file) for file in package.rglob("*") if file.is_file()]


setup(
    version=version(),
    packages=["zktarn"],
    package_data={"zktarn": ["*.pyi", "py.typed"]},
    # Marks the wheel as specific to a platform and a Python version. CMake has the list of sources.
    ext_modules=[Extension("zktarn._host", sources=[])],
    cmdclass={"build_ext": CMakeBuild},
    zip_safe=False,
)
