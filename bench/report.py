"""Tells what run.py has measured.

    report.py RESULTS                 prints the table
    report.py RESULTS --docs FOLDER   writes the pages about performance and their chart there
"""

import argparse
import json
import pathlib
import sys

import pages
import targets

# The least that could be done, where it is not a hash map.
FLOORS = ("floor", "files", "flushed file", "open, query, close")
WORKLOADS = ("first use", "first use, CPU", "first use, page faults", "first use, process",
             "read int", "read int, classified", "read absent", "read text",
             "read text, classified", "read literal", "replace int", "replace int, classified",
             "insert", "delete", "load", "load, CPU", "load, page faults", "load nothing", "save",
             "save, CPU", "save, page faults", "save, protected", "memory held", "memory at most",
             "registry, cached", "registry, uncached", "growth, insert", "growth, read",
             "growth, load", "growth, save")
HEADER = ("workload", "size", "world", "ours", "floor", "× floor", "best peer", "× best peer",
          *targets.PEERS, "before", "× before", "target")


class Run:
    """The figures of a run by world, workload and size, and what they are checked for."""

    def __init__(self, results):
        self.results = results
        self.times = {}
        for one in results["figures"]:
            stores = self.times.setdefault((one["world"], one["workload"], one["size"]), {})
            stores[one["store"]] = one["value"]
        self.checks = targets.check_all(self.times, results["library"])

    def rows(self):
        """Cells of the table for all figures."""
        place = {key: index for index, key in enumerate(self.times)}
        order = sorted(self.times, key=lambda key: (WORKLOADS.index(key[1]), key[2] not in "SML",
                                                    place[key]))
        return [self.row(*key) for key in order]

    def row(self, world, workload, size):
        stores = self.times[world, workload, size]
        ours = stores.get("ours")
        floor = next((stores[name] for name in FLOORS if name in stores), None)
        best = best_peer(stores)
        best_time = stores.get(best)
        before = stores.get("before")
        figures = [format_figure(workload, stores.get(peer)) for peer in targets.PEERS]
        verdicts = [format_check(check) for check in self.checks
                    if (targets.WORLD, check.workload, check.size) == (world, workload, size)]
        return [workload, size, world, format_figure(workload, ours),
                format_figure(workload, floor), format_ratio(workload, ours, floor), best or "",
                format_ratio(workload, ours, best_time), *figures, format_figure(workload, before),
                format_ratio(workload, ours, before), "; ".join(verdicts)]


def best_peer(stores):
    return min((name for name in targets.PEERS if name in stores), key=stores.get, default=None)


def format_figure(workload, value):
    if value is None:
        return ""
    if workload.endswith("page faults"):
        return f"{max(value, 0):,.0f}"
    if workload.startswith("memory"):
        return f"{value:.0f} B"
    for unit, scale in (("ns", 1), ("µs", 1e3), ("ms", 1e6), ("s", 1e9)):
        if value < 999.5 * scale or unit == "s":
            return f"{value / scale:.3g} {unit}"


def format_check(check):
    return f"{'met' if check.met else 'MISSED'}: {check.value:,.3g}, at most {check.limit:,.4g} " \
           f"{check.subject}"


def format_ratio(workload, value, other):
    """Page faults have none: who needs hardly any may well be a thousand times better."""
    if None in (value, other) or workload.endswith("page faults"):
        return ""
    return f"{value / other:.2f}"


def shown_columns(rows):
    """A column without a figure is left out."""
    kept = [index for index, name in enumerate(HEADER) if any(row[index] for row in rows)]
    return [[row[index] for index in kept] for row in (list(HEADER), *rows)]


def print_table(run):
    lines = shown_columns(run.rows())
    widths = [max(len(line[column]) for line in lines) for column in range(len(lines[0]))]
    for line in lines:
        print("  ".join(cell.ljust(width) for cell, width in zip(line, widths)).rstrip())
    missed = [check for check in run.checks if not check.met]
    print(f"\n{len(run.checks) - len(missed)} of {len(run.checks)} targets met; missed:")
    for check in missed:
        print(f"  {check.workload:24} {check.size:26} {format_check(check)}")
    low, high = run.results["load_average"]
    print(f"load of the machine meanwhile: {low:.1f} to {high:.1f}")


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("results", type=pathlib.Path)
    parser.add_argument("--docs", type=pathlib.Path)
    arguments = parser.parse_args()
    run = Run(json.loads(arguments.results.read_text()))
    if arguments.docs is None:
        print_table(run)
    elif not run.results["whole"]:
        sys.exit("the pages are made of whole runs")
    else:
        pages.write(run, shown_columns(run.rows()), best_peer, format_figure, arguments.docs)


if __name__ == "__main__":
    main()
