"""Runs the benchmarks of both worlds and writes what was measured to a JSON file.

    run.py RESULTS [--quick] [--worlds NAMES] [--sizes NAMES] [--rows REGEX] [--stores REGEX]
                   [--before FOLDER]

A figure is the lower decile of short, interleaved repetitions, in nanoseconds or bytes: what else
the machine does makes a repetition longer, never shorter.
"""

import argparse
import collections
import contextlib
import datetime
import json
import os
import pathlib
import platform
import re
import signal
import statistics
import subprocess
import sys

import targets
import world

ROOT = pathlib.Path(__file__).resolve().parent.parent
COUNTS = {"S": 565, "M": 10_000, "L": 1_000_000}
STORES = ("ours", "RapidJSON", "nlohmann", "PropertyTree", "SimpleIni", "toml++")
NATIVE_STORES = ("QSettings", "GKeyFile")
IN_MEMORY_ROWS = ("read int", "read int, classified", "read text", "read text, classified",
                  "read absent", "read literal", "replace int", "replace int, classified",
                  "insert", "delete", "load nothing", "registry, cached", "registry, uncached")
# Rounds, repetitions in each and seconds for a repetition.
IN_MEMORY_EFFORT = {"S": (3, 25, 0.004), "M": (3, 25, 0.004), "L": (1, 15, 0.02)}
FILE_ROUNDS = 3
# Operations of a process.
FILE_EFFORT = {"load": {"S": 30, "M": 20, "L": 1}, "save": {"S": 30, "M": 20, "L": 2},
               "save, protected": {"S": 20, "M": 10, "L": 0}}
PLAIN_STORE = {"load": "files", "save": "files", "save, protected": "flushed file"}
START_PROGRAMS = {"ours": ("start_ours", "start_empty_library"),
                  "nlohmann": ("start_nlohmann", "start_empty")}
QUICK_STARTS, STARTS = 20, 100


class Measurements:
    """Values of each figure, of which the last step makes one."""

    def __init__(self):
        self.values = collections.defaultdict(list)
        # What is to be taken off, of figures that are differences.
        self.empty_values = collections.defaultdict(list)

    def add(self, place, workload, size, store, *values):
        self.values[place, workload, size, store] += values

    def add_usage(self, key, outcome, without, count):
        """What each operation of a process took beyond a process that makes none."""
        place, workload, size, store = key
        for name in ("CPU", "page faults"):
            field = name.lower().replace(" ", "_")
            difference = place, f"{workload}, {name}", size, store
            self.values[difference].append(getattr(outcome, field) / count)
            self.empty_values[difference].append(getattr(without, field) / count)

    def figures(self):
        figures = []
        for key, values in self.values.items():
            empty = self.empty_values.get(key, [0])
            figures.append({**dict(zip(("world", "workload", "size", "store"), key)),
                            "value": lower_decile(values) - lower_decile(empty)})
        return figures


def lower_decile(values):
    if len(values) == 1:
        return values[0]
    return statistics.quantiles(values, n=10, method="inclusive")[0]


class Subject:
    """A world whose programs are run; the library in it may be an older one, to compare with."""

    def __init__(self, place, options, before=False):
        self.place = place
        self.rows = re.compile(options.rows)
        self.stores = re.compile("ours" if before else options.stores)
        self.before = before

    def wants(self, row, store="ours"):
        return self.rows.match(row) and self.stores.fullmatch(store)

    def name(self, store):
        return "before" if self.before and store == "ours" else store

    def file_stores(self):
        return STORES + (NATIVE_STORES if self.place.name == "native" else ())


