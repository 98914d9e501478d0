"""What a user does: pip install, in an environment of his own, without a network; and `cmake --install` into a
prefix."""

import filecmp
import os
import pathlib
import re
import shutil
import subprocess
import sys
import venv
import zipfile

import pytest

ROOT = pathlib.Path(__file__).resolve().parents[4]
PACKAGE_DIR = pathlib.Path(os.environ["PYTHONPATH"].split(os.pathsep)[0])
BUILD = PACKAGE_DIR.parent
LIBRARIES = {"libqv.so", "libqvx.so", "libut.so", "libzkoptimutil.so", "libzktarn_python_host.so",
             "libzktarn_util.so.1"}


def run(*command, **options):
    """Runs a command outside of the package under test; returns what it printed."""
    environment = {name: value for name, value in os.environ.items() if name != "PYTHONPATH"}
    ended = subprocess.run([str(part) for part in command], env=environment, check=False, text=True,
                           stdout=subprocess.PIPE, stderr=subprocess.STDOUT, **options)
    if ended.returncode != 0:
        raise AssertionError(f"status {ended.returncode}\n{ended.stdout}")
    return ended.stdout


@pytest.fixture(scope="module")
def builder(tmp_path_factory):
    """The Python of an environment as the manual makes it."""
    folder = tmp_path_factory.mktemp("builder")
    venv.create(folder, system_site_packages=True, with_pip=True)
    return folder / "bin" / "python"


@pytest.fixture(scope="module")
def wheel(builder, tmp_path_factory):
    """A wheel, built from a copy of the sources that is then deleted."""
    folder = tmp_path_factory.mktemp("wheel")
    sources = folder / "sources"
    shutil.copytree(ROOT, sources, ignore=shutil.ignore_patterns("build", ".git", "*.egg-info"))
    run(builder, "-m", "pip", "wheel", "--no-build-isolation", "--no-index", "--no-deps",
        "--wheel-dir", folder, sources / "bindings" / "python")
    shutil.rmtree(sources)
    (made,) = folder.glob("*.whl")
    return made


@pytest.fixture(scope="module")
def python(builder, wheel, tmp_path_factory):
    """The Python of another environment, with the package."""
    folder = tmp_path_factory.mktemp("user")
    venv.create(folder, system_site_packages=True, with_pip=False)
    made = folder / "bin" / "python"
    run(builder, "-m", "pip", "--python", made, "install", "--no-index", wheel)
    return made


def test_the_wheel_is_for_this_python_and_platform(wheel):
    version = f"cp{sys.version_info.major}{sys.version_info.minor}"
    name, tags = wheel.name.split("-")[0], wheel.name.split("-", 2)[2]
    assert name == "zktarn" and tags.startswith(f"{version}-{version}-linux_")


def test_the_wheel_carries_the_libraries_types_and_licence(wheel):
    with zipfile.ZipFile(wheel) as archive:
        names = set(archive.namelist())
    assert {pathlib.Path(name).name for name in names if "/_lib/" in name} == LIBRARIES
    package = {name for name in names if name.startswith("zktarn/")}
    assert {"zktarn/py.typed", "zktarn/LICENSE", "zktarn/__init__.py",
            "zktarn/_core.pyi"} <= package
    assert names - package == {name for name in names if ".dist-info/" in name}


def test_the_host_in_the_wheel_passes_the_checks(python, tmp_path):
    lines = run(python, "-m", "zktarn", cwd=tmp_path).splitlines()
    assert str(python.parents[1]) in lines[0]
    assert lines[-1].startswith("conformance: ") and lines[-1].endswith(" checks, 0 failed")


def test_only_libraries_of_the_wheel_are_loaded(python, tmp_path):
    maps = run(python, "-c", "import zktarn; print(open('/proc/self/maps').read())", cwd=tmp_path)
    loaded = {pathlib.Path(line.split()[-1]) for line in maps.splitlines() if ".so" in line}
    ours = {path for path in loaded if path.name in LIBRARIES}
    assert {path.name for path in ours} == LIBRARIES
    assert {path.parent.name for path in ours} == {"_lib"}
    assert all(python.parents[1] in path.parents for path in ours)


def test_the_first_lines_of_a_user_run(python, tmp_path):
    page = (ROOT / "bindings" / "python" / "README.md").read_text(encoding="utf-8")
    program = page.split("```python\n", 1)[1].split("```", 1)[0]
    expected = page.split("prints\n\n```text\n", 1)[1].split("```", 1)[0]
    assert run(python, "-c", program, cwd=tmp_path) == expected


