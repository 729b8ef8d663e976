#!/usr/bin/env python3
"""Checks that the code in the pages is code of the examples.

usage: check_snippets.py ROOT PAGE ...

Each block of C++ or JSON follows a line

    <!-- from examples/quickstart/main.cpp -->

and its lines are consecutive lines of that file, which the tests build and run or compare with what
is printed. The block may be indented less.
"""

import pathlib
import re
import sys
import textwrap

BLOCK = re.compile(
    r"^(?:<!-- from (?P<source>\S+) -->\n+)?^```(?P<language>cpp|json)\n(?P<code>.*?)^```$",
    re.MULTILINE | re.DOTALL)


def contains(source, code):
    """Whether the lines of code are in the source, all indented by the same number of blanks."""
    wanted = code.splitlines()
    lines = source.splitlines()
    for start in range(len(lines) - len(wanted) + 1):
        found = "\n".join(lines[start:start + len(wanted)])
        if textwrap.dedent(found).splitlines() == wanted:
            return True
    return False


def complaints(root, page):
    text = page.read_text(encoding="utf-8")
    for block in BLOCK.finditer(text):
        place = f"{page}:{text.count(chr(10), 0, block.start('code'))}"
        if block["source"] is None:
            yield f"{place}: no '<!-- from FILE -->' before this block"
        elif not contains((root / block["source"]).read_text(encoding="utf-8"), block["code"]):
            yield f"{place}: these lines are not in {block['source']}"


def main():
    root, *pages = map(pathlib.Path, sys.argv[1:])
    found = [complaint for page in pages for complaint in complaints(root, page)]
    print("\n".join(found))
    return len(found) != 0


if __name__ == "__main__":
    sys.exit(main())
