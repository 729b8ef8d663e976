"""What the library must reach: limits of ratios within one run, in the Windows world."""

import dataclasses

SIZES = ("S", "M", "L")
WORLD = "Windows"
PEERS = ("RapidJSON", "nlohmann", "PropertyTree", "SimpleIni", "toml++", "QSettings", "GKeyFile")
SYSTEM_LIBRARIES = {"advapi32.dll", "kernel32.dll", "msvcrt.dll", "ole32.dll", "shell32.dll",
                    "user32.dll"}

# Workload, what the library is compared with, and the limit for each size.
RATIOS = (
    ("first use", "nlohmann", {"S": 0.6}),
    ("first use, CPU", "nlohmann", {"S": 1.0}),
    ("read int", "floor", {"S": 1.1, "M": 0.8, "L": 0.75}),
    ("read int", "best peer", {"S": 1.0, "M": 1.0, "L": 1.0}),
    ("read int, classified", "floor", {"M": 0.8, "L": 0.75}),
    ("read int, classified", "best peer", {"M": 1.0, "L": 1.0}),
    ("read absent", "floor", {"S": 1.9, "M": 0.8, "L": 0.5}),
    ("read absent", "best peer", {"S": 1.0, "M": 1.0, "L": 1.0}),
    ("read text", "floor", {"S": 1.3, "M": 1.0, "L": 0.9}),
    ("read literal", "floor", {"S": 2.5, "M": 1.0}),
    ("replace int", "floor", {"S": 1.4, "M": 0.9}),
    ("insert", "floor", {"S": 1.1, "M": 1.1}),
    ("delete", "floor", {"S": 3.0, "M": 1.5}),
    ("load", "nlohmann", {"M": 0.45, "L": 0.45}),
    ("load", "RapidJSON", {"M": 2.0, "L": 2.0}),
    ("save", "files", {"S": 3.0}),
    ("save", "RapidJSON", {"M": 1.3, "L": 1.3}),
    ("save", "best peer but RapidJSON", {"M": 1.0, "L": 1.0}),
    ("save, protected", "flushed file", {"S": 2.0}),
    ("memory at most", "nlohmann", {"L": 0.75}),
    ("registry, uncached", "open, query, close", {"S": 1.1}),
)
BYTES_HELD = 90
LIBRARY_BYTES = 400 * 1024
GROWTH = 1.3
# Preferences in a small and in a large store of each shape.
GROWTH_SHAPES = {
    "plain": (10_000, 3_000_000),
    "one category": (10_000, 1_000_000),
    "a category each": (10_000, 1_000_000),
    "long names": (10_000, 100_000),
}
# Of what has no files, growth is that beyond the floor's: caches grow slower for everyone.
GROWTH_OF_FLOOR = {"growth, insert": True, "growth, read": True,
                   "growth, load": False, "growth, save": False}


@dataclasses.dataclass
class Check:
    """A figure, the most it may be, and what both are about."""
    workload: str
    size: str
    subject: str
    value: float
    limit: float

    @property
    def met(self):
        return self.value <= self.limit

    @property
    def key(self):
        return self.workload, self.size, self.subject


def check_all(times, library):
    """The checks of a run; `times` maps (world, workload, size) to the figure of each store."""
    ours = {key[1:]: stores for key, stores in times.items()
            if key[0] == WORLD and "ours" in stores}
    checks = [*check_ratios(ours), *check_memory(ours), *check_growth(ours)]
    return checks + list(check_library(library) if library else ())


def reference_figure(stores, reference):
    """None when it was not measured."""
    if not reference.startswith("best peer"):
        return stores.get(reference)
    left_out = reference.removeprefix("best peer but ")
    return min((stores[name] for name in PEERS if name in stores and name != left_out),
               default=None)


def check_ratios(times):
    for workload, reference, limits in RATIOS:
        for size, limit in limits.items():
            stores = times.get((workload, size), {})
            other = reference_figure(stores, reference)
            if other is not None:
                yield Check(workload, size, f"× {reference}", stores["ours"] / other, limit)


def check_memory(times):
    if ("memory held", "L") in times:
        yield Check("memory held", "L", "bytes a preference", times["memory held", "L"]["ours"],
                    BYTES_HELD)


def check_growth(times):
    for workload, beyond_floor in GROWTH_OF_FLOOR.items():
        for shape, counts in GROWTH_SHAPES.items():
            sizes = [f"{shape}, {count:,}" for count in counts]
            small, large = (times.get((workload, size), {}) for size in sizes)
            if "ours" not in small or beyond_floor and "floor" not in small:
                continue
            growth = large["ours"] / small["ours"]
            if beyond_floor:
                growth /= large["floor"] / small["floor"]
            subject = "× growth of floor" if beyond_floor else "× the small"
            yield Check(workload, sizes[1], subject, growth, GROWTH)


def check_library(library):
    imports = {name.lower() for name in library["imports"]}
    yield Check("the DLL", "", "bytes, stripped", library["bytes"], LIBRARY_BYTES)
    yield Check("the DLL", "", "imports that are not the system's",
                len(imports - SYSTEM_LIBRARIES), 0)
    yield Check("the DLL", "", "imports of shell32 and ole32",
                len(imports & {"shell32.dll", "ole32.dll"}), 0)
