#!/usr/bin/env python3
"""Runs zero_half on files of every format, and on files that it must refuse.

Usage: reading_test.py PROGRAM FOLDER [TEST ...]
"""

import gzip
import os
import re
import subprocess
import unittest

from zero_half_calls import (
    Call, CALL_TIMEOUT, HERE, main, mixed_columns, one_column, program, ZeroHalfTest)


class Reading(ZeroHalfTest):
    def test_fixed_free_and_compressed_files_are_the_same_model(self):
        files = [self.write("fixed.mps", mixed_columns(is_fixed=True)),
                 self.write("free.mps", mixed_columns()),
                 self.write("marked.mps", mixed_columns(head=["FREE"])),
                 self.write("packed.mps.gz", gzip.compress(mixed_columns().encode()))]
        _, models = self.report(*files)
        figures = [{key: model[key] for key in ("rows", "columns", "lp_bound", "bound",
                                                "cuts_kept", "status")} for model in models]
        self.assertEqual(figures, [figures[0]] * len(files))
        # The constant is 7 and x4 = 2. By row r3, y = 2.5 and x3 = -5.5 without cuts, y = 2 and x3 = -5
        # with cuts. At most one of the other three columns can be 1: their sum is 1.5 without cuts, 1
        # with cuts.
        relaxed = 7 + 2 + 2.5 / 4 - 2 * 5.5 - 1.5
        self.assertEqual((figures[0]["lp_bound"], figures[0]["bound"]),
                         (relaxed, 7 + 2 + 2 / 4 - 2 * 5 - 1))

    def test_explicit_minimisation_is_read(self):
        for head in (["OBJSENSE", "    MIN"], ["OBJSENSE", "    minimize"], ["* MAX"]):
            call, (model,) = self.report(self.write("minimise.mps", one_column(head=head)),
                                         "--display", "off")
            self.assertEqual((call.out, model["bound"]), ("", -1.0))

    def test_maximisation_is_read(self):
        # 3 x <= 4 with the objective x + 7, maximised: 25/3 without cuts, 8 with them.
        whole = program({"x": {"cost": 1, "r": 3}}, {"r": "L"}, [("r", 4), ("cost", -7)],
                        [" UP b x 9"])
        heads = [whole.replace("ROWS", f"{head}\nROWS", 1) for head in
                 ("OBJSENSE\n    MAX", "OBJSENSE MAX", "OBJSENSE\n    Maximize")]
        for content in (*heads, whole.replace("RHS\n", "OBJSENSE\n MAX\nRHS\n", 1),
                        whole.replace("NAME t", "NAME t (MAX)")):
            with self.subTest(content):
                tightened = self.folder / "tightened.mps"
                file = self.write("max.mps", content)
                call, (model,) = self.report(file, "--cuts", tightened)
                self.assertAlmostEqual(model["lp_bound"], 25 / 3)
                self.assertEqual((model["bound"], model["optimum"]), (8.0, 8.0))
                self.assertEqual(model["gap_closed_percent"], 100.0)
                self.assertEqual(call.rounds()[0][-1]["bound"], "8.0000")
                _, (after,) = self.report(tightened, "--rounds", "0")
                self.assertAlmostEqual(after["lp_bound"], 8.0)
                call = self.call(file, "--optimum", "9", status=1)
                self.assertIn("no point has a value above the bound 8\n", call.err)

    def test_minimisation_in_a_comment_or_in_the_name_line(self):
        for content in (one_column(head=["* MAX"]),
                        one_column().replace("NAME t", "NAME t (MIN)")):
            _, (model,) = self.report(self.write("min.mps", content))
            self.assertEqual(model["bound"], -1.0)

    def test_lp_files_are_read(self):
        rows = "Subject To\n r1: x + y <= 1\n r2: y + z <= 1\n r3: x + z <= 1\nBinary\n x y z\nEnd\n"
        for head, bound in (("Maximize\n obj: 2 x + 2 y + 2 z\n", 2.0),
                            ("Minimize\n obj: - x - y - z\n", -1.0)):
            call, (model,) = self.report(self.write("triangle.lp", head + rows))
            self.assertEqual((model["bound"], model["status"]), (bound, "integral"))
            self.assertEqual(model["lp_bound"], 1.5 * bound)
            self.assertEqual(call.out.splitlines()[0].split(" ")[0], model["file"])
        for cut_off in ("no model", "Minimize\n obj: x\nSubject To\n",
                        "Minimize\n obj: x\nSubject To\n r: x >= 1\nGenerals\n x", "\\ End\n"):
            self.refuse(self.write("bad.lp", cut_off), "this is not an LP file that can be read; line")

    def test_every_form_of_an_lp_file_is_read(self):
        text = ("\\ a comment: End\nMINIMISE\n obj: 2x + y - 0.5e1 z +\n3 + 0 u\nsubject   to\n"
                " -4 <= x - z <= 5\n 3 >= y\n\n z: + - x[1] => -inf\n u + 2ex >= -2\n empty: <= 0\n"
                " x + y + z >=\n 1.5\n"
                "Bounds\n x <= 4\n -1 <= z <= 2.5 \\ End\n u free\n u >= -7\n ex = 1\n 0 <= y\n"
                " x[1] <= +infinity\nGenerals\n x z\n u\nBinaries\n y\nEND")
        # z = 2, so that -5 z = -10; x >= -2 needs x = 0; y = 0 as x + y + z >= 1.5 holds.
        for content in (text, text.replace("\n", "\r\n"), "\ufeff" + text):
            for name, data in (("form.lp", content.encode()),
                               ("form.lp.gz", gzip.compress(content.encode())),
                               ("form.txt", content.encode())):
                with self.subTest(name=name, content=content[:2]):
                    _, (model,) = self.report(self.write(name, data))
                    self.assertEqual((model["rows"], model["columns"]), (6, 6))
                    self.assertEqual((model["bound"], model["status"]), (-7.0, "integral"))

    def test_lp_files_with_anything_else_are_refused(self):
        head, tail = "Minimize\n x\nSubject To\n", "Generals\n x\nEnd\n"
        row = " x + y >= 1\n"
        for content, saying in (
                (f"Minimize\n [ x^2 ] / 2\nSubject To\n{row}{tail}", "line 2: quadratic"),
                (f"{head} c: x = 1 -> y >= 1\n{tail}", "line 4: quadratic and logical parts"),
                (f"{head} x * y >= 1\n{tail}", "line 4: quadratic and logical parts"),
                (f"{head} 3 x y >= 1\n{tail}", "line 4: unexpected y"),
                (f"{head} x >= y\n{tail}", "line 4: unexpected y"),
                (f"{head} 1..5 x >= 1\n{tail}", "line 4: unexpected .5"),
                (f"{head} x >= nan\n{tail}", "line 4: unexpected nan"),
                (f"{head} x + 4 >= 1\n{tail}", "line 4: a row needs columns on one side"),
                (f"{head} <= 3\n{tail}", "columns on one side"),
                (f"{head} c: 3 <= 4\n{tail}", "line 4: a row needs columns on one side"),
                (f"{head} x + x >= 1\n{tail}", "line 4: the column x occurs twice in a row"),
                (f"Minimize\n x + x\nSubject To\n{row}{tail}", "line 2: the column x occurs twice in the objective"),
                (f"{head} 3 = x >= 1\n{tail}", "line 4: the two sides of a row contradict"),
                (f"{head} c:{row} c:{row}{tail}", "the name c occurs twice"),
                (f"{head} 1e16 x >= 1\n{tail}", "beyond 1e15"),
                (f"{head} x >= 1e400\n{tail}", "beyond 1e15"),
                (f"{head}{row}Bounds\n 5 <= x <= 3\n{tail}", "between the bounds of column x"),
                (f"{head}{row}Bounds\n x\n{tail}", "line 7: unexpected Generals"),
                (f"{head}{row}SOS\n s: S1:: x:1\n{tail}", "section SOS is not supported"),
                (f"{head}{row}Semi-Continuous\n y\n{tail}", "section Semi-Continuous"),
                (f"{head}{row}Lazy  Constraints\n x >= 1\n{tail}", "section Lazy  Constraints"),
                (f"{head}{row}General Constraints\n z = MAX ( x , y )\n{tail}", "section General"),
                (f"Minimize multi-objectives\n x\nSubject To\n{row}{tail}", "unexpected"),
                (f"{head}{row}{tail} x", "there is text behind End"),
                (f"{head} {'n' * 151} >= 1\n{tail}", "name of more than 150 characters"),
                (f"Minimize\n x\0\nSubject To\n{row}{tail}", "a control character in a name"),
                ("Subject To\n x >= 1\nEnd\n", "it does not begin with Minimize")):
            with self.subTest(content):
                self.refuse(self.write("bad.lp", content), saying)

    def test_standard_input_and_pipes_are_read(self):
        for command in (f"'{self.program}' - --display final < '{self.cover}'",
                        f"'{self.program}' <(cat '{self.cover}') --display final",
                        f"gzip -c '{self.cover}' | '{self.program}' - --display final"):
            with self.subTest(command):
                done = subprocess.run(["bash", "-c", command], capture_output=True, text=True,
                                      timeout=CALL_TIMEOUT, check=False)
                self.assertEqual((done.returncode, done.stderr), (0, ""))
                self.assertEqual(Call(0, done.stdout, "").table()[0]["bound"], "6")
        call = self.call("-", status=1)
        self.assertEqual(call.err, "zero_half: -: the input is empty\n")

    def test_byte_order_mark_and_missing_name(self):
        plain = one_column()
        for content in (b"\xef\xbb\xbf" + plain.encode(), plain.replace("NAME t\n", "").encode(),
                        b"\xef\xbb\xbf" + plain.replace("NAME t\n", "").encode()):
            with self.subTest(content):
                call, (model,) = self.report(self.write("marked.mps", content))
                self.assertEqual((model["rows"], model["bound"]), (1, -1.0))
                self.assertEqual(call.out.splitlines()[0], model["file"], "no line of the reader")

    def test_unknown_sense_of_the_objective_is_refused(self):
        for head in (["OBJSENSE", "  LARGEST"], ["OBJSENSE LARGEST"]):
            self.refuse_program(one_column(head=head), "neither MAX nor MIN")

    def test_xz_is_refused(self):
        self.refuse(self.write("packed.mps.xz", b"\xfd7zXZ\x00" + bytes(50)), "compressed by xz")

    def test_integer_columns_without_bounds_are_binary(self):
        for bound, least in ((" LO b x 0", -7.0), (" PL b x", -7.0), ("* none", -1.0)):
            _, (model,) = self.report(self.write("wide.mps", one_column(rhs=7, bound=bound)))
            self.assertEqual(model["bound"], least)

    def test_crossed_bounds_are_refused_with_their_line(self):
        self.refuse_program(one_column(bound=" UP b x 2\n LO b x 3"), "at line 14 <  LO b x 3 >")

    def test_sets_cones_and_quadratic_parts_are_refused(self):
        whole = one_column()
        at_end = lambda *lines: whole.replace("ENDATA", "\n".join([*lines, "ENDATA"]))
        for content, saying in (
                (at_end("SOS", " S1 SOS s 1", " SOS x 1"), "a section SOS"),
                (at_end("QUADOBJ", " x x 1"), "a section QUADOBJ"),
                (at_end("CSECTION k 0 QUAD", " x"), "a section CSECTION"),
                (whole.replace("INTORG", "SOSORG"), "a set"),
                (one_column(bound=" SC b x 1"), "semi-continuous")):
            with self.subTest(saying):
                self.refuse_program(content, saying)

    def test_repeated_names_are_refused(self):
        again = one_column().replace("RHS\n", " y r 1\n x s 1\nRHS\n").replace(
            " L r\n", " L r\n L s\n")
        call = self.call(self.write("again.mps", again), status=1)
        self.assertRegex(call.err, r"again\.mps: the name x occurs twice\n\Z")

    def test_names_have_at_most_150_characters(self):
        for length, status in ((150, 0), (151, 1), (400, 1)):
            name = "n" * length
            for content in (one_column().replace(" x", " " + name),
                            one_column().replace(" r ", f" {name} ").replace(
                                " L r\n", f" L {name}\n"),
                            one_column().replace("NAME t", "NAME " + name)):
                call = self.call(self.write("long.mps", content), "--display", "off",
                                 status=status)
                self.assertEqual(call.err, "" if status == 0 else
                                 f"zero_half: {self.folder / 'long.mps'}: there is a name of more "
                                 "than 150 characters\n")

    def test_tabs_and_long_comments_are_read(self):
        plain = self.cover.read_text()
        changed = "* " + "long " * 500 + "\n" + re.sub(r"(?<=\S) +(?=\S)", "\t", plain)
        _, (model,) = self.report(self.write("tabs.mps", changed))
        self.assertEqual((model["rows"], model["lp_bound"]), (15, 5.0))

    def test_missing_file(self):
        self.refuse(self.folder / "none.mps", "there is no such file")

    def test_empty_file(self):
        self.refuse_program("", "the file is empty")

    def test_folder(self):
        self.refuse(self.folder, "not a file")

    @unittest.skipIf(os.geteuid() == 0, "root can read every file")
    def test_unreadable_file(self):
        file = self.write("secret.mps", self.cover.read_bytes())
        file.chmod(0)
        self.refuse(file, "cannot be read")

    def test_truncated_file(self):
        whole = self.cover.read_text()
        for percent in (10, 50, 75, 90, 97):
            with self.subTest(percent):
                self.refuse_program(whole[:len(whole) * percent // 100], "this is not an MPS file")
        with self.subTest("without its last line"):
            self.refuse_program(whole.replace("ENDATA\n", ""), "this is not an MPS file")

    def test_truncated_compressed_file(self):
        packed = gzip.compress(self.cover.read_bytes())
        for size in (5, len(packed) // 2):
            with self.subTest(size):
                self.refuse(self.write("bad.mps.gz", packed[:size]), "this is not an MPS file")

    def test_error_in_a_free_file_is_reported_by_the_free_reader(self):
        self.refuse_program(self.cover.read_text().replace("UP bnd x5 1", "UP bnd x77 1"), "x77")

    def test_file_of_another_format(self):
        self.refuse_program("hello\nworld\n", "this is not an MPS file")

    def test_binary_file(self):
        self.refuse_program(bytes(range(256)) * 50, "this is not an MPS file")

    def test_no_integer_column(self):
        self.refuse_program(one_column(integer=False), "no column is integer")

    def test_infeasible_relaxation(self):
        self.refuse_program(one_column(rhs=5).replace(" L r", " G r"), "no feasible point")

    def test_rows_take_memory_only_for_their_entries(self):
        count = 30_000  # squared, times 8 bytes, is 7 GB
        columns = {f"x{j}": {"cost": -1, f"r{j}": 2} for j in range(count)}
        file = self.write("sparse.mps", program(columns, {f"r{j}": "L" for j in range(count)},
                                                [(f"r{j}", 1) for j in range(count)]))
        _, (model,) = self.report(file, "--rounds", "1")
        self.assertEqual((model["lp_bound"], model["bound"]), (-0.5 * count, 0.0))

    def test_empty_range_of_an_integer_column(self):
        self.refuse_program(one_column(bound=" LO b x 0.3\n UP b x 0.7"),
                            "no integer between the bounds of column x")

    def test_unbounded_relaxation_reported_infeasible_by_the_simplex_method(self):
        self.refuse(HERE / "models" / "unbounded_free_column.mps", "the relaxation is unbounded")

    def test_no_claim_without_a_proof(self):
        # Column y makes the relaxation unbounded, but its cost is within the tolerance of the simplex
        # method, which reports an optimum.
        self.refuse_program(program({"x": {"cost": -1, "r": 1}, "y": {"cost": "1e-11"}}, {"r": "L"},
                                    [("r", 5)], [" PL b x", " MI b y"]), "could not be decided")

    def test_integer_points_of_a_model_with_numbers_far_apart(self):
        # There are ten; the optimum is 2913.5.
        file = HERE / "models" / "ten_integer_points.mps"
        for seed in range(1, 6):
            _, (model,) = self.report(file, "--seed", seed)
            self.assertEqual((model["status"], model["bound"]), ("integral", 2913.5))

    def test_unbounded_relaxation(self):
        self.refuse_program(one_column(coefficient=-1, bound=" PL b x"), "unbounded")

    def test_numbers_that_are_not_finite(self):
        for value in ("nan", "inf", "-inf"):
            for content in (one_column(cost=value), one_column(coefficient=value),
                            one_column(rhs=value), one_column(bound=f" UP b x {value}")):
                with self.subTest(content):
                    self.refuse_program(content, value)

    def test_numbers_too_large_to_compute_with(self):
        for value in ("1e16", "1e30", "-1e30", "1e308", "1e400", "-1e400"):
            for content in (one_column(cost=value), one_column(coefficient=value)):
                with self.subTest(content):
                    self.refuse_program(content, "too large")
        self.refuse_program(program({"x": {"cost": 1, "r": "1e30"}, "y": {"cost": 1, "r": "1e-30"}},
                                    {"r": "L"}, [("r", 1)], [" UP b x 1"]), "too large")

    def test_bounds_too_large_to_compute_with(self):
        # An upper bound of 1e30 means no bound; one of -1e30 is a number.
        values = ("1e16", "-1e16", "-1e29", "-1e30", "-1e31", "-1e400")
        for content in (*(one_column(rhs=value) for value in values),
                        *(one_column(bound=f" MI b x\n UP b x {value}") for value in values)):
            with self.subTest(content):
                self.refuse_program(content, "a bound or a right-hand side is beyond 1e15")

    def test_infinite_right_hand_side_is_ignored(self):
        _, (model,) = self.report(self.write("free_row.mps", one_column(rhs="1e30")))
        self.assertEqual(model["bound"], -1.0)

    def test_report_without_models(self):
        call, models = self.report(self.folder / "none.mps", status=1)
        self.assertEqual(models, [])
        self.assertNotIn("model ", call.out)


if __name__ == "__main__":
    main()
