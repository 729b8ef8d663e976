#!/usr/bin/env python3
"""Fails when a program or DLL has symbols, or its symbols file does not fit.

usage: check_symbols.py PREFIX-OF-TOOLS FILE FUNCTION SOURCE

FILE.debug has to be the one that FILE names, and to tell that FUNCTION lies in SOURCE. FUNCTION is
spelled as the linker does.
"""

import pathlib
import re
import subprocess
import sys
import zlib


def run(*command):
    return subprocess.run(command, check=True, stdout=subprocess.PIPE, encoding="utf-8").stdout


def debug_link(tools, file):
    """The file name and the checksum that the section for debuggers has."""
    dump = run(tools + "objdump", "-s", "-j", ".gnu_debuglink", str(file))
    data = bytes.fromhex("".join(re.findall(r"^ \w+ ((?:\w{2,8} ?){1,4}) ", dump, re.MULTILINE))
                         .replace(" ", ""))
    name = data.split(b"\0")[0]
    return name.decode(), int.from_bytes(data[(len(name) + 4) // 4 * 4:][:4], "little")


def source_of(tools, symbols, function):
    address = re.search(rf"^(\w+) \w {re.escape(function)}$", run(tools + "nm", symbols),
                        re.MULTILINE)
    return address and run(tools + "addr2line", "-e", symbols, address[1])


def complaints(tools, file, function, source):
    symbols = file.with_name(file.name + ".debug")
    sections = run(tools + "objdump", "-h", str(file))
    if ".debug_" in sections or run(tools + "nm", str(file)):
        yield f"{file.name} has symbols"
    if debug_link(tools, file) != (symbols.name, zlib.crc32(symbols.read_bytes())):
        yield f"{file.name} names other symbols than those of {symbols.name}"
    found = source_of(tools, str(symbols), function)
    if not found or f"{source}:" not in found:
        yield f"{symbols.name} tells that {function} is in {found}, not in {source}"


def main():
    found = list(complaints(sys.argv[1], pathlib.Path(sys.argv[2]), *sys.argv[3:5]))
    print("\n".join(found))
    return int(bool(found))


if __name__ == "__main__":
    sys.exit(main())
