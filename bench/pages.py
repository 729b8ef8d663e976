"""The pages about performance: a short one with a chart, and one with all figures."""

import sys

import reasons
import targets

# What a user notices, and the figure that shows it.
USER_ROWS = (
    ("start: `SetPaths` and 50 reads of {S:,} preferences", "first use", "S", None),
    ("read an int", "read int", "M", "floor"),
    ("read a text", "read text", "M", "floor"),
    ("read what is not there", "read absent", "M", "floor"),
    ("replace an int", "replace int", "M", "floor"),
    ("add a preference", "insert", "M", "floor"),
    ("delete a preference", "delete", "M", "floor"),
    ("load {M:,} preferences", "load", "M", "files"),
    ("load {L:,} preferences", "load", "L", "files"),
    ("save {M:,} preferences after a change", "save", "M", "files"),
    ("save {S:,} so that nothing can be lost", "save, protected", "S", "flushed file"),
    ("memory for each of {L:,} preferences", "memory held", "L", None),
)
CHART = (("read int", "M"), ("read text", "M"), ("replace int", "M"), ("load", "M"), ("save", "M"),
         ("memory held", "L"))

USER_PAGE = """# Performance

![Time and memory of the library and of its alternatives](performance.svg)

Shorter is better. Unless a row says otherwise, chart and table show Windows programs with {M:,}
preferences, and with {L:,} for the memory.

{table}

Five libraries that a program could use instead hold the same preferences, and each row shows the best
of them. The **floor** is the least work that could be done:

- for reads and changes, a `std::unordered_map` whose names were prepared beforehand;
- for loads and saves, the same files as plain bytes;
- for the save that loses nothing, one file that is written, flushed and moved to its place.

A dash means that there is nothing to compare with.

Measured on {date} under {wine}, on {cores} cores ({cpu}). `./dev bench --docs` measures again and
writes this page. [Performance in detail](performance-details.md) has all figures, for those who change
the library.
"""

DETAILS_PAGE = """# Performance in detail

For those who change the library: every figure, what the library must reach, and why it does not where
it does not. [Performance](performance.md) is the short page.

| | |
| --- | --- |
| date | {date} |
| command | `./dev bench --docs` |
| machine | {cores} cores ({cpu}), {memory_gib} GiB; load meanwhile {load[0]:.1f} to {load[1]:.1f} |
| system | {system}; {wine} |
| compilers | {compilers} |

## What is measured

There are three sizes. S is the {S} known preferences. M is {M:,} and L is {L:,} preferences, most of
which are a host's own. There are two worlds. *Windows* is the DLL under Wine, called as a host calls
it. *Native* is the same sources built for Linux, with a replacement for the calls of Windows. Targets
are for Windows; native figures are for analysis. Times are elapsed times unless they are called CPU. A
figure is the lower decile of short, interleaved repetitions.

- The **floor** of reads and changes is a `std::unordered_map` of the standard library. Its names are
  16-bit units that were folded and joined beforehand, also for the lookup, and `memcmp` compares them.
  The code and the flags are the same in both worlds.
- New preferences are added to a store that was just loaded, and then deleted from it.
- Loads and saves run in a process for each store. RapidJSON parses the library's own two files in place
  and writes them with indents; every other library has one file of its own. The floor reads and writes
  the two files as plain bytes. Before each save one known preference gets another value. The floor of a
  protected save writes the changed file beside its place, flushes it and moves it there.
- CPU time and page faults of L are those of the process, less those of a process that does everything
  except the loads or saves. For the first use, those of an empty process with the same imports are
  taken off. Wine's server runs all the time and is not counted.
- An uncached read from the registry is compared with opening the category's key, querying the value
  and closing the key.
- Memory is the growth of the resident memory of a process that only loads, for each preference.
- Growth is the time for a preference in a large store, relative to a small store of the same shape; for
  inserts and reads, relative to the floor's growth.

## Targets

{checks}

The DLL has {bytes:,} bytes when stripped and imports {imports}.

## All figures

{figures}
"""


def to_markdown(header, rows):
    lines = [header, ["---"] * len(header), *rows]
    return "\n".join("| " + " | ".join(line) + " |" for line in lines)


def write(run, figures, best_peer, format_figure, folder):
    write_chart(run, format_figure, folder / "performance.svg")
    (folder / "performance.md").write_text(make_user_page(run, best_peer, format_figure))
    (folder / "performance-details.md").write_text(make_details_page(run, figures))
    unknown = [check.key for check in run.checks
               if not check.met and check.key not in reasons.MISSED]
    if unknown:
        sys.exit("The pages are written, but bench/reasons.py has no reason for:\n" +
                 "\n".join(map(str, unknown)))


def make_user_page(run, best_peer, format_figure):
    counts = run.results["counts"]
    rows = []
    for text, workload, size, floor in USER_ROWS:
        stores = run.times[targets.WORLD, workload, size]
        best = best_peer(stores)
        peer = f"{format_figure(workload, stores[best])} ({best})" if best else "–"
        rows.append([text.format(**counts), format_figure(workload, stores["ours"]), peer,
                     format_figure(workload, stores[floor]) if floor else "–"])
    machine = run.results["machine"]
    return USER_PAGE.format(table=to_markdown(["", "ours", "best other library", "floor"], rows),
                            date=run.results["date"], **machine, **counts)


def make_details_page(run, figures):
    results = run.results
    machine = dict(results["machine"], compilers="; ".join(results["machine"]["compilers"]))
    checks = [[check.workload, check.size, f"{check.value:,.3g}",
               f"{check.limit:,.4g} {check.subject}", "met" if check.met else "**missed**",
               "" if check.met else reasons.MISSED.get(check.key, "not known yet")]
              for check in run.checks]
    return DETAILS_PAGE.format(
        checks=to_markdown(["workload", "size", "is", "at most", "", "reason"], checks),
        figures=to_markdown(figures[0], figures[1:]), date=results["date"],
        load=results["load_average"], bytes=results["library"]["bytes"],
        imports=", ".join(results["library"]["imports"]), **machine, **results["counts"])


def write_chart(run, format_figure, path):
    import matplotlib  # noqa: only the chart needs it

    matplotlib.use("svg")
    matplotlib.rcParams.update({"svg.fonttype": "none", "svg.hashsalt": "performance",
                                "font.family": "sans-serif", "font.size": 8})
    from matplotlib import pyplot

    figure, grid = pyplot.subplots(2, 3, layout="constrained", figsize=(9, 3.6))
    for axes, (workload, size) in zip(grid.flat, CHART):
        draw_bars(axes, workload, run.times[targets.WORLD, workload, size], format_figure)
    figure.savefig(path, metadata={"Date": None})


def draw_bars(axes, workload, stores, format_figure):
    names = ["ours", *(name for name in ("floor", "files", *targets.PEERS) if name in stores)]
    values = [stores[name] for name in names]
    colors = ["#1f6feb" if name == "ours" else "#d0d7de" if name in targets.PEERS else "#9aa4b0"
              for name in names]
    bars = axes.barh(names, values, color=colors)
    axes.bar_label(bars, [format_figure(workload, value) for value in values], padding=2)
    axes.set_xlim(0, max(values) * 1.35)
    axes.set_title(workload, loc="left", fontweight="bold")
    axes.invert_yaxis()
    axes.xaxis.set_visible(False)
    axes.spines[["top", "right", "bottom"]].set_visible(False)
