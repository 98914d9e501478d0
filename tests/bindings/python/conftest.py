"""Takes the package from the build tree: ZKTARN_PYTHON_DIR, or what the preset `python` builds.

    cmake --preset python && cmake --build --preset python --target zktarn_python_tests
    /usr/bin/python3 -m pytest tests/bindings/python
"""

import os
import pathlib
import signal
import sys

ROOT = pathlib.Path(__file__).resolve().parents[3]
PACKAGE_DIR = os.environ.get("ZKTARN_PYTHON_DIR", str(ROOT / "build" / "python" / "python"))

sys.path.insert(0, PACKAGE_DIR)
# Programs that a test starts take the same package.
os.environ["PYTHONPATH"] = os.pathsep.join(
    [PACKAGE_DIR] + [path for path in [os.environ.get("PYTHONPATH")] if path])

# A shell starts programs in the background with SIGINT ignored, and those that a test starts inherit that.
if signal.getsignal(signal.SIGINT) is signal.SIG_IGN:
    signal.signal(signal.SIGINT, signal.default_int_handler)


def pytest_configure(config):
    """Declares the markers of these tests."""
    config.addinivalue_line(
        "markers", "without_sanitizer: limits memory, replaces a preloaded library, or counts what "
        "calls leave, and so does not fit into a process with a sanitizer")
    config.addinivalue_line(
        "markers", "any_interpreter: checks files, with the same result in every interpreter")
