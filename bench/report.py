#!/usr/bin/env python3

# SPDX-FileCopyrightText: 2026 The libvelk authors
# SPDX-License-Identifier: MIT

"""report.py FIGURES COUNTS FOLDER - compares the measurements with their goals.

FIGURES is the JSON of velk_bench, COUNTS the output of tests/cost/cost_test.sh. Prints the table of
goals and writes performance.md (the tables), performance.json and performance.svg into FOLDER.
"""
import json
import re
import sys
from pathlib import Path

# Description, goal and benchmark of each measurement. All are ratios: ours / other.
GOALS = [
    ("get of a static address, against open, read, search, close", 1.15, "get/address"),
    ("get of a static mask, against the same", 1.15, "get/netmask"),
    ("get of a static gateway, against the same", 1.15, "get/gateway"),
    ("unknown id, against that floor", 0.02, "get/unknown_id"),
    ("get, against Augeas with its tree loaded", 1.0, "peer/get/loaded_tree"),
    ("get, against Augeas from cold", 1 / 2500, "peer/get/cold"),
    ("set with one edit, against copy and its two shell lines", 1.04, "set/address"),
    ("DNS set, against lock, log line and write", 1.10, "set/dns"),
    ("set of the link speed, against its shell line", 1.04, "set/link_speed"),
    ("wireless set, against the same datagrams and semaphore", 1.10, "wireless/set"),
    ("get of the method beside two getters and two setters, against the same by hand", 1.15, "busy/get_method"),
    ("set, against Augeas with an open handle", 1 / 2.5, "peer/set/open_handle"),
    ("set, against Augeas from cold", 1 / 5, "peer/set/cold"),
    ("get at the end of 1 MB, against cutting lines by hand", 1.3, "growth/get/1MB"),
    ("get at the end of 10 MB, against cutting lines by hand", 1.3, "growth/get/10MB"),
    ("get at the end of 10 MB, against grep -F", 1.0, "growth/grep/10MB"),
    ("set in 1 MB, against copy and its two shell lines", 1.05, "growth/set/1MB"),
    ("set in 10 MB, against copy and its two shell lines", 1.05, "growth/set/10MB"),
    ("dlopen and first get, against a library of std::string alone", 1.3, "loading"),
    ("libvelk-c.so: dlopen and first get, against bare C with this get alone", 1.3, "loading/c"),
    ("velkctl get with the library inside, against ifquery", 1.0, "process/static_get_and_ifquery"),
    ("velkctl get with libc inside, against an empty C program", 1.1, "process/pie_get_and_empty_c_program"),
    ("velkctl get, against a bare program with the same call", 1.05, "process/get_and_bare_program"),
    ("velkctl set with its journal entry, against one without", 1.3, "process/set_and_set_without_journal"),
    ("set from a program of 256 MB, against one from a small one", 1.1, "set/from_large_host"),
]
# Counts of the cost test that are goals.
COUNTED_GOALS = [
    *(f"get {label}: {count}" for label in ("address", "netmask", "gateway")
      for count in ("system calls", "instructions", "heap requests")),
    "get unknown id: system calls",
    "set address: started programs",
    "library: bytes",
]
PEAK_GOAL_KB = 128
PEAKS = [f"growth/peak/{call}/{size}" for call in ("get", "set") for size in ("10MB", "100MB")]


def runs_of(path):
    return json.loads(Path(path).read_text())["benchmarks"]


def read_left_out(path):
    """Return a dictionary from benchmark name to the reason why it did not run."""
    return {run["name"]: run["error_message"] for run in runs_of(path) if run.get("error_occurred")}


def read_figures(path):
    """Return a dictionary from benchmark name to counters."""
    figures = {}
    for run in runs_of(path):
        if run.get("error_occurred"):
            continue
        name = run["name"].split("/iterations:")[0]
        figures[name] = {key: run[key] for key in ("ratio", "ours_ns", "other_ns", "more_kb") if key in run}
    return figures


def read_counts(path):
    """Return a dictionary from label to (count, limit)."""
    rows = re.findall(r"^(\S.*?): +(.*?) +(\d+) of (\d+)", Path(path).read_text(), re.MULTILINE)
    return {f"{call}: {label}": (int(count), int(limit)) for call, label, count, limit in rows}


def ratio_text(ratio):
    return f"1/{1 / ratio:.0f}" if ratio < 0.005 else f"{ratio:.3f}" if ratio < 0.1 else f"{ratio:.2f}"


