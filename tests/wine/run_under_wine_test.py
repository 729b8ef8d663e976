#!/usr/bin/env python3
"""Tests cmake/run-under-wine with a stand-in for Wine that fails as it is told.

usage: run_under_wine_test.py RUN-UNDER-WINE
"""

import os
import pathlib
import subprocess
import sys
import tempfile
import unittest

SCRIPT = pathlib.Path(sys.argv.pop(1)).resolve()
NOT_STARTED = 125

# Notes each call, then does as the next line of a plan says: FAIL fails as a loader that does not
# find its libraries, VANISH ends with code 0 as a GoogleTest program whose server ends, a number is
# the exit code of a program that ran, and TESTS leaves GoogleTest's result. The first program brings
# up the services, which takes a while.
WINE = """#!/bin/sh
echo "$*" >>"$FOLDER/calls"
case $1 in
  wineboot) kind=boot; mkdir -p "$WINEPREFIX/drive_c" ;;
  cmd) sleep 0.2; echo "the services run" >>"$FOLDER/calls"; exit 0 ;;
  *) kind=program ;;
esac
plan=$(head -n 1 "$FOLDER/$kind" 2>/dev/null)
sed -i 1d "$FOLDER/$kind" 2>/dev/null
if [ "$plan" = FAIL ]; then
  echo 'wine: could not load kernel32.dll, status c0000135' >&2
  exit 53
fi
if [ "$plan" = VANISH ]; then
  touch "$TEST_PREMATURE_EXIT_FILE"
  exit 0
fi
if [ "$plan" = TESTS ]; then
  touch "${GTEST_OUTPUT#xml:Z:}"
  exit 0
fi
[ "$kind" = boot ] || echo 'the program ran'
exit "${plan:-0}"
"""

# Keeps the output that it is given, as the real one does.
WINESERVER = """#!/bin/sh
case $1 in
  -p*)
    [ ! -e "$FOLDER/server" ] || exit 2
    touch "$FOLDER/server"
    sleep 20 &
    echo $! >"$FOLDER/server" ;;
esac
"""


class RunUnderWine(unittest.TestCase):
    def setUp(self):
        temporary = tempfile.TemporaryDirectory()
        self.addCleanup(temporary.cleanup)
        self.folder = pathlib.Path(temporary.name)
        self.build = self.folder / "build"
        self.build.mkdir()
        self.prefix = self.build / "wine"
        for name, text in (("wine", WINE), ("wineserver", WINESERVER)):
            path = self.folder / name
            path.write_text(text)
            path.chmod(0o755)
        self.addCleanup(self.end_server)

    def end_server(self):
        server = self.folder / "server"
        if server.exists():
            subprocess.run(["kill", server.read_text().strip()], check=False)

    def plan(self, kind, *steps):
        (self.folder / kind).write_text("".join(f"{step}\n" for step in steps))

    def start_program(self, argument="argument"):
        environment = dict(os.environ, FOLDER=str(self.folder), RUN_UNDER_WINE_PAUSE="0",
                           PATH=f"{self.folder}:{os.environ['PATH']}")
        return subprocess.Popen([SCRIPT, self.build, "program.exe", argument], env=environment,
                                stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True)

    def run_program(self, argument="argument"):
        program = self.start_program(argument)
        out, err = program.communicate(timeout=15)
        return subprocess.CompletedProcess(program.args, program.returncode, out, err)

    def calls(self, name):
        lines = (self.folder / "calls").read_text().splitlines()
        return [line for line in lines if line.startswith(name)]

    def test_runs_the_program_in_a_new_prefix(self):
        run = self.run_program()
        self.assertEqual((run.returncode, run.stdout, run.stderr), (0, "the program ran\n", ""))
        self.assertEqual(self.calls("program.exe"), ["program.exe argument"])

    def test_makes_the_prefix_once(self):
        self.run_program()
        self.run_program()
        self.assertEqual(len(self.calls("wineboot --init")), 1)

    def test_tries_again_when_the_prefix_cannot_be_made(self):
        self.plan("boot", "FAIL")
        run = self.run_program()
        self.assertEqual((run.returncode, run.stdout), (0, "the program ran\n"))
        self.assertEqual(len(self.calls("wineboot --init")), 2)

    def test_says_what_wine_said_when_the_prefix_cannot_be_made(self):
        self.plan("boot", "FAIL", "FAIL", "FAIL")
        run = self.run_program()
        self.assertEqual(run.returncode, NOT_STARTED)
        self.assertIn("could not make a prefix", run.stderr)
        self.assertIn("could not load kernel32.dll", run.stderr)
        self.assertEqual(self.calls("program.exe"), [])

    def test_leaves_no_prefix_in_place_that_could_not_be_made(self):
        self.plan("boot", "FAIL", "FAIL", "FAIL")
        self.run_program()
        self.assertFalse(self.prefix.exists())
        self.assertEqual(self.run_program().returncode, 0)

    def test_makes_a_half_made_prefix_anew(self):
        left_over = self.prefix / "drive_c" / "left over"
        left_over.mkdir(parents=True)
        run = self.run_program()
        self.assertEqual(run.returncode, 0)
        self.assertIn("half made", run.stderr)
        self.assertFalse(left_over.exists())

    def test_runs_a_program_that_fails_once_only(self):
        self.plan("program", 7)
        self.assertEqual(self.run_program().returncode, 7)
        self.assertEqual(len(self.calls("program.exe")), 1)

    def test_tries_again_when_the_program_did_not_start(self):
        self.plan("program", "FAIL", 7)
        run = self.run_program()
        self.assertEqual((run.returncode, run.stdout), (7, "the program ran\n"))
        self.assertIn("did not start, try 1 of 3", run.stderr)

    def test_lets_no_program_start_before_the_services_run(self):
        self.run_program()
        (self.folder / "calls").write_text("")
        self.end_server()
        (self.folder / "server").unlink()
        programs = [self.start_program() for _ in range(3)]
        for program in programs:
            program.communicate(timeout=15)
        self.assertEqual(self.calls(""), ["cmd /c exit 0", "the services run"] +
                         ["program.exe argument"] * 3)

    def test_takes_a_program_for_failed_that_ended_before_its_tests(self):
        self.plan("program", "VANISH")
        run = self.run_program()
        self.assertEqual(run.returncode, 126)
        self.assertIn("ended before its tests were over", run.stderr)

    def test_runs_tests_again_that_never_began_whatever_their_code(self):
        self.plan("program", 0, 1, "TESTS")
        run = self.run_program("--gtest_filter=Suite.*")
        self.assertEqual(run.returncode, 0)
        self.assertEqual(len(self.calls("program.exe")), 3)

    def test_tells_a_program_that_never_started_from_one_that_failed(self):
        self.plan("program", "FAIL", "FAIL", "FAIL", "FAIL")
        run = self.run_program()
        self.assertEqual(run.returncode, NOT_STARTED)
        self.assertIn("program.exe did not start\n", run.stderr)
        self.assertIn("could not load kernel32.dll", run.stderr)
        self.assertEqual(len(self.calls("program.exe")), 3)


if __name__ == "__main__":
    unittest.main()
