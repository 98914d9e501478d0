#!/usr/bin/env python3
"""damage.py LIBRARY COPY: a copy of a signed library with one byte of its code changed."""

import pathlib
import sys

contents = bytearray(pathlib.Path(sys.argv[1]).read_bytes())
contents[len(contents) // 2] ^= 1
pathlib.Path(sys.argv[2]).write_bytes(contents)