def goal_rows(figures, counts):
    for label, goal, name in GOALS:
        ratio = figures[name]["ratio"]
        yield label, ratio_text(goal), ratio_text(ratio), ratio <= goal
    for label in COUNTED_GOALS:
        count, limit = counts[label]
        yield label, f"{limit}", f"{count}", count <= limit
    for name in PEAKS:
        more = figures[name]["more_kb"]
        call, size = name.split("/")[2:]
        label = f"peak memory of a {call}, {size} over a usual file, KB"
        yield label, f"{PEAK_GOAL_KB}", f"{more:.0f}", more <= PEAK_GOAL_KB


def time_text(nanoseconds):
    for unit, size in (("ms", 1e6), ("us", 1e3)):
        if nanoseconds >= size:
            return f"{nanoseconds / size:.3g} {unit}"
    return f"{nanoseconds:.0f} ns"


def growth_rows(figures):
    """Yield the time per MB in files of 1 MB and more."""
    for size, megabytes in (("1MB", 1), ("10MB", 10), ("100MB", 100)):
        get, grep, edit = (figures[f"growth/{label}/{size}"] for label in ("get", "grep", "set"))
        nanoseconds = (get["ours_ns"], get["other_ns"], grep["other_ns"], edit["ours_ns"], edit["other_ns"])
        yield size, *(time_text(each / megabytes) for each in nanoseconds)


def tables(figures, counts, left_out):
    lines = ["| measurement | goal, at most | measured | |", "|---|---|---|---|"]
    for label, goal, measured, is_met in goal_rows(figures, counts):
        lines.append(f"| {label} | {goal} | {measured} | {'met' if is_met else 'missed'} |")
    lines += ["", "| benchmark | ours | other | ratio |", "|---|---|---|---|"]
    for name, figure in figures.items():
        if "ratio" in figure:
            lines.append(
                f"| {name} | {time_text(figure['ours_ns'])} | {time_text(figure['other_ns'])} | {ratio_text(figure['ratio'])} |"
            )
    lines += [f"| {name} | left out: {reason} | | |" for name, reason in left_out.items()]
    lines += ["", "| per MB, in a file of | get | cut by hand | `grep -F` | set | copy and shell lines |",
              "|---|---|---|---|---|---|"]
    lines += ["| " + " | ".join(row) + " |" for row in growth_rows(figures)]
    return "\n".join(lines) + "\n"


def plot(figures):
    """Return an SVG bar chart of the ratios, with a line at 1."""
    shown = {
        name: figure["ratio"]
        for name, figure in figures.items()
        if "ratio" in figure and re.match(r"(get|set|busy|growth/get|growth/set|wireless|loading|lock)(/|$)", name)
    }
    left, row, scale, longest = 190, 18, 110, 4.0
    width, height = left + scale * longest + 60, row * len(shown) + 40
    parts = [
        f'<svg xmlns="http://www.w3.org/2000/svg" width="{width:.0f}" height="{height}" font-family="sans-serif" font-size="12">',
        '<rect width="100%" height="100%" fill="white"/>',
        f'<text x="{left}" y="16">time relative to minimal hand-written code (1 = equal)</text>',
    ]
    for index, (name, ratio) in enumerate(shown.items()):
        y = 26 + index * row
        bar = scale * min(ratio, longest)
        parts.append(f'<text x="{left - 8}" y="{y + 12}" text-anchor="end">{name}</text>')
        parts.append(f'<rect x="{left}" y="{y + 2}" width="{bar:.1f}" height="{row - 5}" fill="#4a7fb5"/>')
        parts.append(f'<text x="{left + bar + 5:.1f}" y="{y + 12}">{ratio_text(ratio)}</text>')
    floor = left + scale
    parts.append(f'<line x1="{floor}" y1="22" x2="{floor}" y2="{height - 12}" stroke="#c0392b" stroke-dasharray="4 3"/>')
    return "\n".join(parts) + "\n</svg>\n"


def main(figures_path, counts_path, folder):
    figures = read_figures(figures_path)
    left_out = read_left_out(figures_path)
    counts = read_counts(counts_path)
    folder = Path(folder)
    for label, goal, measured, is_met in goal_rows(figures, counts):
        print(f"{label:62} {goal:>8} {measured:>8}  {'met' if is_met else 'MISSED'}")
    for name, reason in left_out.items():
        print(f"{name:62} left out: {reason}")
    summary = {"ratios": figures, "counts": {label: count for label, (count, _) in counts.items()}}
    (folder / "performance.md").write_text(tables(figures, counts, left_out))
    (folder / "performance.json").write_text(json.dumps(summary, indent=1) + "\n")
    (folder / "performance.svg").write_text(plot(figures))


if __name__ == "__main__":
    if len(sys.argv) != 4:
        sys.exit(__doc__)
    main(*sys.argv[1:])
