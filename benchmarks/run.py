#!/usr/bin/env python3
"""Runs the benchmarks and prints one table: what is measured, beside which peer, goal and verdict.

    benchmarks/run.py BUILD_DIRECTORY [PROGRAM...]

Each row of GOALS compares two benchmarks of one program, measured in the same run, or takes a
number that a program reports of itself. Medians of several repetitions count. The table is also
written as JSON to BUILD_DIRECTORY/benchmarks.json. The exit code is 1 when a goal is missed or a
row finds nothing to measure, and 2 when a program is not known or has no row.
docs/performance.md explains the rows.
"""

import datetime
import json
import os
import platform
import re
import subprocess
import sys
import tempfile
from pathlib import Path

REPETITIONS = 5
LONGEST_RUN = 1800  # seconds, for one program

# program, what is measured, peer, benchmark, the peer's benchmark (or None), form, limit.
#   "faster": peer / ours is at least the limit      "times": ours / peer is at most the limit
#   "ratio": the same, compared by the program       "ms", "ns": ours takes at most so long
#   a counter's name: ours reports at most that
GOALS = [
    ("login", "a warm login", "its bare remote calls", "Login", None, "ratio", 1.10),
    ("login", "a cold login, whole process", "the same calls by stubs", "ColdLogin", None,
     "ratio", 1.20),
    ("login", "GetSystemParameter", "the stub call", "Parameter", None, "ratio", 1.05),
    ("login", "GL_ClientKeepAlive", "the stub call", "KeepAlive", None, "ratio", 1.05),
    ("grants", "a question on 10,000 grants", "a scan of the grants", "AskIndex/10000",
     "AskScan/10000", "faster", 50),
    ("grants", "a question on 100,000 grants", "the same on 10,000", "AskIndex/100000",
     "AskIndex/10000", "times", 2),
    ("zone_table", "the zone table of 10,000 records", None, "ZoneTable/10000", None, "ms", 10),
    ("lists", "adding 100,000 records", "std::map", "Add<TDCList>", "Add<Map>", "times", 2),
    ("lists", "finding 100,000 records", "std::map", "Find<TDCList>", "Find<Map>", "times", 2),
    ("lists", "listing 100,000 names", "std::map", "ListNames<TDCList>", "ListNames<Map>",
     "times", 2),
    ("properties", "loading 10,000 entries", "the bare parse", "LoadProperties", "LoadBareParse",
     "times", 1.3),
    ("text", "decoding 10 MB", "decoding 1 MB", "Growth/decode", None, "ratio", 12),
    ("text", "encoding 10 MB", "encoding 1 MB", "Growth/encode", None, "ratio", 12),
    ("text", "100,000 archive records", "formatted extraction", "Archive", None, "ratio", 1.0),
    ("log", "a line without a sink", "a load and a branch", "DisabledLine/0", "LoadAndBranch",
     "ns", 2),
    ("log", "a line below the level", "a load and a branch", "DisabledLine/1", "LoadAndBranch",
     "ns", 2),
    ("log", "a scope and a line", "a load and a branch", "DisabledScopeAndLine/1",
     "LoadAndBranch", "ns", 2),
    ("log", "allocations of such lines", None, "DisabledScopeAndLine/1", None, "allocations", 0),
    ("log", "arguments evaluated for them", None, "DisabledScopeAndLine/1", None, "evaluated", 0),
    ("startup", "vqclient --version", "an empty program, same libraries",
     "Version/same_libraries", None, "ratio", 1.15),
    ("startup", "vqclient --version", "the same without this library", "Version/without_ours",
     None, "ratio", 1.3),
]
SECONDS = {"ns": 1e-9, "us": 1e-6, "ms": 1e-3, "s": 1.0}


def run(program):
    """Median results by benchmark name; none when the program is missing, hangs or crashes."""
    with tempfile.NamedTemporaryFile(suffix=".json") as output:
        try:
            ended = subprocess.run(
                [program, f"--benchmark_out={output.name}", "--benchmark_out_format=json",
                 f"--benchmark_repetitions={REPETITIONS}",
                 "--benchmark_report_aggregates_only=true"],
                check=False, stdout=subprocess.DEVNULL, stderr=subprocess.PIPE, text=True,
                timeout=LONGEST_RUN)
            if ended.returncode != 0:
                print(ended.stderr, file=sys.stderr)
            if ended.returncode < 0:
                raise OSError(f"ended by signal {-ended.returncode}")
            report = json.loads(output.read())
        except (OSError, subprocess.TimeoutExpired, json.JSONDecodeError) as failure:
            print(f"{program}: {failure}", file=sys.stderr)
            return {}
    return {entry["run_name"]: entry for entry in report["benchmarks"]
            if entry.get("aggregate_name") == "median" and not entry.get("error_occurred")}


