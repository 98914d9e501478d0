#!/usr/bin/env python3
"""Compiles and runs every program of a manual: each block of code of its language.

    programs.py PAGE LANGUAGE WORK_FOLDER COMPILER [OPTION...]
"""

import pathlib
import re
import subprocess
import sys

SUFFIX = {"c": ".c", "fortran": ".f90"}


def main():
    page, language, work, compiler, *options = sys.argv[1:]
    folder = pathlib.Path(work)
    folder.mkdir(parents=True, exist_ok=True)
    text = pathlib.Path(page).read_text(encoding="utf-8")
    blocks = re.findall(rf"^```{language}\n(.*?)^```$", text, flags=re.M | re.S)
    if len(blocks) < 2:
        sys.exit(f"programs: there are no programs in {page}")
    for number, block in enumerate(blocks, 1):
        source = folder / f"program_{number}{SUFFIX[language]}"
        program = folder / f"program_{number}"
        source.write_text(block, encoding="utf-8")
        for command in ([compiler, str(source), "-o", str(program), *options], [str(program)]):
            ran = subprocess.run(command, capture_output=True, text=True, check=False, cwd=folder)
            if ran.returncode != 0 or ran.stderr:
                sys.exit(f"programs: program {number} of {page}: {' '.join(command)}\n"
                         f"{ran.stdout}{ran.stderr}")
        print(f"program {number}: {ran.stdout.strip()}")


if __name__ == "__main__":
    main()
