"""Runs the benchmarks of both worlds and writes what was measured to a JSON file.

    run.py RESULTS [--quick]

A figure is the median of interleaved repetitions: nanoseconds or bytes.
"""

import argparse
import datetime
import json
import os
import pathlib
import platform
import re
import statistics
import subprocess
import sys
import time

ROOT = pathlib.Path(__file__).resolve().parent.parent
COUNTS = {"S": 565, "M": 10_000, "L": 1_000_000}
# Seconds for one repetition, and how many. Wine's clock of CPU time has ticks of 10 ms.
EFFORT = {"S": (0.1, 7), "M": (0.1, 7), "L": (0.1, 3)}
QUICK_EFFORT = {"S": (0.1, 3), "M": (0.1, 3)}


class World:
    """Where programs run: Linux itself, or Windows as Wine has it."""

    def __init__(self, name, folder, launcher, suffix):
        self.name = name
        self.folder = ROOT / "build" / folder
        self.launcher = launcher
        self.suffix = suffix

    def command(self, program, *arguments):
        return [*self.launcher, str(self.folder / "bin" / (program + self.suffix)), *arguments]

    def run(self, program, *arguments):
        """What the program prints."""
        done = subprocess.run(self.command(program, *arguments), text=True,
                              stdout=subprocess.PIPE, stderr=subprocess.PIPE)
        if done.returncode != 0:
            sys.exit(f"{program} {' '.join(arguments)} failed:\n{done.stderr}")
        return done.stdout


WINDOWS_FOLDER = ROOT / "build/bench-windows"
WORLDS = (
    World("native", "bench", [], ""),
    World("Windows", "bench-windows", [str(ROOT / "cmake/run-under-wine"), str(WINDOWS_FOLDER)],
          ".exe"),
)


def measured_time(run):
    """Elapsed time where the system takes part, CPU time where nothing but the library does."""
    elapsed = run["run_name"].endswith(("/real_time", "/manual_time"))
    return run["real_time" if elapsed else "cpu_time"]


def measure_stores(world, size, effort):
    seconds, repetitions = effort
    report = world.folder / f"bench_store-{size}.json"
    world.run("bench_store", f"--benchmark_filter=/{size}/",
              f"--benchmark_min_time={seconds}", f"--benchmark_repetitions={repetitions}",
              "--benchmark_enable_random_interleaving=true", f"--benchmark_out={report}")
    times = {}
    for run in json.loads(report.read_text())["benchmarks"]:
        if run["run_type"] == "iteration":
            workload, _, store = run["run_name"].split("/")[:3]
            times.setdefault((workload, store), []).append(measured_time(run))
    return [figure(world, workload, size, store, values)
            for (workload, store), values in times.items()]


def measure_first_use(world, repetitions):
    """Whole processes, and what they say that their `main` took."""
    programs = {"ours": "start_ours", "nlohmann": "start_nlohmann", "empty process": "start_empty"}
    processes = {store: [] for store in programs}
    mains = {store: [] for store in programs}
    for _ in range(repetitions):
        for store, program in programs.items():
            start = time.perf_counter()
            microseconds = float(world.run(program))
            processes[store].append((time.perf_counter() - start) * 1e9)
            mains[store].append(microseconds * 1e3)
    del mains["empty process"]
    return ([figure(world, "first use, process", "S", *item) for item in processes.items()] +
            [figure(world, "first use, in main", "S", *item) for item in mains.items()])


def measure_memory(world, size, stores, repetitions):
    """Bytes a preference, held after loading and at most meanwhile; a process for each store."""
    figures = []
    for store in stores:
        runs = [world.run("bench_memory", store, size).split() for _ in range(repetitions)]
        for workload, values in zip(("memory held", "memory at most"), zip(*runs)):
            figures.append(figure(world, workload, size, store,
                                  [int(value) / COUNTS[size] for value in values]))
    return figures


def measure_library():
    """Size, stripped, and imports of the DLL."""
    stripped = WINDOWS_FOLDER / "stripped.dll"
    subprocess.run(["x86_64-w64-mingw32-strip", "-o", stripped,
                    WINDOWS_FOLDER / "bin/CommonPreferences.dll"], check=True)
    headers = subprocess.run(["x86_64-w64-mingw32-objdump", "-p", stripped], check=True, text=True,
                             stdout=subprocess.PIPE).stdout
    return {"bytes": stripped.stat().st_size,
            "imports": sorted(re.findall(r"DLL Name: (\S+)", headers))}


def figure(world, workload, size, store, values):
    return {"world": world.name, "workload": workload, "size": size, "store": store,
            "value": statistics.median(values)}


def first_line(*command):
    return subprocess.run(command, check=True, text=True,
                          stdout=subprocess.PIPE).stdout.splitlines()[0]


def describe_machine():
    cpu = re.search(r"model name\s*: (.*)", pathlib.Path("/proc/cpuinfo").read_text())[1]
    memory = int(re.search(r"MemTotal:\s*(\d+)", pathlib.Path("/proc/meminfo").read_text())[1])
    return {"cpu": cpu, "cores": os.cpu_count(), "memory_gib": round(memory / 2**20),
            "system": f"{platform.freedesktop_os_release()['PRETTY_NAME']}, Linux "
                      f"{platform.release()}",
            "compilers": [first_line("g++", "--version"),
                          first_line("x86_64-w64-mingw32-g++-posix", "--version")],
            "wine": first_line("wine", "--version")}


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("results", type=pathlib.Path)
    parser.add_argument("--quick", action="store_true", help="leaves out the largest size")
    arguments = parser.parse_args()
    efforts = QUICK_EFFORT if arguments.quick else EFFORT
    largest = list(efforts)[-1]

    loads = [os.getloadavg()[0]]
    figures = []
    for world in WORLDS:
        for size, effort in efforts.items():
            print(f"measuring: {world.name}, {size}", flush=True)
            figures += measure_stores(world, size, effort)
            loads.append(os.getloadavg()[0])
        stores = {one["store"] for one in figures
                  if one["world"] == world.name and one["workload"] == "load"} - {"files"}
        print(f"measuring: {world.name}, processes", flush=True)
        figures += measure_memory(world, largest, sorted(stores), 1 if arguments.quick else 3)
        figures += measure_first_use(world, 10 if arguments.quick else 30)

    arguments.results.parent.mkdir(parents=True, exist_ok=True)
    arguments.results.write_text(json.dumps({
        "date": datetime.date.today().isoformat(),
        "command": "./dev bench" + (" --quick" if arguments.quick else ""),
        "machine": describe_machine(),
        "load_average": [min(loads), max(loads)],
        "counts": COUNTS,
        "library": measure_library(),
        "figures": figures,
    }, indent=1) + "\n")


if __name__ == "__main__":
    main()
