#!/usr/bin/env python3
"""Runs the solver in Fortran from its command line.

    covering_test.py SCENARIO PROGRAM SAMPLE WORK_FOLDER
"""

import itertools
import os
import pathlib
import random
import signal
import subprocess
import sys


def fail(sentence):
    sys.exit(f"covering_test: {sentence}")


class Scenarios:
    def __init__(self, program, sample, work):
        self.program = program
        self.sample = sample
        self.work = pathlib.Path(work)
        self.work.mkdir(parents=True, exist_ok=True)

    def run(self, *arguments):
        return subprocess.run([self.program, *map(str, arguments)], capture_output=True, text=True,
                              check=False)

    def write(self, text):
        path = self.work / "problem.01"
        path.write_text(text)
        return path

    def demand(self, ran, status, *parts):
        output = ran.stdout + ran.stderr
        if ran.returncode != status:
            fail(f"status {ran.returncode}, not {status}:\n{output}")
        for part in parts:
            if part not in output:
                fail(f"no '{part}' in:\n{output}")

    # Scenarios

    def optimum(self):
        """Compares the optimum with an enumeration of small random problems."""
        draw = random.Random(7)
        for _ in range(80):
            n = draw.randint(1, 9)
            costs = [draw.choice([-3, -1, 0, 1, 2, 5, 0.5, 1.25]) for _ in range(n)]
            rows = [({j: draw.choice([-2, -1, 1, 2, 3, 0.5]) for j in range(n) if draw.random() < 0.6},
                     draw.choice([-1, 0, 1, 2, 2.5])) for _ in range(draw.randint(0, 6))]
            lines = [f"variables {n}", "minimize " + " ".join(map(str, costs))]
            lines += ["row " + " ".join(f"{j + 1}:{a}" for j, a in row.items()) + f" >= {rhs}"
                      for row, rhs in rows]
            text = "\n".join(lines) + "\n"
            best = min((sum(c * v for c, v in zip(costs, x))
                        for x in itertools.product((0, 1), repeat=n)
                        if all(sum(a * x[j] for j, a in row.items()) >= rhs for row, rhs in rows)),
                       default=None)
            ran = self.run(self.write(text), "--quiet")
            output = ran.stdout.splitlines()
            if ran.returncode != 0 or ran.stderr:
                fail(f"status {ran.returncode}: {ran.stderr}\n{text}")
            if best is None and output != ["infeasible"]:
                fail(f"{output} for an infeasible problem\n{text}")
            if best is not None and (output[0] != "solved" or float(output[1].split()[1]) != best):
                fail(f"{output}, but the optimum is {best}\n{text}")

    def progress(self):
        self.demand(self.run(self.sample, "--every", 2), 0, "search         2 nodes",
                    "incumbent", "solved\nobjective 5.0")
        quiet = self.run(self.sample, "--every", 2, "--quiet")
        self.demand(quiet, 0, "solved")
        if "nodes" in quiet.stdout:
            fail("progress in spite of --quiet")

    def output_function(self):
        self.demand(self.run(self.sample, "--stop-at", 8), 3, "stopped by the output function",
                    "objective ")
        self.demand(self.run(self.sample, "--stop-at", 4), 0, "solved\nobjective 5.0")

    def interrupt(self):
        """Sends SIGINT during the search of a large problem."""
        draw = random.Random(1)
        n = 60
        lines = [f"variables {n}", "minimize " + " ".join(str(draw.randint(50, 60)) for _ in range(n))]
        lines += ["row " + " ".join(f"{j}:{draw.randint(20, 40)}" for j in range(1, n + 1)) +
                  f" >= {n * 14 + draw.randint(0, 9)}" for _ in range(30)]
        path = self.write("\n".join(lines) + "\n")
        with subprocess.Popen([self.program, path, "--every", "50"], stdout=subprocess.PIPE,
                              stderr=subprocess.PIPE, text=True,
                              env=dict(os.environ, GFORTRAN_UNBUFFERED_ALL="y")) as process:
            line = process.stdout.readline()
            if "nodes" not in line:
                process.kill()
                fail(f"'{line}' is not a line of progress")
            process.send_signal(signal.SIGINT)
            out, error = process.communicate(timeout=60)
        ran = subprocess.CompletedProcess([], process.returncode, line + out, error)
        self.demand(ran, 4, "\ninterrupted\n")
        if error:
            fail(f"not everything is released:\n{error}")

    def bad_input(self):
        self.demand(self.run(), 2, "no file")
        self.demand(self.run("a", "b"), 2, "'b' is not a valid argument here")
        self.demand(self.run("a", "--every", "0"), 2, "'0' is not a valid argument here")
        self.demand(self.run("a", "--stop-at"), 2, "is not a valid argument here")
        self.demand(self.run(self.work / "none"), 1, "there is no file")
        for text, sentence in [
                ("", "has no line 'minimize'"),
                ("variables 0\n", "line 1: the number of variables is not positive"),
                ("minimize 1 2\n", "line 1: the number of costs is not the number of variables"),
                ("variables 2\nminimize 1\n", "line 2: the number of costs is not the number of variables"),
                ("variables 2\nmaximize 1 2\n", "line 2: 'maximize' is not a statement"),
                ("variables 2\nminimize 1 2\nrow 1:1 3:1 >= 1\n", "line 3: '3:1' is not a variable"),
                ("variables 2\nminimize 1 2\nrow 1:1 2 >= 1\n", "line 3: '2' is not a variable"),
                ("variables 2\nminimize 1 2\nrow 1:1\n", "line 3: '' is not a variable"),
                ("variables 2\nminimize 1 2\nrow 1:1 >=\n", "the number after '>=' is missing"),
                ("variables 2\nminimize 1 2\nminimize 1 2\n", "line 3: there is a second 'minimize'"),
                ("variables 2\nvariables 3\n", "line 2: there is a second 'variables'"),
                ("variables 2\nminimize 1 2\nrow 1:1 1:2 >= 1\n", "line 3: '1:2' repeats a variable")]:
            ran = self.run(self.write(text))
            self.demand(ran, 1, sentence)
            if len(ran.stderr.splitlines()) != 1:
                fail(f"not one sentence:\n{ran.stderr}")


def main():
    scenario, program, sample, work = sys.argv[1:]
    getattr(Scenarios(program, sample, work), scenario)()


if __name__ == "__main__":
    main()
