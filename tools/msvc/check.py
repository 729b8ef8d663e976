#!/usr/bin/env python3
"""Compiles sources, tests and public headers in the dialect of Visual C++, without making objects.

usage: check.py BUILD FOLDER

BUILD is a configured build for Windows: what it compiles, with its macros and folders, is what is
checked. FOLDER is for files that the check makes. The compiler is clang, the C++ library LLVM's, the
headers of C and of Windows are Wine's, and `include` beside this file has what these lack.
docs/building.md tells what the check cannot find.
"""

import concurrent.futures
import json
import os
import pathlib
import re
import shlex
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parents[2]
LLVM = pathlib.Path("/usr/lib/llvm-22")
WINE = pathlib.Path("/usr/include/wine/wine")
GOOGLETEST = "/usr/src/googletest/googletest/include"

DIALECT = [
    f"{LLVM}/bin/clang++", "--target=x86_64-pc-windows-msvc", "-fms-compatibility-version=19.38",
    "-nostdinc", "-D_MT", "-D_DLL", "-D_UCRT", "-D_LIBCPP_NO_VCRUNTIME", "-D_CRT_SECURE_NO_WARNINGS",
    "-DWINE_UNICODE_NATIVE", f"-I{ROOT}",
    "-Wall", "-Wextra", "-Wpedantic", "-Wmicrosoft", "-Wshadow", "-Werror",
    "-Wimplicit-int-conversion", "-Wshorten-64-to-32",  # C4244 and C4267 of Visual C++
    "-Wno-language-extension-token",  # __uuidof
    "-Wno-return-stack-address",  # takes the handle in a unique_ptr for the address of that
]

# What differs from the headers of Windows, in copies that the check makes.
CHANGED_HEADERS = {
    "aclapi.h": [("GetNamedSecurityInfoW(LPWSTR", "GetNamedSecurityInfoW(LPCWSTR")],
    "winbase.h": [("(~0u)", "((DWORD)~0u)")],
    "winnt.h": [("BYTE\tName[1]", "CHAR\tName[1]")],
}

# Not for Visual C++, and those in which a test expects errors or warnings.
LEFT_OUT = re.compile(r"platform/mingw/|tests/utils/format_o|tests/prefs/guards_without_names")

MACROS_OF_WINDOWS = """#if !defined(min) || !defined(max)
#error "<windows.h> made no macros min and max, or a standard header took them away."
#endif
"""


def change_wine_headers(folder):
    folder.mkdir(parents=True, exist_ok=True)
    for name, changes in CHANGED_HEADERS.items():
        text = (WINE / "windows" / name).read_text(encoding="latin-1")
        for old, new in changes:
            if old not in text:
                sys.exit(f"Wine's {name} is not the one that is known: it lacks {old}")
            text = text.replace(old, new)
        (folder / name).write_text(text, encoding="latin-1")


def compiler_with_headers(folder):
    folders = [LLVM / "include/c++/v1", ROOT / "tools/msvc/include", folder / "wine",
               LLVM / "lib/clang/22/include", WINE / "msvcrt", WINE / "windows"]
    return DIALECT + [option for path in folders for option in ("-isystem", path)]


def build_commands(build):
    """Each source in the tree, with the arguments of the build's compiler."""
    for entry in json.loads((build / "compile_commands.json").read_text(encoding="utf-8")):
        source = pathlib.Path(entry["file"])
        if source.is_relative_to(ROOT) and not source.is_relative_to(build):
            name = source.relative_to(ROOT).as_posix()
            if not LEFT_OUT.match(name):
                yield name, shlex.split(entry["command"])


def kept_options(arguments):
    """Macros and folders; all else is for another compiler. What it compiles without warnings is
    compiled so here."""
    pairs = zip(arguments, arguments[1:])
    folders = [option for first, second in pairs if first == "-isystem"
               for option in (first, second)]
    warnings = [] if "-Wall" in arguments else ["-w"]
    return [option for option in arguments if re.match(r"-[DI].", option)] + folders + warnings


def standard_headers(sources):
    found = set()
    for name in sources:
        text = (ROOT / name).read_text(encoding="utf-8")
        found.update(re.findall(r"^#include <[a-z_]+>", text, re.MULTILINE))
    return "\n".join(sorted(found))


def precompile(compiler, header, options):
    precompiled = header.with_suffix(".pch")
    subprocess.run([*compiler, *options, "-std=c++17", "-fpch-instantiate-templates",
                    "-x", "c++-header", header, "-o", precompiled], check=True)
    return ["-include-pch", precompiled]


def source_checks(compiler, commands, folder):
    """All that the build compiles; headers that most sources include are read once for all."""
    commands = {(name, *kept_options(arguments)): "cmake_pch" in " ".join(arguments)
                for name, arguments in commands}
    product = [key[0] for key in commands if not key[0].startswith("tests/")]
    (folder / "product.h").write_text(standard_headers(product))
    (folder / "tests.h").write_text('#include "tests/precompiled.h"\n')
    of_product = precompile(compiler, folder / "product.h", [])
    of_tests = None
    for (name, *options), has_precompiled in commands.items():
        precompiled = of_product
        if name.startswith("tests/"):
            if has_precompiled and not of_tests:
                of_tests = precompile(compiler, folder / "tests.h", options)
            precompiled = of_tests if has_precompiled else []
        yield name, [*options, *precompiled, "-std=c++17", ROOT / name]


def public_headers():
    listed = (ROOT / "tests/installed/files.txt").read_text(encoding="utf-8")
    return re.findall(r"^include/vemora/(.*)", listed, re.MULTILINE)


def header_checks(folder):
    """Each public header compiles alone."""
    for header in public_headers():
        source = folder / (header.replace("/", "_") + ".cpp")
        source.write_text(f'#include "{header}"\n')
        yield header, ["-std=c++17", "-isystem", GOOGLETEST, source]


def host_checks(folder):
    """All public headers compile behind <windows.h> with all its macros, as with /permissive-."""
    includes = "".join(f'#include "{header}"\n' for header in public_headers())
    source = folder / "host.cpp"
    source.write_text(f"#include <windows.h>\n{MACROS_OF_WINDOWS}{includes}{MACROS_OF_WINDOWS}")
    for standard in ("c++17", "c++20"):
        for charset in (["-DUNICODE", "-D_UNICODE"], []):
            yield (f"all public headers behind <windows.h> ({standard} {' '.join(charset)})",
                   [f"-std={standard}", "-fno-delayed-template-parsing", *charset,
                    "-isystem", GOOGLETEST, source])


def compile_one(command):
    run = subprocess.run([*command, "-fsyntax-only"], capture_output=True, text=True, check=False)
    return run.returncode == 0 and not run.stderr, run.stderr


def main():
    build, folder = (pathlib.Path(argument).resolve() for argument in sys.argv[1:3])
    change_wine_headers(folder / "wine")
    compiler = compiler_with_headers(folder)
    checks = [*header_checks(folder), *host_checks(folder),
              *source_checks(compiler, build_commands(build), folder)]
    failed = 0
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        results = pool.map(compile_one, ([*compiler, *options] for _, options in checks))
        for (name, _), (passed, output) in zip(checks, results):
            if not passed:
                failed += 1
                print(f"== {name}\n{output}", file=sys.stderr)
    print(f"{len(checks) - failed} of {len(checks)} compile in the dialect of Visual C++")
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
