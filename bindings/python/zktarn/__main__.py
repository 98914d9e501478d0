"""`python -m zktarn` prints the versions, the host, and the result of the host's conformance checks.

    python -m zktarn                 a summary; failed checks one by one
    python -m zktarn --conformance   every check, one a line

The exit status is 0 when every check passed, else 1.
"""

import subprocess
import sys
from typing import Any

import numpy

import zktarn
from zktarn import _host


def answer(fields: dict[str, Any]) -> float:
    """Returns what the checks expect of a function of the host's language."""
    return float(fields["value"] + fields["column"].sum() + len(fields["phase"]))


def is_descriptor_1(stream: Any) -> bool:
    """Returns whether what is written to the stream arrives at file descriptor 1."""
    try:
        return bool(stream.fileno() == 1)
    except (AttributeError, OSError, ValueError):
        return False


def check_host() -> int:
    """Runs every check of the host in this process; returns the exit status."""
    _host.functions["conformance"] = answer
    if sys.stdout is not None:
        sys.stdout.flush()
    passed = _host.conformance("conformance", 20.5, is_descriptor_1(sys.stdout))
    return 0 if passed else 1


def summarize() -> int:
    """Prints versions and host, and runs the checks in a process of their own."""
    version = ".".join(str(part) for part in sys.version_info[:3])
    print(f"zktarn {zktarn.__version__}, {_host.library}")
    print(f"host: {sys.implementation.name} {version}, NumPy {numpy.__version__}")
    child = subprocess.run(
        [sys.executable, "-m", "zktarn", "--conformance"],
        stdout=subprocess.PIPE, text=True, check=False)
    lines = child.stdout.splitlines()
    for line in lines[:-1]:
        if not line.startswith("ok "):
            print(line)
    print("conformance: " + (lines[-1] if lines else f"ended with status {child.returncode}"))
    return 0 if child.returncode == 0 else 1


def main(arguments: list[str]) -> int:
    """Runs the command; returns the exit status."""
    if not arguments:
        return summarize()
    if arguments == ["--conformance"]:
        return check_host()
    if arguments in (["-h"], ["--help"]):
        print(__doc__)
        return 0
    print(f"zktarn: unknown argument '{' '.join(arguments)}'; --help lists them", file=sys.stderr)
    return 2


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
