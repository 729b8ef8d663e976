"""Where the programs of the benchmark run: Linux itself, or Windows as Wine has it."""

import contextlib
import dataclasses
import os
import subprocess
import sys
import tempfile
import time


@dataclasses.dataclass
class Outcome:
    """What a process printed, and what it took."""
    output: str
    elapsed: float  # nanoseconds, as all times
    cpu: float
    page_faults: int


class World:
    launcher = ()
    suffix = ""
    environment = None  # this process's own

    def __init__(self, name, build):
        self.name = name
        self.build = build

    def run(self, program, *arguments):
        command = [*self.launcher, str(self.build / "bin" / (program + self.suffix)),
                   *map(str, arguments)]
        # No pipes: what Wine starts beside the program would keep them open.
        with tempfile.TemporaryFile("w+") as output, tempfile.TemporaryFile("w+") as errors:
            start = time.perf_counter()
            process = subprocess.Popen(command, env=self.environment, stdin=subprocess.DEVNULL,
                                       stdout=output, stderr=errors)
            _, status, usage = os.wait4(process.pid, 0)
            elapsed = time.perf_counter() - start
            process.returncode = os.waitstatus_to_exitcode(status)
            output.seek(0)
            errors.seek(0)
            if process.returncode != 0:
                sys.exit(f"{' '.join(command)} failed:\n{errors.read()}")
            return Outcome(output.read(), elapsed * 1e9, (usage.ru_utime + usage.ru_stime) * 1e9,
                           usage.ru_minflt)

    @contextlib.contextmanager
    def ready(self):
        yield


class WineWorld(World):
    """Programs are run as cmake/run-under-wine runs them, but for its own processes around them."""
    launcher = ("wine",)
    suffix = ".exe"

    def __init__(self, root):
        super().__init__("Windows", root / "build/bench-windows")
        self.run_under_wine = root / "cmake/run-under-wine"
        self.environment = dict(os.environ, WINEPREFIX=str(self.build / "wine"),
                                HOME=str(self.build / "wine-home"), WINEDEBUG="-all",
                                WINEDLLOVERRIDES="mscoree=;mshtml=;winedbg.exe=",
                                LC_ALL="C.UTF-8")
        self.environment.pop("DISPLAY", None)

    @contextlib.contextmanager
    def ready(self):
        """Keeps Wine's server alive: its start takes a hundred times what a process does."""
        # Makes the prefix.
        self.quietly(self.run_under_wine, self.build, self.build / "bin/start_empty.exe")
        self.quietly("wineserver", "-k")
        self.quietly("wineserver", "-w")
        self.quietly("wineserver", "-p")
        try:
            yield
        finally:
            self.quietly("wineserver", "-k")

    def quietly(self, *command):
        subprocess.run(command, env=self.environment, check=False, stdin=subprocess.DEVNULL,
                       stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)


def make_worlds(root, names):
    worlds = (World("native", root / "build/bench"), WineWorld(root))
    return [world for world in worlds if world.name in names]
