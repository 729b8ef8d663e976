#!/usr/bin/env python3
"""Seeds small defects into the library, one at a time, and tells whether its tests notice.

usage: run_mutants.py [PATTERN]

PATTERN is a regular expression for the mutants' names. All work is done on a copy of the sources,
in build/mutants. The defects are in mutants.py.
"""

import dataclasses
import filecmp
import pathlib
import re
import shutil
import subprocess
import sys
import time

from mutants import MUTANTS, UNITS

ROOT = pathlib.Path(__file__).resolve().parents[2]
COPY = ROOT / "build" / "mutants"
JOBS = "2"
TEST_SECONDS = "180"  # a mutant that runs longer hangs; the slowest of these suites writes many files
REQUIRED_SHARE = 0.95


class TableError(Exception):
    """An entry of the table that is no mutant."""


@dataclasses.dataclass
class Result:
    verdict: str  # "caught", "survived" or "error"
    detail: str


def copy_sources():
    """Makes the copy equal to the sources. Files that are equal keep their time, for the build."""
    listed = subprocess.run(
        ["git", "ls-files", "-z", "--cached", "--others", "--exclude-standard"],
        cwd=ROOT, check=True, capture_output=True, text=True).stdout.split("\0")
    names = {name for name in listed if name and (ROOT / name).is_file()}
    for path in COPY.rglob("*"):
        name = path.relative_to(COPY)
        if name.parts[0] != "build" and path.is_file() and name.as_posix() not in names:
            path.unlink()
    for name in names:
        target = COPY / name
        if not target.exists() or not filecmp.cmp(ROOT / name, target, shallow=False):
            target.parent.mkdir(parents=True, exist_ok=True)
            shutil.copy(ROOT / name, target)


def run(*command):
    return subprocess.run(
        command, cwd=COPY, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True,
        errors="replace")


def check(*command):
    done = run(*command)
    if done.returncode != 0:
        print(done.stdout, file=sys.stderr)
        sys.exit(f"run_mutants: {' '.join(command)} failed without any mutant")


def build_command(preset, *tests):
    return ["cmake", "--build", "--preset", preset, "--parallel", JOBS, "--target", *tests]


def test_command(preset, *tests):
    """Runs the suites of those files."""
    pattern = f"^({'|'.join(tests)})\\."
    return ["ctest", "--preset", preset, "--parallel", JOBS, "--tests-regex", pattern,
            "--timeout", TEST_SECONDS, "--stop-on-failure"]


def check_unmutated(programs):
    for preset in sorted({program.preset for program in programs}):
        tests = sorted({program.test for program in programs if program.preset == preset})
        print(f"{preset}, unmutated: {' '.join(tests)}", flush=True)
        check("cmake", "--preset", preset)
        check(*build_command(preset, *tests))
        check(*test_command(preset, *tests))


def apply(mutant):
    source = COPY / mutant.file
    original = source.read_text()
    count = original.count(mutant.old)
    if count != 1:
        raise TableError(f"the old text is there {count} times")
    source.write_text(original.replace(mutant.old, mutant.new))
    return source, original


def failed_tests(output):
    """What ctest says of the tests that failed, such as "Failed" or "Timeout"."""
    return "; ".join(re.findall(r"^\t\s*\d+ - (.*)$", output, re.MULTILINE)) or "failed"


def find_catcher(programs):
    """Builds and runs the tests of one file after the other; None when none notices."""
    for program in programs:
        built = run(*build_command(program.preset, program.test))
        if built.returncode != 0:
            error = re.search(r"error: .*", built.stdout)
            raise TableError(f"does not build: {error[0] if error else built.stdout}")
        tested = run(*test_command(program.preset, program.test))
        if tested.returncode != 0:
            first = re.search(r"^\[  FAILED  \] (\S+)|ERROR: (\w+Sanitizer: \S+)|runtime error: .*",
                              tested.stdout, re.MULTILINE)
            return failed_tests(tested.stdout) + (f": {first[0].strip()}" if first else "")
    return None


def try_mutant(mutant):
    try:
        source, original = apply(mutant)
        try:
            catcher = find_catcher(UNITS[mutant.file])
        finally:
            source.write_text(original)
    except TableError as error:
        return Result("error", str(error))
    return Result("caught", catcher) if catcher else Result("survived", mutant.equivalent)


def report(results):
    print()
    counted = [(mutant, result) for mutant, result in results if not mutant.equivalent]
    caught = [mutant for mutant, result in counted if result.verdict == "caught"]
    wrong = [mutant for mutant, result in results
             if result.verdict == "error" or mutant.equivalent and result.verdict == "caught"]
    for mutant, result in results:
        if mutant.equivalent and result.verdict == "survived":
            print(f"equivalent: {mutant.name}: {mutant.equivalent}")
    for mutant, result in counted:
        if result.verdict == "survived":
            print(f"survived: {mutant.name} ({mutant.file})")
    for mutant in wrong:
        print(f"wrong entry: {mutant.name} ({mutant.file})")
    print(f"{len(caught)} of {len(counted)} caught")
    return not wrong and len(caught) >= REQUIRED_SHARE * len(counted)


def main():
    if len(sys.argv) > 2:
        sys.exit(__doc__)
    pattern = re.compile(sys.argv[1] if len(sys.argv) == 2 else "")
    mutants = [mutant for mutant in MUTANTS if pattern.search(mutant.name)]
    if not mutants:
        sys.exit(f"run_mutants: no mutant is called {pattern.pattern}")
    copy_sources()
    check_unmutated([program for mutant in mutants for program in UNITS[mutant.file]])
    results = []
    for mutant in mutants:
        start = time.monotonic()
        result = try_mutant(mutant)
        results.append((mutant, result))
        print(f"{result.verdict:8} {mutant.name:44} {time.monotonic() - start:4.0f} s  "
              f"{result.detail}", flush=True)
    return 0 if report(results) else 1


if __name__ == "__main__":
    sys.exit(main())
