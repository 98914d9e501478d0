"""The package as `cmake --install` puts it into a prefix."""

import os
import pathlib
import re
import subprocess
import sys

PACKAGE_DIR = pathlib.Path(os.environ["PYTHONPATH"].split(os.pathsep)[0])
BUILD = PACKAGE_DIR.parent


def install_dir():
    """ZKTARN_PYTHON_INSTALL_DIR of the build."""
    text = (BUILD / "CMakeCache.txt").read_text()
    return re.search(r"^ZKTARN_PYTHON_INSTALL_DIR:STRING=(.*)$", text, re.MULTILINE)[1]


def test_a_prefix_contains_the_package_where_python_looks(tmp_path):
    """A virtual environment is such a prefix: Python adds its folder of packages by itself."""
    subprocess.run(["cmake", "--install", BUILD, "--component", "python", "--prefix", tmp_path],
                   check=True, capture_output=True)
    assert {entry.name for entry in tmp_path.iterdir()} == {install_dir().split("/")[0]}
    version = f"python{sys.version_info[0]}.{sys.version_info[1]}"
    assert re.fullmatch(rf"lib\w*/{version}/(site|dist)-packages", install_dir())

    environment = {name: value for name, value in os.environ.items() if name != "PYTHONPATH"}
    ended = subprocess.run([sys.executable, "-c", "import zktarn; print(zktarn.__file__)"],
                           env=dict(environment, PYTHONPATH=str(tmp_path / install_dir())),
                           check=True, capture_output=True, text=True, cwd=tmp_path)
    assert ended.stdout.strip() == str(tmp_path / install_dir() / "zktarn" / "__init__.py")


def test_an_absolute_folder_is_refused_in_one_sentence(tmp_path):
    ended = subprocess.run(
        ["cmake", "-S", pathlib.Path(__file__).resolve().parents[4], "-B", tmp_path, "-G", "Ninja",
         "-DZKTARN_PYTHON=ON", f"-DPython_EXECUTABLE={sys.executable}",
         "-DZKTARN_PYTHON_INSTALL_DIR=/usr/lib/python3"],
        check=False, capture_output=True, text=True)
    assert ended.returncode != 0
    assert "ZKTARN_PYTHON_INSTALL_DIR takes a folder relative" in " ".join(ended.stderr.split())
