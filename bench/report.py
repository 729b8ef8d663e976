"""Tells what run.py has measured.

    report.py RESULTS                 prints the table
    report.py RESULTS --docs FOLDER   writes FOLDER/performance.md and the chart that it shows
"""

import argparse
import json
import pathlib
import sys

import targets

PEERS = ("RapidJSON", "nlohmann", "PropertyTree", "SimpleIni", "toml++", "QSettings", "GKeyFile")
# The least that could be done, where it is not a hash map.
FLOORS = ("floor", "files", "same calls", "empty process")
WORKLOADS = ("read int", "read int, classified", "read text", "read text, classified",
             "read absent", "read literal", "replace int", "replace int, classified", "load",
             "save", "save, protected", "load nothing", "memory held", "memory at most",
             "first use, process", "first use, in main", "registry, cached", "registry, uncached")
CHART_WORKLOADS = ("read int", "read text", "replace int", "load", "save")
CHART_SIZE = "M"

PAGE = """# Performance

![Time of each workload in each library](performance.svg)

{size} preferences; shorter is better. The figures are those of the table below.

| | |
| --- | --- |
| date | {date} |
| command | `{command}` |
| machine | {cores} cores ({cpu}), {memory_gib} GiB; load meanwhile {load[0]:.1f} to {load[1]:.1f} |
| system | {system}; {wine} |
| compilers | {compilers} |

## How to read the table

Sizes: S is the {S} classified preferences, M {M:,} and L {L:,} of which most are a host's own.
Worlds: *Windows* is the DLL under Wine, called as a host calls it; *native* is the same sources
built for Linux, with a stand-in for the calls of Windows. Each figure is the median of interleaved
repetitions: CPU time of reads and replacements, elapsed time of all else.

The **floor** of reads is a `std::unordered_map` over names that were folded and joined beforehand,
on both sides. That of loading and saving is reading and writing the library's two files as plain
bytes, that of `LoadPreferences` without files two failed opens, that of an uncached read from the
registry the calls that it has to make, that of a process one that loads an empty library. RapidJSON
parses in place and writes prettily the library's own two files; every other library has one file of
its own. Memory is what a process that only loads has resident more than before.

{table}

## Targets

{checks}

The DLL has {bytes:,} bytes when stripped and imports {imports}.
"""


class Run:
    """The figures of a run by world, workload and size, and what they are checked for."""

    def __init__(self, results):
        self.results = results
        self.times = {}
        for one in results["figures"]:
            stores = self.times.setdefault((one["world"], one["workload"], one["size"]), {})
            stores[one["store"]] = one["value"]
        for (world, workload, size), stores in self.times.items():
            if workload == "registry, cached":
                stores["JSON store"] = self.times[world, "read int", size]["ours"]
        self.checks = targets.check_all(self.times, results["counts"], results["library"])

    def rows(self):
        order = sorted(self.times, key=lambda key: (WORKLOADS.index(key[1]),
                                                    targets.SIZES.index(key[2]), key[0]))
        return [(key, self.times[key]) for key in order]

    def checks_of(self, world, workload, size):
        return [check for check in self.checks
                if (check.world, check.workload, check.size) == (world, workload, size)]


def format_figure(workload, value):
    if value is None:
        return ""
    if workload.startswith("memory"):
        return f"{value:.0f} B"
    for unit, scale in (("ns", 1), ("µs", 1e3), ("ms", 1e6), ("s", 1e9)):
        if value < 1000 * scale or unit == "s":
            return f"{value / scale:.3g} {unit}" if value < 100 * scale else \
                f"{value / scale:.0f} {unit}"


def format_check(check):
    verdict = "met" if check.met else "missed"
    return f"{check.value:,.4g} {check.subject} (at most {check.limit:,.4g}): {verdict}"


def format_ratio(value, other):
    return "" if other is None else f"{value / other:.2f}"


