"""The checks of any host, on this one."""

import subprocess
import sys


def run(*arguments):
    """Runs `python -m zktarn`; returns the status and the lines of standard output."""
    ended = subprocess.run([sys.executable, "-m", "zktarn", *arguments],
                           stdout=subprocess.PIPE, text=True, check=False)
    return ended.returncode, ended.stdout.splitlines()


def test_every_check_passes():
    status, lines = run("--conformance")
    assert [line for line in lines[:-1] if not line.startswith("ok ")] == []
    assert lines[-1] == f"{len(lines) - 1} checks, 0 failed"
    assert any(line.startswith("ok   qvxcallquarn800_") for line in lines)
    assert any("makes all printed text visible" in line for line in lines)
    assert status == 0


def test_the_summary_shows_versions_host_and_verdict():
    status, lines = run()
    assert status == 0
    assert lines[0].startswith("zktarn ") and lines[0].endswith("libzktarn_util.so.1")
    assert lines[1].startswith("host: cpython ") and ", NumPy " in lines[1]
    assert lines[2].startswith("conformance: ") and lines[2].endswith(" checks, 0 failed")
