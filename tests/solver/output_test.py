#!/usr/bin/env python3
"""Runs zero_half and checks the files that it writes, what it prints, and its options.

Usage: output_test.py PROGRAM FOLDER [TEST ...]
"""

import errno
import os
import pty
import re
import subprocess
import unittest
import xml.etree.ElementTree

from zero_half_calls import (
    CALL_TIMEOUT, columns_of, main, mixed_columns, MODELS, one_column, random_cover,
    random_set_cover, ZeroHalfTest)


class Output(ZeroHalfTest):
    # Writing

    def test_model_with_its_cuts_keeps_the_columns_and_has_the_bound(self):
        for name, content in (("cover.mps", self.cover.read_text()),
                              ("mixed.mps", mixed_columns()),
                              ("corners.mps", (self.own / "grid_corners.mps").read_text())):
            with self.subTest(name):
                file, tightened = self.write(name, content), self.folder / "tightened.mps"
                _, (before,) = self.report(file, "--cuts", tightened)
                self.assertGreater(before["bound"], before["lp_bound"])
                self.assertEqual(columns_of(tightened), columns_of(file))
                _, (after,) = self.report(tightened, "--rounds", "0")
                self.assertEqual(after["rows"], before["rows"] + before["cuts_kept"])
                self.assertAlmostEqual(after["lp_bound"], before["bound"], places=6)

    def test_model_with_its_cuts_keeps_ranges_and_replaces_blanks_in_names(self):
        plain = mixed_columns(is_fixed=True).replace(
            "BOUNDS", "RANGES\n    RNG       r3                   2\nBOUNDS")
        line = "    {:<10}{:<8}  {:>12}".format
        tightened = self.folder / "tightened.mps"
        for cost, least in ((2, -1.5), (-2, 12.125)):  # each side of the range is active once
            file = self.write("fixed.mps", plain.replace(line("x3", "cost", 2),
                                                         line("x3", "cost", cost)))
            _, (before,) = self.report(file, "--cuts", tightened)
            self.assertEqual(before["bound"], least)
            self.assertEqual(columns_of(tightened)[0], ["mycol", "x1", "x2", "x3", "x4", "y"])
            _, (after,) = self.report(tightened, "--rounds", "0")
            self.assertAlmostEqual(after["lp_bound"], before["bound"], places=6)

    def test_names_of_cuts_differ_from_names_of_rows(self):
        file, tightened = self.write("named.mps", re.sub(
            r"\br1\b", "ZH1", self.cover.read_text())), self.folder / "tightened.mps"
        _, (before,) = self.report(file, "--cuts", tightened)
        _, (after,) = self.report(tightened, "--rounds", "0")
        self.assertAlmostEqual(after["lp_bound"], before["bound"], places=6)

    def test_outputs_do_not_overwrite_models_or_each_other(self):
        content = one_column()
        model, link = self.write("model.mps", content), self.folder / "link.mps"
        link.symlink_to(model)
        output = self.folder / "new" / ".." / "out"
        for options in (["--cuts", model], ["--json", model], ["--certificate", link],
                        ["--cuts", link], ["--json", self.folder / "x", "--cuts", self.folder / "x"],
                        ["--json", output, "--certificate", self.folder / "out"],
                        ["--json", ""], ["--cuts", "-"]):
            with self.subTest(options):
                call = self.call(model, *options, status=2)
                self.assertRegex(call.err, r"\Azero_half: [^\n]+\n\Z")
                self.assertEqual(model.read_text(), content)
                self.assertEqual(sorted(each.name for each in self.folder.iterdir()),
                                 ["link.mps", "model.mps"])
        self.call(model, "--json", "/dev/null", "--cuts", "/dev/null")
        self.assertIn("only once", self.call("-", "-", status=2).err)

    def test_files_that_cannot_be_written(self):
        folder = self.folder / "folder.svg"
        folder.mkdir()
        for option in ("--json", "--cuts", "--plot"):
            for place in (self.folder / "none" / "out.svg", folder):
                with self.subTest(option=option, place=place):
                    call = self.call(self.cover, option, place, "--display", "final", status=1)
                    self.assert_one_sentence(call, place)
                    self.assertEqual(len(call.out.splitlines()), 2, "only the table")

    def test_plot_is_a_picture_with_titles(self):
        picture = self.folder / "it's a picture.svg"
        self.call(self.cover, self.own / "frucht_stable.mps", "--plot", picture)
        root = xml.etree.ElementTree.parse(picture).getroot()
        self.assertEqual(root.tag, "{http://www.w3.org/2000/svg}svg")
        text = [each.strip() for each in root.itertext()]
        for title in ("petersen_cover", "frucht_stable", "round", "bound", "LP bound",
                      "bound with cuts", "optimum"):
            self.assertIn(title, text)
        self.assertEqual(text.count("optimum"), 1, "one legend")
        self.assertTrue(any(re.fullmatch(r"time \((µs|ms|s)\)", each) for each in text), text)

    def test_plot_counts_rounds_in_whole_numbers(self):
        picture = self.folder / "picture.svg"
        self.call(self.write("cover.mps", random_cover(40, 90)), "--rounds", "2", "--plot", picture)
        text = [each.strip() for each in xml.etree.ElementTree.parse(picture).getroot().itertext()]
        axis = [each for each in text[:text.index("round")] if re.fullmatch(r"[\d.]+", each)]
        self.assertEqual([each for each in axis if float(each) < 4], ["0", "1", "2"])

    def test_plot_as_png(self):
        picture = self.folder / "picture.png"
        self.call(self.cover, "--plot", picture)
        self.assertEqual(picture.read_bytes()[:8], b"\x89PNG\r\n\x1a\n")

    def test_plot_without_gnuplot(self):
        picture = self.folder / "picture.svg"
        environment = {**os.environ, "PATH": str(self.folder)}
        call = self.call(self.cover, "--plot", picture, status=1, environment=environment)
        self.assert_one_sentence(call, picture)
        self.assertIn("gnuplot", call.err)
        self.assertFalse(picture.exists())

    def test_plot_leaves_out_models_without_a_bound(self):
        picture = self.folder / "picture.svg"
        file = self.write("long.mps", random_cover(250, 750))
        call, (model,) = self.report(file, "--time-limit", "0", "--plot", picture, status=1)
        self.assertIsNone(model["lp_bound"])
        self.assert_one_sentence(call, picture)
        self.assertIn("there is no bound to draw", call.err)
        self.assertFalse(picture.exists())
        # The relaxation of the first model exceeds the time limit, the second one does not.
        file = self.write("long.mps", random_set_cover(30000, 1500))
        self.call(file, self.cover, "--time-limit", "2", "--plot", picture)
        text = [each.strip() for each in xml.etree.ElementTree.parse(picture).getroot().itertext()]
        self.assertIn("petersen_cover", text)
        self.assertNotIn("long", text)

    def test_file_names_are_not_run_as_gnuplot_commands(self):
        trace = self.folder / "trace"
        name = "x\nsystem 'touch trace'\n.mps"
        self.call(self.write(name, self.cover.read_bytes()), "--plot", "picture.svg",
                  folder=self.folder)
        call = self.call(self.cover, "--plot", "|touch trace; .svg", status=1, folder=self.folder)
        self.assertRegex(call.err, r"\Azero_half: [^\n]+\n\Z")
        self.assertFalse(trace.exists())

    # Printing

    @unittest.skipUnless(os.path.exists("/dev/full"), "there is no /dev/full")
    def test_error_when_standard_output_is_full(self):
        with open("/dev/full", "w", encoding="utf-8") as full:
            done = subprocess.run([self.program, self.cover, "--display", "final"], stdout=full,
                                  stderr=subprocess.PIPE, text=True, timeout=CALL_TIMEOUT, check=False)
        self.assertEqual((done.returncode, done.stderr),
                         (1, "zero_half: the standard output cannot be written\n"))

    def test_display_off_prints_nothing(self):
        self.assertEqual(self.call(self.cover, "--display", "off").out, "")

    def test_display_final_prints_the_table(self):
        call = self.call(self.cover, "--display", "final")
        self.assertEqual(len(call.out.splitlines()), 2)
        self.assertEqual(call.table()[0]["bound"], "6")

    def test_display_iter_prints_lines_and_is_the_default(self):
        for arguments in ([], ["--display", "iter"]):
            call = self.call(self.cover, *arguments)
            self.assertEqual(call.out.splitlines()[0], str(self.cover))
            self.assertEqual([line["bound"] for line in call.rounds()[0]], ["6.0000"])

    def test_no_control_characters_in_a_pipe(self):
        for show in ("off", "final", "iter"):
            call = self.call(self.cover, "--display", show)
            self.assertNotRegex(call.out + call.err, r"[^\n -~]")

    def on_terminal(self, *arguments):
        """The program's output to standard error, a terminal, and to standard output."""
        ours, theirs = pty.openpty()
        try:
            child = subprocess.Popen([self.program, *map(str, arguments)], stdout=subprocess.PIPE,
                                     stderr=theirs)
            os.close(theirs)
            written = b""
            while True:
                try:
                    piece = os.read(ours, 65536)
                except OSError as found:  # Linux reports EIO when the other end is closed.
                    self.assertEqual(found.errno, errno.EIO)
                    piece = b""
                if not piece:
                    break
                written += piece
            out, _ = child.communicate(timeout=CALL_TIMEOUT)
        finally:
            os.close(ours)
        self.assertEqual(child.returncode, 0)
        return written.decode(), out.decode()

    def test_progress_line_on_a_terminal_is_erased_at_the_end(self):
        written, out = self.on_terminal(self.cover, "--display", "final")
        self.assertEqual(written, "\rround 1, bound 6\x1b[K\r\x1b[K")
        self.assertEqual(len(out.splitlines()), 2)

    def test_no_progress_line_with_display_iter_or_off(self):
        for show in ("iter", "off"):
            self.assertEqual(self.on_terminal(self.cover, "--display", show)[0], "")

    # Usage

    def test_wrong_usage(self):
        for arguments in ([], ["--wrong"], [self.cover, "--rounds", "-1"],
                          [self.cover, "--rounds", "many"], [self.cover, "--display", "loud"],
                          [self.cover, "--time-limit", "-1"], [self.cover, "--time-limit", "nan"],
                          [self.cover, "--stop-at-gap", "101"],
                          [self.cover, "--stop-at-gap", "nan"],
                          [self.cover, "--optimum", "nan"], [self.cover, "--optimum", "inf"],
                          [self.cover, "--seed", "x"], [self.cover, "--json"],
                          [self.cover, "--plot", self.folder / "picture.jpg"],
                          [self.cover, self.cover, "--optimum", "6"],
                          [self.cover, self.cover, "--cuts", self.folder / "cuts.mps"]):
            with self.subTest(arguments):
                call = self.call(*arguments, status=2)
                self.assertEqual(call.out, "")
                self.assertRegex(call.err, r"\Azero_half: [^\n]+; see zero_half --help\n\Z")
        self.assertEqual(list(self.folder.iterdir()), [])

    def test_table_is_at_most_80_columns_wide(self):
        models = [*(self.own / name for name in self.names),
                  *sorted(MODELS.glob("*.mps")),
                  self.write("a_model_with_a_very_long_name_indeed.mps", self.cover.read_bytes())]
        call = self.call(*models, "--display", "final", "--rounds", "3")
        self.assertLessEqual(max(map(len, call.out.splitlines())), 80)
        self.assertEqual(len(call.table()), len(models))
        self.assertRegex(call.out, r"\na_mode\S*\.\.\S*indeed ")

    def test_files_of_one_name_have_different_labels(self):
        for folder in ("one", "other"):
            (self.folder / folder).mkdir()
            self.write(f"{folder}/cover.mps", self.cover.read_bytes())
        call = self.call(self.folder / "one/cover.mps", self.folder / "other/cover.mps", self.cover)
        self.assertEqual([row["model"] for row in call.table()],
                         ["one/cover", "other/cover", "petersen_cover"])

    def test_help_explains_every_ending(self):
        text = self.call("--help").out
        for word in ("integral", "closed", "no-cut", "infeasible", "rounds", "time", "interrupt",
                     "stopped", "numeric"):
            self.assertRegex(text, rf"\n  {word} +[a-z]")

    def test_help_names_every_option(self):
        text = self.call("--help").out
        for option in ("--rounds", "--time-limit", "--seed", "--display", "--stop-at-gap",
                       "--optimum", "--cuts", "--json", "--plot", "--version"):
            self.assertIn(option, text)

    def test_version(self):
        self.assertRegex(self.call("--version").out, r"\Azero_half \d+\.\d+\.\d+\n\Z")


if __name__ == "__main__":
    main()