def make_table(run):
    """A header and rows of cells."""
    header = ["workload", "size", "world", "ours", "floor", "best peer", "× floor", "× best peer",
              *PEERS, "target"]
    rows = []
    for (world, workload, size), stores in run.rows():
        ours = stores["ours"]
        floor = next((stores[name] for name in FLOORS if name in stores), None)
        best = min((name for name in PEERS if name in stores), key=stores.get, default=None)
        checks = run.checks_of(world, workload, size)
        rows.append([workload, size, world,
                     *(format_figure(workload, value) for value in (ours, floor)),
                     best or "", format_ratio(ours, floor), format_ratio(ours, stores.get(best)),
                     *(format_figure(workload, stores.get(name)) for name in PEERS),
                     "; ".join(f"{'met' if check.met else 'MISSED'} (≤ {check.limit:,.4g} "
                               f"{check.subject})" for check in checks)])
    return header, rows


def print_table(run):
    header, rows = make_table(run)
    widths = [max(len(row[column]) for row in (header, *rows)) for column in range(len(header))]
    for row in (header, *rows):
        print("  ".join(cell.ljust(width) for cell, width in zip(row, widths)).rstrip())
    print()
    missed = [check for check in run.checks if not check.met]
    print(f"{len(run.checks) - len(missed)} of {len(run.checks)} targets met; missed:")
    for check in missed:
        print(f"  {check.world:8} {check.workload:24} {check.size:7} {format_check(check)}")
    low, high = run.results["load_average"]
    print(f"load of the machine meanwhile: {low:.1f} to {high:.1f}")


def to_markdown(header, rows):
    lines = [header, ["---"] * len(header), *rows]
    return "\n".join("| " + " | ".join(line) + " |" for line in lines)


def write_page(run, folder):
    results = run.results
    machine = dict(results["machine"], compilers="; ".join(results["machine"]["compilers"]))
    checks = [[check.workload, check.size, check.world, f"{check.value:,.4g}",
               f"{check.limit:,.4g}", check.subject, "met" if check.met else "**missed**"]
              for check in run.checks]
    page = PAGE.format(
        table=to_markdown(*make_table(run)),
        checks=to_markdown(["workload", "size", "world", "is", "at most", "", ""], checks),
        size=f"{results['counts'][CHART_SIZE]:,}", date=results["date"],
        command=results["command"], load=results["load_average"],
        bytes=results["library"]["bytes"], imports=", ".join(results["library"]["imports"]),
        **machine, **results["counts"])
    (folder / "performance.md").write_text(page)


def write_chart(run, path):
    import matplotlib  # noqa: only the chart needs it

    matplotlib.use("svg")
    matplotlib.rcParams.update({"svg.fonttype": "none", "svg.hashsalt": "performance",
                                "font.family": "sans-serif", "font.size": 8})
    from matplotlib import pyplot

    worlds = sorted({world for world, _, _ in run.times})
    figure, grid = pyplot.subplots(len(CHART_WORKLOADS), len(worlds), layout="constrained",
                                   figsize=(4.5 * len(worlds), 1.6 * len(CHART_WORKLOADS)))
    for row, workload in zip(grid, CHART_WORKLOADS):
        for axes, world in zip(row, worlds):
            draw_bars(axes, f"{workload}, {CHART_SIZE}, {world}", workload,
                      run.times[world, workload, CHART_SIZE])
    figure.savefig(path, metadata={"Date": None})


def draw_bars(axes, title, workload, stores):
    names = ["ours", *(name for name in (*FLOORS, *PEERS) if name in stores)]
    values = [stores[name] for name in names]
    colors = ["#1f6feb" if name == "ours" else "#9aa4b0" if name in FLOORS else "#d0d7de"
              for name in names]
    bars = axes.barh(names, values, color=colors)
    axes.bar_label(bars, [format_figure(workload, value) for value in values], padding=2)
    axes.set_xlim(0, max(values) * 1.3)
    axes.set_title(title, loc="left", fontweight="bold")
    axes.invert_yaxis()
    axes.xaxis.set_visible(False)
    axes.spines[["top", "right", "bottom"]].set_visible(False)


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("results", type=pathlib.Path)
    parser.add_argument("--docs", type=pathlib.Path)
    arguments = parser.parse_args()
    run = Run(json.loads(arguments.results.read_text()))
    if arguments.docs:
        write_chart(run, arguments.docs / "performance.svg")
        write_page(run, arguments.docs)
    else:
        print_table(run)


if __name__ == "__main__":
    sys.exit(main())
