"""The package runs the unchanged library on this host, whatever else the machine has, and the host passes the
checks of any host."""

import os
import pathlib
import re
import subprocess
import sys

import pytest

import host

OPERATIONS = set(host.SIGNATURES)
# A compiler is needed to build the package, so there is one.
COMPILER = os.environ.get("CXX", "c++")


def symbols(library, *options):
    """The names that nm lists."""
    listed = subprocess.run(["nm", "-D", *options, str(library)],
                            stdout=subprocess.PIPE, text=True, check=True).stdout
    return {line.split()[-1] for line in listed.splitlines()}


def dynamic(library, tag):
    """The values of a tag of the dynamic section."""
    listed = subprocess.run(["readelf", "--dynamic", "--wide", str(library)],
                            stdout=subprocess.PIPE, text=True, check=True).stdout
    return re.findall(rf"\({tag}\).*\[(.*)\]", listed)


def run(program, **variables):
    """Runs a program in Python with further environment variables."""
    return subprocess.run([sys.executable, "-c", program], env=os.environ | variables,
                          stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True, check=False)


@pytest.fixture(scope="module")
def other_host(tmp_path_factory):
    """A folder with a host of the same names whose every request is refused."""
    folder = tmp_path_factory.mktemp("other_host")
    source = folder / "other.cpp"
    source.write_text('extern "C" void* qvMallocExOptim(long) { return nullptr; }\n'
                      'extern "C" void qvFreeExOptim(void*) {}\n')
    for name in ("qv", "qvx", "ut", "zkoptimutil"):
        subprocess.run([COMPILER, "-shared", "-fPIC", f"-Wl,-soname,lib{name}.so",
                        "-o", str(folder / f"lib{name}.so"), str(source)], check=True)
    return folder


@pytest.mark.without_sanitizer
def test_the_host_exports_the_operations_and_its_hooks():
    exported = symbols(host.HOST, "--defined-only")
    assert len(OPERATIONS) == 25
    assert {name for name in exported if not name.startswith("zktarn_python_")} == OPERATIONS
    header = (pathlib.Path(__file__).parents[4] / "bindings/python/src/host/python_host.hpp")
    declared = set(re.findall(r"\b(zktarn_python_\w+)\(", header.read_text(encoding="utf-8")))
    assert {name for name in exported if name.startswith("zktarn_python_")} == declared


def test_the_library_needs_no_operation_that_the_host_lacks():
    needed = {name for name in symbols(host.LIB / "libzktarn_util.so.1", "--undefined-only")
              if re.match(r"qv|ut[A-Z]|\w*Optim$", name)}
    assert needed <= OPERATIONS and len(needed) > 20


@pytest.mark.parametrize("name", ["qv", "qvx", "ut", "zkoptimutil"])
@pytest.mark.without_sanitizer
def test_each_library_of_the_hosts_names_leads_to_the_host(name):
    library = host.LIB / f"lib{name}.so"
    assert dynamic(library, "SONAME") == [f"lib{name}.so"]
    assert "libzktarn_python_host.so" in dynamic(library, "NEEDED")
    assert dynamic(library, "RUNPATH") == ["$ORIGIN"]


@pytest.mark.without_sanitizer
def test_every_extension_names_the_hosts_libraries_and_searches_its_own_folder_first():
    modules = list(host.LIB.parent.glob("*.so"))
    assert modules
    for module in modules:
        needed = dynamic(module, "NEEDED")
        assert {"libqv.so", "libqvx.so", "libut.so", "libzkoptimutil.so",
                "libzktarn_python_host.so", "libzktarn_util.so.1"} <= set(needed), module
        # DT_RPATH comes before LD_LIBRARY_PATH; DT_RUNPATH would come after it.
        assert dynamic(module, "RPATH") == ["$ORIGIN/_lib"] and not dynamic(module, "RUNPATH")
        assert symbols(module, "--defined-only") == {f"PyInit_{module.name.split('.')[0]}"}


@pytest.mark.without_sanitizer
def test_a_loader_path_with_another_host_changes_nothing(other_host):
    ended = run("import host; print(host.held.qvMallocExOptim(8) is not None)",
                LD_LIBRARY_PATH=str(other_host),
                PYTHONPATH=os.environ["PYTHONPATH"] + os.pathsep + str(pathlib.Path(__file__).parent))
    assert (ended.returncode, ended.stdout, ended.stderr) == (0, "True\n", "")


@pytest.mark.without_sanitizer
def test_another_host_that_is_in_the_process_first_is_an_import_error(other_host):
    preloaded = run("import zktarn", LD_PRELOAD=str(other_host / "libzkoptimutil.so"))
    loaded = run(f"import ctypes; ctypes.CDLL({str(other_host / 'libzkoptimutil.so')!r}, "
                 "ctypes.RTLD_GLOBAL); import zktarn")
    for ended in (preloaded, loaded):
        assert ended.returncode == 1
        last = ended.stderr.splitlines()[-1]
        assert last.startswith("ImportError: libzktarn_util (") and "another host" in last


def test_nothing_of_the_stand_in_is_in_the_process():
    ended = run("import zktarn; print(open('/proc/self/maps').read())")
    mapped = {line.split()[-1] for line in ended.stdout.splitlines() if ".so" in line}
    ours = {path for path in mapped
            if re.search(r"lib(qv|qvx|ut|zkoptimutil|zktarn_\w+)[.]so", path)}
    assert {pathlib.Path(path).parent for path in ours} == {host.LIB}
    assert len(ours) == 6


def package(*arguments):
    """Runs `python -m zktarn`; returns the status and the lines of standard output."""
    ended = subprocess.run([sys.executable, "-m", "zktarn", *arguments],
                           stdout=subprocess.PIPE, text=True, check=False)
    return ended.returncode, ended.stdout.splitlines()


def test_every_check_passes():
    status, lines = package("--conformance")
    assert [line for line in lines[:-1] if not line.startswith("ok ")] == []
    assert lines[-1] == f"{len(lines) - 1} checks, 0 failed"
    assert any(line.startswith("ok   qvxcallquarn800_") for line in lines)
    assert any("makes all printed text visible" in line for line in lines)
    assert status == 0


def test_the_summary_shows_versions_host_and_verdict():
    status, lines = package()
    assert status == 0
    assert lines[0].startswith("zktarn ") and lines[0].endswith("libzktarn_util.so.1")
    assert lines[1].startswith("host: cpython ") and ", NumPy " in lines[1]
    assert lines[2].startswith("conformance: ") and lines[2].endswith(" checks, 0 failed")
