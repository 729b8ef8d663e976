#!/usr/bin/env python3
"""Checks that the installed tree and the zip hold what they should, and nothing else.

usage: check_files.py INSTALLED ZIP LIST DOCS [FILE ...]

LIST has the files that are expected, one a line; all of the folder DOCS are expected, too, and each
FILE. In the zip they lie in one folder that bears the zip's name.
"""

import pathlib
import sys
import zipfile

DOCS_INSTALLED = "share/doc/CommonPreferences/docs/"


def files_below(folder):
    return {path.relative_to(folder).as_posix() for path in folder.rglob("*") if path.is_file()}


def files_in_zip(path):
    names = {name for name in zipfile.ZipFile(path).namelist() if not name.endswith("/")}
    return {name.removeprefix(path.stem + "/") for name in names}


def report(what, expected, found):
    for name in sorted(expected - found):
        print(f"{what} lacks {name}")
    for name in sorted(found - expected):
        print(f"{what} has {name}, which is not expected")
    return expected == found


def main():
    installed, archive, listed, docs = map(pathlib.Path, sys.argv[1:5])
    expected = set(listed.read_text(encoding="utf-8").split()) | set(sys.argv[5:])
    expected |= {DOCS_INSTALLED + name for name in files_below(docs)}
    checks = [report("the installed tree", expected, files_below(installed)),
              report("the zip", expected, files_in_zip(archive))]
    return 0 if all(checks) else 1


if __name__ == "__main__":
    sys.exit(main())