def test_the_solver_in_the_wheel_tightens_a_model_and_draws_it(python, tmp_path):
    for module in ("scipy", "matplotlib"):
        pytest.importorskip(module)
    text = run(python, ROOT / "examples" / "python" / "tighten.py", "picture.svg", cwd=tmp_path)
    assert "stopped_by_output_function: the output function stopped the run" in text
    assert "<svg" in (tmp_path / "picture.svg").read_text(encoding="utf-8")


def section(library, name, folder):
    """The contents of a section of a library."""
    contents = folder / "section"
    run("objcopy", "--output-target=binary", f"--only-section={name}", library, contents)
    return contents.read_bytes()


def test_the_library_is_the_one_that_is_installed_everywhere(python, tmp_path):
    build = pathlib.Path(os.environ["PYTHONPATH"].split(os.pathsep)[0]).parent
    run("cmake", "--install", build, "--component", "util", "--prefix", tmp_path)
    (installed,) = tmp_path.glob("lib/**/libzktarn_util.so.1")
    package = build / "python" / "zktarn" / "_lib" / "libzktarn_util.so.1"
    assert filecmp.cmp(installed, package, shallow=False)
    # In another build the path of the build tree leaves other room in the file; the code is the same.
    (carried,) = python.parents[1].glob("lib/*/site-packages/zktarn/_lib/libzktarn_util.so.1")
    for name in (".text", ".rodata"):
        assert section(carried, name, tmp_path) == section(installed, name, tmp_path) != b""


def test_an_editable_installation_is_refused_in_a_sentence(builder, tmp_path):
    copy = tmp_path / "bindings" / "python"
    shutil.copytree(ROOT / "bindings" / "python", copy)
    (tmp_path / "src" / "zktarn").mkdir(parents=True)
    shutil.copy(ROOT / "src" / "zktarn" / "version.hpp", tmp_path / "src" / "zktarn")
    with pytest.raises(AssertionError, match="zktarn: there is no editable installation"):
        run(builder, "-m", "pip", "install", "--no-build-isolation", "--no-index", "--no-deps", "-e",
            copy)


def test_sources_without_the_project_are_refused_in_a_sentence(tmp_path):
    copy = tmp_path / "a" / "b" / "python"
    shutil.copytree(ROOT / "bindings" / "python", copy)
    with pytest.raises(AssertionError, match="zktarn: the package is built inside the project"):
        run(sys.executable, "setup.py", "--version", cwd=copy)


def test_a_python_without_numpy_is_refused_in_a_sentence(tmp_path):
    program = ("import runpy, sys; sys.modules['numpy'] = None; "
               f"sys.argv = ['setup.py', 'build', '--build-base', {str(tmp_path)!r}]; "
               "runpy.run_path('setup.py', run_name='__main__')")
    with pytest.raises(AssertionError, match="zktarn: .* has no NumPy; on Debian make the"):
        run(sys.executable, "-c", program, cwd=ROOT / "bindings" / "python")


def test_cmake_refuses_a_python_without_numpy_in_a_sentence(tmp_path):
    venv.create(tmp_path / "environment", with_pip=False)
    with pytest.raises(AssertionError) as caught:
        run("cmake", "-S", ROOT, "-B", tmp_path / "build", "-DZKTARN_PYTHON=ON", "-DZKTARN_C=OFF",
            f"-DPython_EXECUTABLE={tmp_path / 'environment' / 'bin' / 'python'}")
    assert "needs Python 3.11 or newer with its headers and NumPy" in " ".join(
        str(caught.value).split())


def test_cmake_takes_the_python_of_the_system_when_the_first_has_no_numpy(tmp_path):
    if sys.prefix != "/usr":
        pytest.skip("the tests do not run in the Python of the system")
    venv.create(tmp_path / "environment", with_pip=False)
    first = f"{tmp_path / 'environment' / 'bin'}{os.pathsep}{os.environ['PATH']}"
    output = run("env", f"PATH={first}", "cmake", "-S", ROOT, "-B", tmp_path / "build",
                 "-DZKTARN_PYTHON=ON", "-DZKTARN_C=OFF")
    assert "-- Python package: /usr/bin/python3," in output


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
        ["cmake", "-S", ROOT, "-B", tmp_path, "-G", "Ninja",
         "-DZKTARN_PYTHON=ON", f"-DPython_EXECUTABLE={sys.executable}",
         "-DZKTARN_PYTHON_INSTALL_DIR=/usr/lib/python3"],
        check=False, capture_output=True, text=True)
    assert ended.returncode != 0
    assert "ZKTARN_PYTHON_INSTALL_DIR takes a folder relative" in " ".join(ended.stderr.split())
