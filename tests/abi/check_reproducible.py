#!/usr/bin/env python3
"""Fails when the product depends on when or where it was built.

usage: check_reproducible.py SOURCE-FOLDER BUILD-FOLDER WORK-FOLDER TOOLCHAIN-FILE

What is in the build folder names no folder of this machine, and debug information neither. It has the
same bytes when its objects are linked once more, and when a copy of the sources elsewhere is built:
with COMMONPREFERENCES_STRESS=1 as a whole, else the value classes only.
"""

import os
import pathlib
import re
import shutil
import subprocess
import sys

PROGRAMS = ["bin/CommonPreferences.dll", "bin/vemora-prefs.exe"]
VALUES = "libCommonPreferencesValues.a"
SOURCES = ["CMakeLists.txt", "apps", "cmake", "platform", "prefs", "utils"]


def make_empty(folder):
    shutil.rmtree(folder, ignore_errors=True)
    folder.mkdir(parents=True)
    return folder


def link_again(build, program, folder):
    """Runs the command that linked a program, with another folder for what it makes."""
    command = subprocess.run(["ninja", "-t", "commands", "-s", program], cwd=build, check=True,
                             stdout=subprocess.PIPE, encoding="utf-8").stdout
    name = pathlib.Path(program).name
    moved = re.sub(r"(-o |--out-implib,)(\S+)",
                   lambda match: match[1] + str(folder / pathlib.Path(match[2]).name), command)
    moved = moved.replace(str(build / program), str(folder / name))
    subprocess.run(moved, shell=True, cwd=build, check=True)
    return folder / name


def copy_sources(source, copy):
    for name in SOURCES:
        path = source / name
        (shutil.copytree if path.is_dir() else shutil.copy2)(path, copy / name)


def build_product(source, build, toolchain, configuration, targets):
    # A cache of compilations would give the bytes of another build.
    environment = {name: value for name, value in os.environ.items()
                   if name != "CMAKE_CXX_COMPILER_LAUNCHER"}
    subprocess.run(
        ["cmake", "-G", "Ninja", "-S", source, "-B", build, "-DCMAKE_BUILD_TYPE=" + configuration,
         "-DCMAKE_TOOLCHAIN_FILE=" + toolchain, "-DCOMMONPREFERENCES_TESTS=OFF",
         "-DCOMMONPREFERENCES_EXAMPLES=OFF", "-DCOMMONPREFERENCES_INSTALL=OFF"],
        check=True, stdout=subprocess.DEVNULL, env=environment)
    subprocess.run(["cmake", "--build", build, "--target", *targets], check=True,
                   stdout=subprocess.DEVNULL, env=environment)


def named_folders(file, folders):
    content = file.read_bytes()
    return [f"{file} names the folder {folder}" for folder in folders
            if os.fsencode(folder) in content]


def complaints(source, build, work, toolchain):
    for name in [*PROGRAMS, VALUES]:
        yield from named_folders(build / name, [source, build])

    for program in PROGRAMS:
        again = link_again(build, program, work)
        if again.read_bytes() != (build / program).read_bytes():
            yield f"{program} has other bytes when it is linked again"

    if os.environ.get("COMMONPREFERENCES_STRESS") == "1":
        files, targets = [*PROGRAMS, VALUES], ["CommonPreferences", "vemora-prefs"]
    else:
        files, targets = [VALUES], ["CommonPreferencesValues"]
    copy = work / "a folder of sources"
    copy_sources(source, make_empty(copy))
    build_product(copy, copy / "build", toolchain, "Release", targets)
    for name in files:
        if (copy / "build" / name).read_bytes() != (build / name).read_bytes():
            yield f"{name} has other bytes when it is built elsewhere"

    build_product(copy, work / "debug", toolchain, "RelWithDebInfo", ["CommonPreferencesValues"])
    yield from named_folders(work / "debug" / VALUES, [copy, work / "debug"])


def main():
    source, build = (pathlib.Path(argument).resolve() for argument in sys.argv[1:3])
    work = make_empty(pathlib.Path(sys.argv[3]).resolve())
    found = list(complaints(source, build, work, sys.argv[4]))
    print("\n".join(found))
    shutil.rmtree(work)
    return int(bool(found))


if __name__ == "__main__":
    sys.exit(main())
