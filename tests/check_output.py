#!/usr/bin/env python3
"""Runs a program and compares what it prints with a file.

usage: check_output.py EXPECTED-FILE PROGRAM [ARGUMENT ...]

An argument {folder} stands for an empty folder, which is removed afterwards.
"""

import difflib
import pathlib
import subprocess
import sys
import tempfile


def main():
    expected_file, *command = sys.argv[1:]
    expected = pathlib.Path(expected_file).read_text(encoding="utf-8")
    with tempfile.TemporaryDirectory(dir=".") as folder:
        command = [argument.replace("{folder}", folder) for argument in command]
        run = subprocess.run(command, stdout=subprocess.PIPE, encoding="utf-8")
    sys.stdout.writelines(
        difflib.unified_diff(
            expected.splitlines(True), run.stdout.splitlines(True), expected_file, "output"))
    if run.returncode != 0:
        print(f"exit code {run.returncode}")
    return int(run.returncode != 0 or run.stdout != expected)


if __name__ == "__main__":
    sys.exit(main())
