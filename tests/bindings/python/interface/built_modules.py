"""Extension modules of the tests, from the build tree."""

import importlib.util
import os
import pathlib


def load(name):
    """Loads an extension module that the target zktarn_python_tests has built."""
    package_dir = pathlib.Path(os.environ["PYTHONPATH"].split(os.pathsep)[0])
    found = list((package_dir.parent / "python_tests").glob(f"{name}*.so"))
    assert found, "build the target zktarn_python_tests"
    spec = importlib.util.spec_from_file_location(name, found[0])
    module = importlib.util.module_from_spec(spec)
    spec.loader.exec_module(module)
    return module
