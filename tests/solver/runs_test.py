#!/usr/bin/env python3
"""Runs zero_half on models: its figures, and how runs end.

Usage: runs_test.py PROGRAM FOLDER [TEST ...]
"""

import math
import os
import pathlib
import re
import select
import signal
import subprocess
import time
import unittest

from zero_half_calls import (
    Call, CALL_TIMEOUT, main, NO_LEAK, one_column, program, random_cover, ZeroHalfTest)


class Runs(ZeroHalfTest):
    def test_every_generated_instance_closes_its_gap(self):
        call = self.call(*(self.own / name for name in self.names))
        table = call.table()
        self.assertEqual([row["model"] for row in table], self.labels)
        for row, name in zip(table, self.names):
            with self.subTest(name):
                self.assertEqual(float(row["optimum"]), self.optima[name])
                self.assertEqual(float(row["bound"]), self.optima[name])
                self.assertLess(float(row["lp_bound"]), self.optima[name])
                self.assertEqual(row["closed"], "100.00")
                # Costs are integers, so a bound is rounded up, and may then be the optimum at once.
                if math.ceil(float(row["lp_bound"]) - 1e-6) < self.optima[name]:
                    self.assertGreater(int(row["cuts"]), 0)
        self.assertGreater(sum(int(row["cuts"]) for row in table), 0)
        self.assertRegex(call.out.splitlines()[-1], NO_LEAK)

    def test_report_agrees_with_table_and_lines(self):
        call, models = self.report(*(self.own / name for name in self.names))
        table, rounds = call.table(), call.rounds()
        self.assertEqual(len(models), len(self.names))
        self.assertEqual(len(rounds), len(self.names))
        for name, model, row, lines in zip(self.names, models, table, rounds):
            with self.subTest(name):
                self.assert_row_says(row, model)
                self.assert_lines_say(lines, model)
                self.assertEqual(model["file"], str(self.own / name))

    def assert_row_says(self, row, model):
        self.assertEqual(row["model"], pathlib.Path(model["file"]).stem)
        for key in ("rows", "columns"):
            if key in row:
                self.assertEqual(int(row[key]), model[key])
        self.assertEqual(int(row["cuts"]), model["cuts_kept"])
        for key, member in (("lp_bound", "lp_bound"), ("bound", "bound"), ("optimum", "optimum"),
                            ("closed", "gap_closed_percent")):
            self.assert_printed(row[key], model[member])
        self.assertAlmostEqual(float(row["seconds"]), model["seconds"], delta=0.006)

    def assert_lines_say(self, lines, model):
        self.assertEqual(len(lines), len(model["rounds"]))
        for count, (line, figures) in enumerate(zip(lines, model["rounds"]), start=1):
            self.assertEqual(int(line["round"]), count)
            self.assertEqual(figures["round"], count)
            self.assertEqual(int(line["found"]), figures["cuts_found"])
            self.assertEqual(int(line["kept"]), figures["cuts_kept"])
            self.assertLessEqual(figures["cuts_kept"], figures["cuts_found"])
            self.assert_printed(line["bound"], figures["bound"])
            self.assert_printed(line["closed"], figures["gap_closed_percent"])
            self.assertAlmostEqual(float(line["lp_ms"]), figures["lp_ms"], delta=0.06)
        bounds = [figures["bound"] for figures in model["rounds"]] + [model["bound"]]
        self.assertEqual(bounds, sorted(bounds))
        self.assertEqual(model["bound"], bounds[max(0, len(bounds) - 2)])
        # The costs of these models are integers.
        relaxations = [model["lp_bound"]] + [each["relaxation_bound"] for each in model["rounds"]]
        self.assertEqual(relaxations, sorted(relaxations))
        self.assertEqual(model["relaxation_bound"], relaxations[-1])
        for rounded, bound in zip(bounds, relaxations[1:]):
            self.assertAlmostEqual(rounded, math.ceil(bound - 1e-6), delta=1e-9)
        self.assertGreaterEqual(sum(figures["cuts_kept"] for figures in model["rounds"]),
                                model["cuts_kept"])

    def assert_printed(self, text, value):
        if value is None:
            self.assertEqual(text, "-")
        else:
            self.assertAlmostEqual(float(text), value, delta=0.0051 if "." in text else 0.5)

    def test_unknown_optimum_is_null_in_json_and_a_dash_in_the_table(self):
        file = self.write("cover.mps", random_cover(40, 90))
        call, (model,) = self.report(file, "--rounds", "1")
        self.assertIsNone(model["optimum"])
        self.assertIsNone(model["gap_closed_percent"])
        self.assertEqual({figures["gap_closed_percent"] for figures in model["rounds"]}, {None})
        self.assertEqual((call.table()[0]["optimum"], call.table()[0]["closed"]), ("-", "-"))
        self.assertGreater(model["bound"], model["lp_bound"])

    def test_integral_relaxation_gives_the_unknown_optimum(self):
        file = self.write("cover.mps", self.cover.read_bytes())
        call, (model,) = self.report(file)
        self.assertEqual((model["status"], model["optimum"]), ("integral", 6.0))
        self.assertEqual([figures["gap_closed_percent"] for figures in model["rounds"]], [100.0])
        self.assertEqual((call.table()[0]["optimum"], call.table()[0]["closed"]), ("6", "100.00"))

    def test_optimum_from_the_command_line(self):
        file = self.write("cover.mps", self.cover.read_bytes())
        _, (model,) = self.report(file, "--optimum", "7")
        self.assertEqual(model["optimum"], 7.0)
        self.assertAlmostEqual(model["gap_closed_percent"], 50.0)

    def test_optimum_that_a_bound_disproves_is_wrong(self):
        for optimum, rounds, bound in (("5.25", 1, "6"), ("5.25", 9, "6"), ("4", 0, "5")):
            with self.subTest((optimum, rounds)):
                call, (model,) = self.report(self.cover, "--optimum", optimum, "--rounds", rounds,
                                             status=1)
                self.assertEqual(call.err, f"zero_half: {self.cover}: the given optimum {optimum} is "
                                 f"wrong: no point has a value below the bound {bound}\n")
                self.assertIsNone(model["gap_closed_percent"])
                self.assertEqual(call.table()[0]["closed"], "-")

    def test_command_line_overrides_the_table_of_optima(self):
        _, (model,) = self.report(self.cover, "--optimum", "7")
        self.assertEqual(model["optimum"], 7.0)

    def test_table_of_optima_beside_the_model(self):
        self.write("optima.csv", "file,optimum\nxcover.mps,1\ncover.mps,6.5\n")
        file = self.write("cover.mps", self.cover.read_bytes())
        _, (model,) = self.report(file)
        self.assertEqual(model["optimum"], 6.5)
        self.assertAlmostEqual(model["gap_closed_percent"], 100 / 1.5)

    def test_invalid_optimum_in_the_table_is_ignored(self):
        file = self.write("cover.mps", random_cover(40, 90))
        for text in ("", "many", "nan", "inf", "1e999"):
            with self.subTest(text):
                self.write("optima.csv", f"cover.mps,{text}\n")
                call, (model,) = self.report(file, "--rounds", "1")
                self.assertIsNone(model["optimum"])
                self.assertEqual(call.table()[0]["optimum"], "-")

    def test_same_seed_gives_the_same_figures(self):
        times = {"seconds", "cpu_seconds", "separation_ms", "lp_ms"}
        without = lambda record: {key: value for key, value in record.items() if key not in times}
        file = self.write("random.mps", random_cover(60, 200))
        found = []
        for _ in range(2):
            _, (model,) = self.report(file, "--seed", "5", "--rounds", "6")
            model["rounds"] = [without(figures) for figures in model["rounds"]]
            found.append(without(model))
        self.assertEqual(found[0], found[1])
        self.assertGreaterEqual(len(found[0]["rounds"]), 2)

    def test_divided_and_rounded_row_is_a_cut(self):
        _, (model,) = self.report(
            self.write("divided.mps", one_column(coefficient=3, bound=" PL b x")))
        self.assertAlmostEqual(model["lp_bound"], -1 / 3)
        self.assertEqual((model["bound"], model["status"]), (0.0, "integral"))

    def test_bound_includes_the_constant(self):
        _, (model,) = self.report(self.write(
            "constant.mps", program({"x": {"cost": -1, "r": 1}}, {"r": "L"},
                                    [("r", 1), ("cost", -7)], [" UP b x 1"])))
        self.assertEqual((model["lp_bound"], model["bound"]), (6.0, 6.0))

    # Ends of a run

    def test_no_rounds(self):
        call, (model,) = self.report(self.cover, "--rounds", "0")
        self.assertEqual((model["status"], model["rounds"]), ("rounds_used", []))
        self.assertEqual((model["bound"], model["gap_closed_percent"]), (5.0, 0.0))
        self.assertEqual(call.table()[0]["end"], "rounds")

    def test_no_time(self):
        _, (model,) = self.report(self.cover, "--time-limit", "0")
        self.assertEqual((model["status"], model["rounds"]), ("time_used", []))

    def test_time_limit_ends_a_long_run(self):
        file = self.write("long.mps", random_cover(250, 750))
        _, (model,) = self.report(file, "--time-limit", "0.5", "--rounds", "100000")
        self.assertEqual(model["status"], "time_used")
        self.assertGreaterEqual(model["seconds"], 0.5)
        self.assertLess(model["seconds"], 10)

    def test_unfinished_round_leaves_no_cuts(self):
        file = self.write("long.mps", random_cover(400, 2000))
        # A limit that ends the reading is an error, so the limits are multiples of the time until the first round.
        _, (unrounded,) = self.report(file, "--rounds", "0")
        for multiple in (2, 4, 8, 16, 32):
            _, (model,) = self.report(file, "--time-limit", f"{multiple * unrounded['seconds']:.3f}")
            self.assertEqual(model["cuts_kept"],
                             sum(figures["cuts_kept"] for figures in model["rounds"]))

    def test_stops_when_the_requested_share_of_the_gap_is_closed(self):
        file = self.write("cover.mps", random_cover(40, 90))
        _, (model,) = self.report(file, "--optimum", "100", "--stop-at-gap", "0.5")
        self.assertEqual((model["status"], len(model["rounds"])), ("gap_closed", 1))
        self.assertGreaterEqual(model["gap_closed_percent"], 0.5)
        self.assertLess(model["gap_closed_percent"], 50)

    def test_cuts_prove_that_there_is_no_integer_point(self):
        alone = one_column(cost=1, coefficient=2).replace(" L r", " E r")
        pair = program({"x": {"cost": 1, "r": 2}, "y": {"cost": 1, "r": 2}}, {"r": "E"},
                       [("r", 1)], [" UP b x 1", " UP b y 1"])
        for content in (alone, pair):
            call, (model,) = self.report(self.write("odd.mps", content))
            self.assertEqual(model["status"], "no_integer_point")
            self.assertEqual(call.table()[0]["end"], "infeasible")

    def test_optimum_of_a_model_without_integer_points_is_an_error(self):
        file = self.write("odd.mps", one_column(cost=1, coefficient=2).replace(" L r", " E r"))
        call = self.call(file, "--optimum", "2", "--display", "final", status=1)
        self.assert_one_sentence(call, file)
        self.assertIn("there is no integer point", call.err)
        self.assertEqual(len(call.table()), 1)

    def test_integers_beyond_32_bits_are_rounded_correctly(self):
        for least in (3_000_000_000, -3_000_000_000, -2_147_483_647, 123_456_789_012):
            content = program({"x": {"cost": 1, "r": 2}, "y": {"cost": 1, "r": 2}}, {"r": "G"},
                              [("r", 4 * least + 1)],
                              [f" LO b {name} {least}.0" for name in "xy"])
            _, (model,) = self.report(self.write("large.mps", content))
            self.assertEqual((model["lp_bound"], model["bound"], model["status"]),
                             (2 * least + 0.5, 2 * least + 1, "integral"))

    def test_large_decimal_right_hand_side_is_scaled_exactly(self):
        content = program({"x": {"cost": -1, "r": 0.01}, "y": {"cost": -2, "r": 0.03},
                           "z": {"cost": -1, "s": 2, "r": 0}}, {"r": "L", "s": "L"},
                          [("r", 583704.70), ("s", 1)],
                          [" UP b x 1e8", " UP b y 1e8", " UP b z 1"])
        _, (model,) = self.report(self.write("cents.mps", content))
        self.assertEqual((model["lp_bound"], model["bound"]), (-58370470.5, -58370470))

    def test_interrupt_ends_the_run_and_keeps_the_results(self):
        file, report = self.write("long.mps", random_cover(300, 900)), self.folder / "report.json"
        child = subprocess.Popen([self.program, str(file), str(self.cover), "--rounds", "100000",
                                  "--time-limit", "600", "--json", str(report)],
                                 stdout=subprocess.PIPE, stderr=subprocess.PIPE)
        try:
            seen = b""
            deadline = time.monotonic() + CALL_TIMEOUT
            while not re.search(rb"\n +2 .*\n", seen) and time.monotonic() < deadline:
                if select.select([child.stdout], [], [], 1)[0]:
                    seen += os.read(child.stdout.fileno(), 65536)
            sent = time.monotonic()
            child.send_signal(signal.SIGINT)
            rest, err = child.communicate(timeout=CALL_TIMEOUT)
        finally:
            child.kill()
            child.wait()
        self.assertLess(time.monotonic() - sent, 5)
        call = Call(child.returncode, (seen + rest).decode(), err.decode())
        self.assertEqual((call.status, call.err), (130, ""))
        (model,) = self.read_report(report)
        self.assertEqual(model["status"], "interrupted")
        self.assertGreater(model["bound"], model["lp_bound"])
        self.assertEqual(model["bound"], model["rounds"][-1]["bound"])
        (row,) = call.table()
        self.assert_printed(row["bound"], model["bound"])
        self.assertEqual(row["end"], "interrupt")
        self.assertEqual(len(call.rounds()[0]), len(model["rounds"]))
        self.assertRegex(call.out.splitlines()[-1], NO_LEAK)

    @unittest.skipUnless(os.path.exists("/proc/self/status"), "needs /proc")
    def test_interrupt_before_the_first_round(self):
        file = self.write("long.mps", random_cover(300, 900))
        for delay in (0, 0.001, 0.003, 0.01, 0.03):
            models = self.interrupt_at_start(file, "--rounds", "100000", delay=delay)
            # A model that was not read completely is not in the report.
            self.assertEqual([model["status"] for model in models], ["interrupted"] * len(models))

    def interrupt_at_start(self, *arguments, delay=0, stdin=None):
        """Interrupts the program `delay` seconds after it listens, and returns its report."""
        report = self.folder / "report.json"
        child = subprocess.Popen([self.program, *map(str, arguments), "--json", str(report)],
                                 stdin=stdin, stdout=subprocess.DEVNULL, stderr=subprocess.PIPE)
        try:
            status = pathlib.Path(f"/proc/{child.pid}/status")
            deadline = time.monotonic() + CALL_TIMEOUT
            while time.monotonic() < deadline:
                caught = re.search(r"SigCgt:\s*(\w+)", status.read_text())
                if caught and int(caught[1], 16) >> (signal.SIGINT - 1) & 1:
                    break
            time.sleep(delay)
            child.send_signal(signal.SIGINT)
            child.wait(timeout=CALL_TIMEOUT)
            self.assertEqual((child.returncode, child.stderr.read()), (130, b""))
        finally:
            child.kill()
            child.wait()
            child.stderr.close()
        return self.read_report(report)

    @unittest.skipUnless(os.path.exists("/proc/self/status"), "needs /proc")
    def test_interrupt_while_waiting_for_a_pipe(self):
        named = self.folder / "named"
        os.mkfifo(named)
        for name in ("-", named):
            with self.subTest(name):
                read, write = os.pipe()
                try:
                    self.assertEqual(self.interrupt_at_start(name, stdin=read), [])
                finally:
                    os.close(read)
                    os.close(write)

    def test_time_limit_while_waiting_for_a_pipe(self):
        named = self.folder / "named"
        os.mkfifo(named)
        call, models = self.report(named, "--time-limit", "0.2", status=1)
        self.assertEqual(models, [])
        self.assertEqual(call.err, f"zero_half: {named}: the time limit was reached before the file"
                                   " was read\n")


if __name__ == "__main__":
    main()
