#!/usr/bin/env python3
"""A program must end with the given status and with exactly the given sentence on standard error."""

import subprocess
import sys


def main():
    if len(sys.argv) < 4:
        sys.exit("usage: refusal.py STATUS SENTENCE PROGRAM [ARGUMENT...]")
    status, sentence, *command = sys.argv[1:]
    ran = subprocess.run(command, capture_output=True, text=True, check=False)
    if (str(ran.returncode), ran.stderr) != (status, sentence + "\n"):
        sys.exit(f"refusal: status {ran.returncode}, standard error:\n{ran.stderr}")


if __name__ == "__main__":
    main()