def measure_in_memory(subject, size, measurements):
    """One round of what Google Benchmark measures."""
    rows = [row for row in IN_MEMORY_ROWS if subject.rows.match(row)]
    if not rows:
        return
    _, repetitions, seconds = IN_MEMORY_EFFORT[size]
    report = subject.place.build / f"bench_store-{size}.json"
    report.write_text("")
    subject.place.run(
        "bench_store", f"--benchmark_filter=^({'|'.join(rows)})/{size}/({subject.stores.pattern})/",
        f"--benchmark_min_time={seconds}", f"--benchmark_repetitions={repetitions}",
        "--benchmark_enable_random_interleaving=true", f"--benchmark_out={report}")
    text = report.read_text()
    for run in json.loads(text)["benchmarks"] if text else ():
        if run["run_type"] == "iteration":
            workload, _, store = run["run_name"].split("/")[:3]
            measurements.add(subject.place.name, workload, size, subject.name(store),
                             run["real_time"])


def measure_files(subject, size, measurements):
    """One round of loads and saves, each store in a process of its own."""
    for workload, counts in FILE_EFFORT.items():
        stores = ("ours",) if workload == "save, protected" else subject.file_stores()
        for store in (*stores, PLAIN_STORE[workload]):
            if counts[size] and subject.wants(workload, store):
                measure_file(subject, workload, size, store, counts[size], measurements)


def measure_file(subject, workload, size, store, count, measurements):
    outcome = subject.place.run("bench_files", workload, store, size, count)
    key = subject.place.name, workload, size, subject.name(store)
    measurements.add(*key, *map(float, outcome.output.split()))
    if size == "L":
        without = subject.place.run("bench_files", workload, store, size, 0)
        measurements.add_usage(key, outcome, without, count)


def measure_memory(subject, size, measurements):
    """Bytes a preference, held after loading and at most meanwhile; a process for each store."""
    for store in subject.file_stores():
        if subject.wants("memory", store):
            held, most = subject.place.run("bench_memory", store, size).output.split()
            for workload, value in (("memory held", held), ("memory at most", most)):
                measurements.add(subject.place.name, workload, size, subject.name(store),
                                 int(value) / COUNTS[size])


def measure_first_use(subject, count, measurements):
    """Whole processes, and what their `main` took; CPU and faults beyond those of empty ones."""
    place = subject.place.name
    for _ in range(count):
        for store, (program, empty) in START_PROGRAMS.items():
            if not subject.wants("first use", store):
                continue
            key = place, "first use", "S", subject.name(store)
            outcome, without = subject.place.run(program), subject.place.run(empty)
            measurements.add(*key, float(outcome.output) * 1e3)
            measurements.add_usage(key, outcome, without, 1)
            measurements.add(place, "first use, process", "S", subject.name(store), outcome.elapsed)
            measurements.add(place, "first use, process", "S",
                             "empty process" + (" with a DLL" if store == "ours" else ""),
                             without.elapsed)


def measure_growth(subject, measurements):
    """Nanoseconds a preference in small and in large stores."""
    for store in ("ours", "floor"):
        for shape, counts in targets.GROWTH_SHAPES.items():
            for count in counts:
                if not subject.wants("growth", store):
                    continue
                for step in ("write", "read"):
                    output = subject.place.run("bench_growth", store, shape, count, step).output
                    for line in output.splitlines():
                        workload, value = line.split("\t")
                        measurements.add(subject.place.name, f"growth, {workload}",
                                         f"{shape}, {count:,}", subject.name(store), float(value))


