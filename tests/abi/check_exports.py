#!/usr/bin/env python3
"""Compares what a DLL exports and imports with what it is meant to.

usage: check_exports.py OBJDUMP DLL EXPORTS-FILE

EXPORTS-FILE lists the exported names in ascending order, as the linker spells them.
"""

import difflib
import pathlib
import re
import subprocess
import sys

FILE_NAME = "CommonPreferences.dll"
# What every process has anyway, or nearly so: others are loaded when they are needed.
SYSTEM_DLLS = {"advapi32.dll", "kernel32.dll", "msvcrt.dll"}


def exported_names(dump):
    """The names in the table that starts with "[Ordinal/Name Pointer] Table"."""
    table = dump.partition("[Ordinal/Name Pointer] Table\n")[2].partition("\n\n")[0]
    return sorted(re.findall(r"^\s*\[\s*\d+\].*?(\S+)$", table, re.MULTILINE))


def complaints(dll, dump, expected):
    if dll.name != FILE_NAME:
        yield f"the DLL is called {dll.name}, not {FILE_NAME}"

    inner_name = re.search(r"^Name\s+[0-9a-f]+\s+(\S+)$", dump, re.MULTILINE)
    if inner_name is None or inner_name[1] != FILE_NAME:
        yield f"the DLL does not call itself {FILE_NAME} in its export table"

    imported = re.findall(r"DLL Name: (\S+)", dump)
    if not imported:
        yield "no import table found"
    for name in imported:
        if name.lower() not in SYSTEM_DLLS:
            yield f"the DLL needs {name}, which is none of {', '.join(sorted(SYSTEM_DLLS))}"

    if expected != sorted(expected):
        yield "the list of exports is not in ascending order"
    yield from difflib.unified_diff(
        expected, exported_names(dump), "expected exports", "exports", n=0, lineterm="")


def main():
    objdump, dll, exports_file = sys.argv[1:]
    dump = subprocess.run(
        [objdump, "-p", dll], check=True, capture_output=True, text=True).stdout
    expected = pathlib.Path(exports_file).read_text().split()
    found = list(complaints(pathlib.Path(dll), dump, expected))
    print("\n".join(found) or f"{len(expected)} exports, as expected")
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main())
