"""What the library must reach: limits of ratios within one run."""

import dataclasses

SIZES = ("S", "M", "L")
SYSTEM_LIBRARIES = {"advapi32.dll", "kernel32.dll", "msvcrt.dll", "ole32.dll", "shell32.dll",
                    "user32.dll"}

# Workload, world (None: both), what the library is compared with, and the limit for each size.
RATIOS = (
    ("read int", None, "floor", {"S": 0.75, "M": 0.7, "L": 0.6}),
    ("read int", None, "nlohmann", {"S": 0.4, "M": 0.4, "L": 0.4}),
    ("read int, classified", None, "floor", {"M": 0.7, "L": 0.6}),
    ("replace int", None, "floor", {"S": 0.75, "M": 0.7, "L": 0.6}),
    ("replace int", None, "nlohmann", {"S": 0.4, "M": 0.4, "L": 0.4}),
    ("replace int, classified", None, "floor", {"M": 0.7, "L": 0.6}),
    ("read text", None, "floor", {"S": 1.0, "M": 0.9, "L": 0.75}),
    ("read text, classified", None, "floor", {"M": 0.9, "L": 0.75}),
    ("read absent", None, "floor", {"S": 0.8, "M": 0.8, "L": 0.8}),
    ("read literal", "native", "floor", {"S": 0.95, "M": 0.95, "L": 0.95}),
    ("read literal", "Windows", "floor", {"S": 2.0, "M": 1.3}),
    ("load", None, "files", {"S": 2.7}),
    ("load", None, "RapidJSON", {"M": 1.2, "L": 1.2}),
    ("save", None, "nlohmann", {"S": 2.5}),
    ("save", "native", "RapidJSON", {"M": 1.0, "L": 0.8}),
    ("save", "Windows", "RapidJSON", {"M": 0.9, "L": 0.6}),
    ("memory at most", None, "nlohmann", {"L": 0.75}),
    ("first use, process", "Windows", "empty process", {"S": 1.15}),
    ("first use, in main", None, "nlohmann", {"S": 0.6}),
    ("registry, cached", "Windows", "JSON store", {"S": 1.2, "M": 1.2}),
    ("registry, uncached", "Windows", "same calls", {"S": 1.05}),
)
BYTES_HELD = 90
NANOSECONDS_TO_LOAD_NOTHING = 30_000
GROWTH_OF_READS = 1.3
GROWTH_OF_FILES = 1.2
LIBRARY_BYTES = 400 * 1024


@dataclasses.dataclass
class Check:
    """A figure, the most it may be, and what both are about."""
    workload: str
    size: str
    world: str
    subject: str
    value: float
    limit: float

    @property
    def met(self):
        return self.value <= self.limit


def check_all(times, counts, library):
    """The checks of a run; `times` maps (world, workload, size) to the figure of each store."""
    return [*check_ratios(times), *check_amounts(times), *check_growth(times, counts),
            *check_library(library)]


def check_ratios(times):
    for workload, only_world, reference, limits in RATIOS:
        for (world, measured, size), stores in times.items():
            if measured == workload and size in limits and only_world in (None, world):
                yield Check(workload, size, world, f"× {reference}",
                            stores["ours"] / stores[reference], limits[size])


def check_amounts(times):
    for (world, workload, size), stores in times.items():
        if workload == "load nothing":
            yield Check(workload, size, world, "ns beyond two failed opens",
                        stores["ours"] - stores["files"], NANOSECONDS_TO_LOAD_NOTHING)
        if workload == "memory held" and size == "L":
            yield Check(workload, size, world, "bytes", stores["ours"], BYTES_HELD)


def check_growth(times, counts):
    for world in sorted({key[0] for key in times}):
        if (world, "load", "L") not in times:
            continue
        for workload in ("read int", "read text", "replace int"):
            medium, large = times[world, workload, "M"], times[world, workload, "L"]
            yield Check(workload, "M to L", world, "× growth of floor",
                        (large["ours"] / medium["ours"]) / (large["floor"] / medium["floor"]),
                        GROWTH_OF_READS)
        for workload in ("load", "save"):
            medium, large = times[world, workload, "M"], times[world, workload, "L"]
            yield Check(workload, "M to L", world, "× growth of the count",
                        (large["ours"] / medium["ours"]) / (counts["L"] / counts["M"]),
                        GROWTH_OF_FILES)


def check_library(library):
    imports = {name.lower() for name in library["imports"]}
    yield Check("the DLL", "", "Windows", "bytes, stripped", library["bytes"], LIBRARY_BYTES)
    yield Check("the DLL", "", "Windows", "imports that are not the system's",
                len(imports - SYSTEM_LIBRARIES), 0)
    yield Check("the DLL", "", "Windows", "imports of shell32 and ole32",
                len(imports & {"shell32.dll", "ole32.dll"}), 0)
