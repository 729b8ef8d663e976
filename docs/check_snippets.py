#!/usr/bin/env python3
"""Checks that the code in pages and in the comments of headers is code that the tests compile.

usage: check_snippets.py ROOT FILE ...

In a page, each block of C++, JSON, CMake or shell follows a line

    <!-- from examples/quickstart/main.cpp -->

and its lines are consecutive lines of that file, which the tests build and run or compare with what
is printed. The code in the comments of headers, indented by five blanks, is all in
tests/docs/header_snippets.cpp. Code may be indented less than in its source.
"""

import pathlib
import re
import sys
import textwrap

BLOCK = re.compile(
    r"^(?:<!-- from (?P<source>\S+) -->\n+)?^```(?:cpp|json|cmake|sh)\n(?P<code>.*?)^```$",
    re.MULTILINE | re.DOTALL)
IN_COMMENT = re.compile(r"^ *///\n(?P<code>(?: *///     .*\n)+)", re.MULTILINE)
SOURCE_OF_COMMENTS = "tests/docs/header_snippets.cpp"


def contains(source, code):
    """Whether the lines of code are in the source, all indented by the same number of blanks."""
    wanted = code.splitlines()
    lines = source.splitlines()
    for start in range(len(lines) - len(wanted) + 1):
        found = "\n".join(lines[start:start + len(wanted)])
        if textwrap.dedent(found).splitlines() == wanted:
            return True
    return False


def snippets(path):
    """Of each snippet: its code, the name of its source or None, and the line before it."""
    text = path.read_text(encoding="utf-8")
    in_header = path.suffix == ".h"
    for snippet in (IN_COMMENT if in_header else BLOCK).finditer(text):
        line = text.count("\n", 0, snippet.start("code"))
        if in_header:
            code = re.sub("^ *///     ", "", snippet["code"], flags=re.MULTILINE)
            yield code, SOURCE_OF_COMMENTS, line
        else:
            yield snippet["code"], snippet["source"], line


def complaints(root, path):
    for code, source, line in snippets(path):
        if source is None:
            yield f"{path}:{line}: no '<!-- from FILE -->' before this block"
        elif not contains((root / source).read_text(encoding="utf-8"), code):
            yield f"{path}:{line}: what follows is not in {source}"


def main():
    root, *paths = map(pathlib.Path, sys.argv[1:])
    found = [complaint for path in paths for complaint in complaints(root, path)]
    for complaint in found:
        print(complaint)
    return len(found) != 0


if __name__ == "__main__":
    sys.exit(main())
