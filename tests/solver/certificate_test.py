"""Tests that check_cuts accepts certificates of zero_half and refuses changed ones.

    certificate_test.py ZERO_HALF CHECK_CUTS MODEL...
"""
import pathlib
import subprocess
import sys
import tempfile
import unittest

ZERO_HALF, CHECK_CUTS, *MODELS = sys.argv[1:]


def check(model, certificate):
    return subprocess.run([CHECK_CUTS, model, certificate], capture_output=True, text=True,
                          check=False)


def fields(line):
    """The place of each field of a line; of fields that occur several times, of the first."""
    words = line.split()
    at = {"kind": 0, "id": 1, "divisor": 2, "terms": 3, "rhs": len(words) - 1}
    next_place = 4 + 3 * int(words[3])
    if words[3] != "0":
        at |= {"term kind": 4, "term id": 5, "multiplier": 6}
    at |= {"entries": next_place, "column": next_place + 1, "coefficient": next_place + 2}
    next_place += 1 + 2 * int(words[next_place])
    at["bounds"] = next_place
    if words[next_place] != "0":
        at |= {"side": next_place + 1, "bound column": next_place + 2,
               "bound value": next_place + 3}
    return at


class Certificate(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.file = pathlib.Path(folder.name) / "certificate"

    def certify(self, model):
        subprocess.run([ZERO_HALF, model, "--rounds", "8", "--display", "off", "--certificate",
                        self.file], check=True)
        return self.file.read_text().splitlines()

    def test_every_cut_follows(self):
        for model in MODELS:
            with self.subTest(model):
                lines = self.certify(model)
                cuts = sum(line.startswith("cut ") for line in lines)
                self.assertGreater(cuts, 0)
                found = check(model, self.file)
                self.assertEqual((found.returncode, found.stdout),
                                 (0, f"{cuts} cuts follow from the model\n"))

    def refuse(self, lines, sentence):
        self.file.write_text("\n".join(lines) + "\n")
        found = check(MODELS[0], self.file)
        self.assertEqual((found.returncode, found.stdout), (1, ""))
        self.assertRegex(found.stderr, "^check_cuts: " + sentence)
        self.assertEqual(len(found.stderr.splitlines()), 1)

    def test_a_change_of_any_field_is_refused(self):
        lines = self.certify(MODELS[0])
        place = next(k for k, line in enumerate(lines)
                     if line.startswith("cut ") and {"term kind", "side"} <= fields(line).keys())
        line = lines[place]
        at = fields(line)
        earlier = next(each.split()[1] for each in lines[:place])
        changes = [
            ("kind", "cat", "a line begins with another word"),
            ("kind", "row", "the number of cuts is another one"),
            ("id", earlier, "a divisor or an identifier"),
            ("divisor", "0", "a divisor or an identifier"),
            ("divisor", "-2", "a divisor or an identifier"),
            ("divisor", "3", "a coefficient differs|a bound|the right-hand side"),
            ("terms", "0", ""), ("terms", "100", ""), ("terms", "x", "a word is missing"),
            ("term kind", "model", ""),
            ("term id", "1000000", "a term is not allowed"),
            ("multiplier", "0", "a term is not allowed"),
            ("multiplier", "-1", "a term is not allowed"), ("multiplier", "nan", "a word is missing"),
            ("entries", "0", ""), ("entries", "1000", ""),
            ("column", "-1", "no integer column"), ("column", "1000000", "no integer column"),
            ("coefficient", "0.5", "no integer"), ("coefficient", "1000", ""),
            ("bounds", "0", ""), ("bounds", "1000", ""),
            ("side", "upper" if line.split()[at["side"]] == "lower" else "lower",
             "a bound is not needed"),
            ("bound column", "1000000", "a bound is not needed"),
            ("bound value", "-1", "a bound has another value"),
            ("rhs", str(float(line.split()[-1]) - 1), "the right-hand side is too small"),
            ("rhs", str(float(line.split()[-1]) + 0.5), "the right-hand side is too small"),
            ("rhs", line.split()[-1] + " 1", "the line is too long"),
        ]
        self.assertEqual(set(at), {name for name, _, _ in changes})
        for name, value, sentence in changes:
            with self.subTest(name, value=value):
                words = line.split()
                self.assertNotEqual(words[at[name]], value)
                words[at[name]] = value
                self.refuse(lines[:place] + [" ".join(words)] + lines[place + 1:], sentence)

    def test_missing_lines_are_refused(self):
        lines = self.certify(MODELS[0])
        place = next(k for k, line in enumerate(lines) if line.startswith("cut "))
        self.refuse(lines[:place] + lines[place + 1:], "the number of cuts|a term is not allowed")
        self.refuse(lines[:-1] + ["end"], "a word is missing")
        self.refuse(lines[:-1] + ["end 1000"], "the number of cuts is another one")

    def test_incomplete_and_missing_files_are_refused(self):
        self.file.write_text("\n".join(self.certify(MODELS[0])[:-1]) + "\n")
        self.assertEqual(check(MODELS[0], self.file).returncode, 1)
        self.assertEqual(check(MODELS[0], self.file.with_name("missing")).returncode, 1)
        self.assertEqual(check(self.file.with_name("missing"), self.file).returncode, 1)
        self.assertEqual(subprocess.run([CHECK_CUTS], capture_output=True, check=False).returncode,
                         2)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
