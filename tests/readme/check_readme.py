#!/usr/bin/env python3
"""Holds the example in a README against the program that it shows.

The first C++ block of the page must be the source, to the letter, and the block that follows it must
be what the program prints.
"""

import re
import subprocess
import sys


def fail(sentence):
    sys.exit(f"check_readme: {sentence}")


def main():
    if len(sys.argv) != 4:
        fail("usage: check_readme.py README SOURCE PROGRAM")
    readme, source, program = sys.argv[1:]
    with open(readme, encoding="utf-8") as page:
        blocks = re.findall(r"^```(\w*)\n(.*?)^```$", page.read(), re.MULTILINE | re.DOTALL)
    languages = [language for language, _ in blocks]
    if "cpp" not in languages or languages.index("cpp") + 1 >= len(blocks):
        fail(f"{readme} has no C++ block followed by its output")
    position = languages.index("cpp")
    with open(source, encoding="utf-8") as text:
        if blocks[position][1] != text.read():
            fail(f"the example in {readme} is not {source}")
    ran = subprocess.run([program], capture_output=True, text=True, check=False)
    if ran.returncode != 0:
        fail(f"the example ended with status {ran.returncode}: {ran.stderr.strip()}")
    if blocks[position + 1][1] != ran.stdout:
        fail(f"the example prints something else than {readme} says:\n{ran.stdout}")


if __name__ == "__main__":
    main()