def measure(subjects, sizes, quick):
    """All of one world."""
    measurements = Measurements()

    def in_turn(what, rounds, function, *arguments):
        print(f"measuring: {subjects[0].place.name}, {what}", flush=True)
        for _ in range(rounds):
            for subject in subjects:
                function(subject, *arguments, measurements)

    for subject in subjects:
        for size in sorted({*sizes, "S"}):
            subject.place.run("bench_files", "write", size)
    for size in sizes:
        in_turn(f"{size} in memory", IN_MEMORY_EFFORT[size][0], measure_in_memory, size)
    in_turn("memory", 1 if quick else 3, measure_memory, sizes[-1])
    in_turn("first use", 4, measure_first_use, (QUICK_STARTS if quick else STARTS) // 4)
    for size in sizes:
        in_turn(f"{size} in files", FILE_ROUNDS, measure_files, size)
    if not quick:
        in_turn("growth", 2, measure_growth)
    return measurements.figures()


def imports_of(library):
    headers = subprocess.run(["x86_64-w64-mingw32-objdump", "-p", library], check=True, text=True,
                             stdout=subprocess.PIPE).stdout
    return sorted(re.findall(r"DLL Name: (\S+)", headers))


def measure_library(root):
    """Size, stripped, and imports of the DLL."""
    build = root / "build/bench-windows"
    stripped = build / "stripped.dll"
    library = build / "bin/CommonPreferences.dll"
    subprocess.run(["x86_64-w64-mingw32-strip", "-o", stripped, library], check=True)
    imports = imports_of(stripped)
    if imports != imports_of(build / "bin/empty_library.dll"):
        sys.exit(f"the empty library does not import {', '.join(imports)}, as ours does")
    return {"bytes": stripped.stat().st_size, "imports": imports}


def first_line(*command):
    return subprocess.run(command, check=True, text=True,
                          stdout=subprocess.PIPE,
                          stderr=subprocess.DEVNULL).stdout.splitlines()[0]


def describe_machine():
    cpu = re.search(r"model name\s*: (.*)", pathlib.Path("/proc/cpuinfo").read_text())[1]
    memory = int(re.search(r"MemTotal:\s*(\d+)", pathlib.Path("/proc/meminfo").read_text())[1])
    return {"cpu": cpu, "cores": os.cpu_count(), "memory_gib": round(memory / 2**20),
            "system": f"{platform.freedesktop_os_release()['PRETTY_NAME']}, Linux "
                      f"{platform.release()}",
            "compilers": [first_line("g++", "--version"),
                          first_line("x86_64-w64-mingw32-g++-posix", "--version")],
            "wine": first_line("wine", "--version")}


def parse_arguments():
    parser = argparse.ArgumentParser()
    parser.add_argument("results", type=pathlib.Path)
    parser.add_argument("--quick", action="store_true",
                        help="leaves out the largest size and the growth")
    parser.add_argument("--worlds", default="native,Windows", help="of native and Windows")
    parser.add_argument("--sizes", default="S,M,L", help="of S, M and L")
    parser.add_argument("--rows", default="", help="what the workloads' names begin with")
    parser.add_argument("--stores", default=".*", help="the stores' names")
    parser.add_argument("--before", type=pathlib.Path,
                        help="sources of an older library, whose benchmarks are built")
    return parser.parse_args()


def is_whole(arguments):
    """Nothing was left out; an older library beside it does not matter."""
    everything = dict(quick=False, worlds="native,Windows", sizes="S,M,L", rows="", stores=".*")
    return everything.items() <= vars(arguments).items()


def main():
    arguments = parse_arguments()
    # Ended from outside, Wine's server is ended as well.
    signal.signal(signal.SIGTERM, lambda *_: sys.exit("ended"))
    names = arguments.worlds.split(",")
    sizes = [size for size in arguments.sizes.split(",") if not (arguments.quick and size == "L")]
    roots = [ROOT] + ([arguments.before.resolve()] if arguments.before else [])
    libraries = [measure_library(root) for root in roots] if "Windows" in names else [None, None]

    loads = [os.getloadavg()[0]]
    figures = []
    for places in zip(*(world.make_worlds(root, names) for root in roots)):
        with contextlib.ExitStack() as stack:
            for place in places:
                stack.enter_context(place.ready())
            subjects = [Subject(place, arguments, before)
                        for place, before in zip(places, (False, True))]
            figures += measure(subjects, sizes, arguments.quick)
        loads.append(os.getloadavg()[0])

    arguments.results.parent.mkdir(parents=True, exist_ok=True)
    arguments.results.write_text(json.dumps({
        "date": datetime.date.today().isoformat(),
        "whole": is_whole(arguments),
        "machine": describe_machine(),
        "load_average": [min(loads), max(loads)],
        "counts": COUNTS,
        "library": libraries[0],
        "figures": figures,
    }, indent=1) + "\n")


if __name__ == "__main__":
    main()
