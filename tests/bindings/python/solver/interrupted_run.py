"""Interrupts a run that would take minutes, in a separate process.

    PYTHONPATH=build/python/python /usr/bin/python3 interrupted_run.py [COUNT]

interrupts COUNT runs (default 20) at different times and prints how long each takes to end, from the
signal to the handler of KeyboardInterrupt.
"""

import json
import pathlib
import subprocess
import sys
import time

CHILD = "child"


def run_until_interrupted():
    """Prints `started` in the first round, then the partial result when KeyboardInterrupt is raised."""
    from problems import random_graph

    from zktarn import zero_half

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


def main(count):
    import signal

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