def find(results, name):
    """By the name that the table uses: options such as /real_time may follow it."""
    for run_name, entry in results.items():
        if run_name == name or run_name.startswith(name + "/"):
            return entry
    return None


def seconds(entry, program):
    """Processor time, which other work on the machine does not change; elapsed time where the
    program measures by itself or a server in another process has its share of the work."""
    time = "real_time" if program in ("login", "startup") else "cpu_time"
    return entry[time] * SECONDS[entry["time_unit"]]


def measure(goal, results):
    """The row of the table for one goal."""
    program, what, peer, ours_name, peer_name, form, limit = goal
    row = {"program": program, "what": what, "peer": peer, "form": form, "limit": limit,
           "ours_seconds": None, "peer_seconds": None, "measured": None, "verdict": "NOT MEASURED"}
    ours = find(results, ours_name)
    theirs = find(results, peer_name) if peer_name else None
    if ours is None or (peer_name and theirs is None):
        return row
    row["ours_seconds"] = seconds(ours, program)
    if theirs:
        row["peer_seconds"] = seconds(theirs, program)
    if form == "faster":
        row["measured"] = row["peer_seconds"] / row["ours_seconds"]
    elif form == "times":
        row["measured"] = row["ours_seconds"] / row["peer_seconds"]
    elif form in SECONDS:
        row["measured"] = row["ours_seconds"] / SECONDS[form]
    elif form in ours:
        row["measured"] = ours[form]
        row["peer_seconds"] = ours.get("peer_s")
        if row["peer_seconds"]:
            row["ours_seconds"] = ours["ratio"] * row["peer_seconds"]
    else:
        return row
    met = row["measured"] >= limit if form == "faster" else row["measured"] <= limit
    row["verdict"] = "met" if met else "MISSED"
    return row


def duration(value):
    """Three digits and a unit."""
    if value is None:
        return "-"
    unit = next((u for u in ("s", "ms", "us") if value >= SECONDS[u]), "ns")
    return f"{value / SECONDS[unit]:.3g} {unit}"


def figure(value, form):
    if value is None:
        return "-"
    unit = {"faster": "x faster", "times": "x", "ratio": "x"}.get(form, f" {form}")
    return f"{value:.{0 if value >= 100 else 2}f}{unit}" if unit[0] == "x" else f"{value:.3g}{unit}"


def print_table(rows):
    table = [("program", "measured", "time", "peer", "time", "figure", "goal", "verdict")]
    for row in rows:
        sign = ">=" if row["form"] == "faster" else "<="
        is_count = row["form"] not in ("faster", "times", "ratio") and row["form"] not in SECONDS
        table.append((row["program"], row["what"],
                      "-" if is_count else duration(row["ours_seconds"]), row["peer"] or "-",
                      duration(row["peer_seconds"]), figure(row["measured"], row["form"]),
                      f"{sign} {figure(row['limit'], row['form'])}", row["verdict"]))
    widths = [max(len(line[column]) for line in table) for column in range(len(table[0]))]
    for line in table:
        print("  ".join(cell.ljust(width) for cell, width in zip(line, widths)).rstrip())
    met = sum(row["verdict"] == "met" for row in rows)
    print(f"{met} of {len(rows)} goals met")


def machine():
    processor = platform.processor()
    for line in Path("/proc/cpuinfo").read_text().splitlines():
        if line.startswith("model name"):
            processor = line.split(":", 1)[1].strip()
            break
    return {"processor": processor, "processors": os.cpu_count(),
            "load_average": os.getloadavg()[0], "system": platform.platform(),
            "date": datetime.datetime.now(datetime.timezone.utc).isoformat(timespec="seconds")}


def main():
    if len(sys.argv) < 2:
        print(__doc__, file=sys.stderr)
        return 2
    build = Path(sys.argv[1])
    programs = list(dict.fromkeys(goal[0] for goal in GOALS))
    built = set(re.findall(r"^ *vq_add_benchmark\((\w+)",
                           (Path(__file__).parent / "CMakeLists.txt").read_text(), re.M))
    wanted = sys.argv[2:] or programs
    for name in set(wanted) - set(programs) | built - set(programs):
        print(f"{name}: no such benchmark, or one without a goal", file=sys.stderr)
        return 2
    before = machine()
    rows = []
    for program in programs:
        if program in wanted:
            print(f"{program} ...", file=sys.stderr)
            results = run(build / "benchmarks" / f"bench_{program}")
            rows += [measure(goal, results) for goal in GOALS if goal[0] == program]
    print_table(rows)
    (build / "benchmarks.json").write_text(
        json.dumps({"machine": before, "rows": rows}, indent=2) + "\n")
    return 0 if all(row["verdict"] == "met" for row in rows) else 1


if __name__ == "__main__":
    sys.exit(main())
