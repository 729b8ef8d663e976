#!/usr/bin/env python3
"""Runs the program of docs/getting-started.md as a user does: for the first time, again, and after
one of its files was damaged.

usage: check_getting_started.py PROGRAM [ARGUMENT ...]
"""

import pathlib
import subprocess
import sys
import tempfile

DAMAGED = '{\n  "This Computer Only": oops'


def main():
    with tempfile.TemporaryDirectory(dir=".") as folder:
        def run():
            return subprocess.run([*sys.argv[1:], folder], stdout=subprocess.PIPE, check=True,
                                  encoding="utf-8").stdout
        outputs = [run(), run()]
        private = pathlib.Path(folder, "local", "private.json")
        private.write_text(DAMAGED, encoding="utf-8")
        outputs.append(run())
        kept = private.with_name("private.json.bad").read_text(encoding="utf-8")
    print(*outputs, sep="", end="")
    told, _, last = outputs[2].partition("\n")
    return int(outputs[:2] != ["run 1, unit none\n", "run 2, unit mm\n"]
               or not told.startswith("private settings are damaged at line 2 (")
               or last != "run 1, unit mm\n"
               or kept != DAMAGED)


if __name__ == "__main__":
    sys.exit(main())
