#!/usr/bin/env python3
"""Checks that the installed tree and the zips hold what they should, and nothing else.

usage: check_files.py INSTALLED ZIP SYMBOLS-ZIP LIST [FILE ...]

LIST has the files that are expected, one a line; each FILE is expected, too. In a zip they lie in one
folder that bears the first zip's name. The symbols are those of each program and DLL that is expected.
Links of installed pages lead to installed files.
"""

import pathlib
import re
import sys
import zipfile


def files_below(folder):
    return {path.relative_to(folder).as_posix() for path in folder.rglob("*") if path.is_file()}


def files_in_zip(path, folder):
    names = {name for name in zipfile.ZipFile(path).namelist() if not name.endswith("/")}
    return {name.removeprefix(folder + "/") for name in names}


def report(what, expected, found):
    for name in sorted(expected - found):
        print(f"{what} lacks {name}")
    for name in sorted(found - expected):
        print(f"{what} has {name}, which is not expected")
    return expected == found


def report_links(installed):
    dead = [f"{page}: {link}" for page in installed.rglob("*.md")
            for link in re.findall(r"\]\((?!https?:)([^)#]+)", page.read_text(encoding="utf-8"))
            if not (page.parent / link).exists()]
    for link in dead:
        print(f"a link that leads nowhere: {link}")
    return not dead


def main():
    installed, archive, symbols, listed = map(pathlib.Path, sys.argv[1:5])
    expected = set(listed.read_text(encoding="utf-8").split()) | set(sys.argv[5:])
    expected_symbols = {name + ".debug" for name in expected if name.startswith("bin/")}
    checks = [report("the installed tree", expected, files_below(installed)),
              report("the zip", expected, files_in_zip(archive, archive.stem)),
              report("the zip of symbols", expected_symbols, files_in_zip(symbols, archive.stem)),
              report_links(installed)]
    return 0 if all(checks) else 1


if __name__ == "__main__":
    sys.exit(main())
