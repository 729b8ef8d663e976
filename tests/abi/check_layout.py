#!/usr/bin/env python3
"""Compares how the Microsoft ABI lays out classes with how it is meant to.

usage: check_layout.py CLANG SOURCE LAYOUT-FILE [COMPILER-ARGUMENT ...]

Clang compiles SOURCE, which uses the classes, for Visual C++'s ABI and tells its layouts.
LAYOUT-FILE holds sections: a heading, then an indented line for each slot or field, in order. A
heading is "vftable CLASS", or "vftable BASE in CLASS" for the table that comes from a base, or
"fields CLASS". Namespaces are left out everywhere. Lines that start with "#" are comments.
"""

import difflib
import pathlib
import re
import subprocess
import sys

# The headers are MinGW's, so the compiler passes for MinGW's; the ABI is Microsoft's.
ARGUMENTS = [
    "--target=x86_64-pc-windows-msvc", "-fno-ms-compatibility", "-fms-extensions",
    "-D__MINGW32__", "-D__MINGW64__", "-D__MSVCRT__", "-fgnuc-version=12.2.0", "-fmsc-version=0",
    "-D__declspec(x)=__attribute__((x))",  # as GCC has it, on which MinGW's headers rely
    "-nostdinc++", "-std=c++17", "-Wall", "-Wextra", "-Wpedantic", "-Werror",
    "-c", "-o", "/dev/null",
    "-Xclang", "-fdump-vtable-layouts", "-Xclang", "-fdump-record-layouts",
]


def without_namespaces(text):
    return re.sub(r"\b(?:vemora|prefs|utils|std)::", "", text)


def operation(text):
    """The signature of a slot, without its class and without remarks such as "[pure]"."""
    return re.sub(r"\w+::(?=~?\w+\()", "", re.sub(r"\s*\[.*\]$", "", text))


def vftables(dump):
    """Yields (heading, slots); the compiler counts the type information as entry 0."""
    for title, entries in re.findall(
            r"^VFTable for (.*) \(\d+ entr(?:y|ies)\)\.\n((?:.+\n)*)", dump, re.MULTILINE):
        slots = re.findall(r"^ *\d+ \| (?!.* RTTI$)(.*)$", entries, re.MULTILINE)
        yield "vftable " + title.replace("'", ""), [operation(slot) for slot in slots]


def field(text):
    """The name of a field; a base class or a table pointer as the compiler writes it."""
    return text if text.endswith(")") else text.split()[-1]


def records(dump):
    """Yields (heading, fields), the fields being the members two blanks deep."""
    for title, body in re.findall(
            r"^ *0 \| (?:class|struct) (\S+)\n((?: *(?:\d+)? \|  .*\n)*)", dump, re.MULTILINE):
        fields = re.findall(r"^ *\d+ \|   (\S.*)$", body, re.MULTILINE)
        yield "fields " + title, [field(text) for text in fields]


def parse(text):
    sections = {}
    for line in text.splitlines():
        if not line.strip() or line.startswith("#"):
            continue
        if line.startswith(" "):
            entries.append(line.strip())
        else:
            entries = sections[line.strip()] = []
    return sections


def main():
    clang, source, layout_file, *arguments = sys.argv[1:]
    compilation = subprocess.run(
        [clang, *ARGUMENTS, *arguments, source], stdout=subprocess.PIPE, text=True)
    if compilation.returncode != 0:
        return compilation.returncode
    dump = without_namespaces(compilation.stdout)
    actual = {**dict(vftables(dump)), **dict(records(dump))}
    expected = parse(pathlib.Path(layout_file).read_text())

    differences = [line for heading, entries in expected.items()
                   for line in difflib.unified_diff(
                       entries, actual.get(heading, ["(not laid out)"]),
                       "expected " + heading, heading, lineterm="")]
    print("\n".join(differences) or f"{len(expected)} layouts, as expected")
    return 1 if differences or not expected else 0


if __name__ == "__main__":
    sys.exit(main())
