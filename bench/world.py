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
    def __init__(self, name, build, launcher=(), suffix=""):
        self.name = name
        self.build = build
        self.launcher = list(launcher)
        self.suffix = suffix

    def run(self, program, *arguments):
        command = [*self.launcher, str(self.build / "bin" / (program + self.suffix)),
                   *map(str, arguments)]
        # No pipes: what Wine starts beside the program would keep them open.
        with tempfile.TemporaryFile("w+") as output, tempfile.TemporaryFile("w+") as errors:
            start = time.perf_counter()
            process = subprocess.Popen(command, stdin=subprocess.DEVNULL, stdout=output,
                                       stderr=errors)
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
    def __init__(self, root):
        build = root / "build/bench-windows"
        super().__init__("Windows", build, [str(root / "cmake/run-under-wine"), str(build)], ".exe")

    @contextlib.contextmanager
    def ready(self):
        """Keeps Wine's server alive: its start takes a hundred times what a process does."""
        self.run("start_empty")  # makes the prefix
        self.server("-w")
        self.server("-p")
        try:
            yield
        finally:
            self.server("-k")

    def server(self, option):
        environment = dict(os.environ, WINEPREFIX=str(self.build / "wine"))
        subprocess.run(["wineserver", option], env=environment, check=False,
                       stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)


def make_worlds(root, names):
    worlds = (World("native", root / "build/bench"), WineWorld(root))
    return [world for world in worlds if world.name in names]
