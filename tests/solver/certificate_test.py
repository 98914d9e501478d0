"""Certificates of zero_half, and what check_cuts says of them: zero_half check_cuts model..."""
import pathlib
import subprocess
import sys
import tempfile
import unittest

ZERO_HALF, CHECK_CUTS, *MODELS = sys.argv[1:]


def check(model, certificate):
    return subprocess.run([CHECK_CUTS, model, certificate], capture_output=True, text=True,
                          check=False)


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

    def test_changed_lines_are_refused(self):
        lines = self.certify(MODELS[0])
        place = next(k for k, line in enumerate(lines) if line.startswith("cut "))
        words = lines[place].split()
        terms = int(words[3])
        changes = {"rhs": (-1, str(float(words[-1]) - 1)), "divisor": (2, "-2"),
                   "coefficient": (-2, str(float(words[-2]) + 5)),
                   "row": (5, "1000000"), "multiplier": (6, "-3")}
        self.assertGreater(terms, 0)
        for name, (at, value) in changes.items():
            with self.subTest(name):
                changed = list(words)
                changed[at] = value
                self.file.write_text("\n".join(
                    lines[:place] + [" ".join(changed)] + lines[place + 1:]) + "\n")
                found = check(MODELS[0], self.file)
                self.assertEqual((found.returncode, found.stdout), (1, ""))
                self.assertEqual(len(found.stderr.splitlines()), 1)

    def test_incomplete_and_missing_files_are_refused(self):
        self.file.write_text("\n".join(self.certify(MODELS[0])[:-1]) + "\n")
        self.assertEqual(check(MODELS[0], self.file).returncode, 1)
        self.assertEqual(check(MODELS[0], self.file.with_name("missing")).returncode, 1)
        self.assertEqual(check(self.file.with_name("missing"), self.file).returncode, 1)
        self.assertEqual(subprocess.run([CHECK_CUTS], capture_output=True, check=False).returncode,
                         2)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
