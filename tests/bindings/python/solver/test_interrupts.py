"""Ctrl-C: a real SIGINT, sent to a separate process.

    PYTHONPATH=build/python/python /usr/bin/python3 test_interrupts.py [COUNT]

interrupts COUNT runs (default 20) at different times and prints how long each takes to end, from the
signal to the handler of KeyboardInterrupt.
"""

import json
import pathlib
import signal
import subprocess
import sys
import time

import pytest
from problems import ROOT, random_graph

from zktarn import zero_half

CHILD = "child"


def run_until_interrupted():
    """Starts a run that would take minutes; prints `started` in its first round, and the partial result when
    KeyboardInterrupt is raised."""
    def announce(info):
        if info["round"] == 1:
            print("started", flush=True)

    try:
        zero_half.tighten(**random_graph(400, 2000, 1), display="off", rounds=10**6,
                          time_limit=1e9, output_function=announce)
    except KeyboardInterrupt as stop:
        caught = time.monotonic()
        result = zero_half.partial_result(stop)
        print(json.dumps({
            "caught": caught, "type": type(stop).__name__, "status": result.status,
            "initial_bound": result.initial_bound, "bound": result.bound,
            "rounds": len(result.rounds), "cuts": len(result.rhs),
            "point": len(result.point), "has_notes": bool(stop.__notes__)}))


def interrupt_after(delay, signal_number):
    """Interrupts a run `delay` seconds after its first round. Returns what the run printed, and the
    seconds from the signal to its exception."""
    with subprocess.Popen([sys.executable, __file__, CHILD], stdout=subprocess.PIPE,
                          text=True, cwd=pathlib.Path(__file__).parent) as child:
        try:
            if child.stdout.readline() != "started\n":
                raise RuntimeError("the run did not start")
            time.sleep(delay)
            sent = time.monotonic()
            child.send_signal(signal_number)
            report = json.loads(child.communicate(timeout=60)[0])
        finally:
            child.kill()
    return report, report["caught"] - sent, child.returncode


@pytest.mark.parametrize("delay", [0.0, 0.1, 0.45])
def test_ctrl_c_ends_the_run_with_its_result(delay):
    report, _, status = interrupt_after(delay, signal.SIGINT)
    assert status == 0
    assert report["type"] == "KeyboardInterrupt" and report["status"] == "interrupted"
    assert report["initial_bound"] == pytest.approx(-200.0)
    # Without an interrupt the run takes minutes.
    assert 1 <= report["rounds"] < 100
    assert -200.0 < report["bound"] < -100.0
    assert report["cuts"] > 0 and report["point"] == 400 and report["has_notes"]


HANDLER = """
import os, signal
from problems import random_graph
from zktarn import zero_half

class Terminated(Exception):
    pass

def terminate(number, frame):
    raise Terminated(f"signal {number}")

signal.signal(signal.SIGTERM, terminate)
def send(info):
    if info["round"] == 2:
        os.kill(os.getpid(), signal.SIGTERM)
try:
    zero_half.tighten(**random_graph(400, 2000, 1), display="off", rounds=10**6,
                      time_limit=1e9, output_function=send)
except Terminated as stop:
    print(stop, len(zero_half.partial_result(stop).rounds))
"""

IGNORED = """
import os, signal
from problems import petersen
from zktarn import zero_half

signal.signal(signal.SIGINT, signal.SIG_IGN)
result = zero_half.tighten(**petersen(), display="off",
                           output_function=lambda info: os.kill(os.getpid(), signal.SIGINT))
print(result.status)
"""

# After the last poll: the output function is raise() of the C library, so that no bytecode follows the
# signal before the engine returns.
AT_THE_END = """
import ctypes, signal
from problems import petersen
from zktarn import zero_half

class SignalNumber:
    @classmethod
    def from_param(cls, info):
        return ctypes.c_int(signal.SIGINT if info["phase"] == "done" else 0)

send = ctypes.CDLL(None)["raise"]
send.argtypes = [SignalNumber]
try:
    zero_half.tighten(**petersen(), display="off", output_function=send)
except KeyboardInterrupt as stop:
    result = zero_half.partial_result(stop)
    print(result.status, result.bound)
"""

OTHER_THREAD = """
import os, signal, threading
from problems import random_graph
from zktarn import zero_half

# Python runs handlers on its main thread only; a run on another thread continues.
results = []
def run():
    results.append(zero_half.tighten(
        **random_graph(400, 2000, 1), display="off", rounds=3, time_limit=1e9,
        output_function=lambda info: started.set()))
started = threading.Event()
thread = threading.Thread(target=run)
thread.start()
try:
    started.wait()
    os.kill(os.getpid(), signal.SIGINT)
    thread.join()
except KeyboardInterrupt:
    print("main thread")
thread.join()
print(results[0].status)
"""


def printed_by(script):
    ended = subprocess.run([sys.executable, "-c", script], capture_output=True, text=True,
                           timeout=120, cwd=ROOT / "tests/bindings/python/solver", check=False)
    assert ended.returncode == 0, ended.stderr
    return ended.stdout


def test_a_handler_of_the_program_raises_its_own_exception():
    assert printed_by(HANDLER) == "signal 15 2\n"


def test_an_ignored_signal_ends_nothing():
    assert printed_by(IGNORED) == "integral\n"


def test_a_signal_at_the_end_of_the_run_keeps_the_result():
    assert printed_by(AT_THE_END) == "integral -4.0\n"


def test_a_run_on_another_thread_is_not_interrupted():
    assert printed_by(OTHER_THREAD) == "main thread\nrounds_used\n"


def test_a_run_that_ends_normally_leaves_no_exception_behind():
    assert zero_half.tighten([1.0], integrality=1, display="off").status == "integral"
    assert zero_half.tighten([1.0], integrality=1, display="off").status == "integral"


def main(count):
    slowest = 0.0
    for i in range(count):
        report, seconds, _ = interrupt_after(0.037 * i, signal.SIGINT)
        slowest = max(slowest, seconds)
        print(f"{1e3 * seconds:7.1f} ms  after {report['rounds']} rounds, bound {report['bound']:.6g}")
    print(f"{1e3 * slowest:7.1f} ms  the slowest of {count}")


if __name__ == "__main__":
    if sys.argv[1:] == [CHILD]:
        run_until_interrupted()
    else:
        main(int(sys.argv[1]) if len(sys.argv) > 1 else 20)
