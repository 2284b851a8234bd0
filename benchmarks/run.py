#!/usr/bin/env python3
"""Runs the benchmarks and prints one table: what is measured, beside which peer, goal and verdict.

    benchmarks/run.py BUILD_DIRECTORY [PROGRAM...]

Each row of GOALS compares two benchmarks of one program, measured in the same run, or takes a
number that a program reports of itself. Medians of several repetitions count. The table is also
written as JSON to BUILD_DIRECTORY/benchmarks.json. The exit code is 1 when a goal is missed or a
row finds nothing to compare.
"""

import json
import subprocess
import sys
import tempfile
from pathlib import Path

REPETITIONS = 5

# program, what, ours, peer (or None), comparison, limit.
#   "times faster": peer / ours is at least the limit    "times": ours / peer is at most the limit
#   "ms": ours takes at most so long    a counter's name: ours reports at most that
GOALS = [
    ("login", "a warm login, beside its bare remote calls", "Login", None, "ratio", 1.10),
    ("login", "GetSystemParameter, beside the stub call", "Parameter", None, "ratio", 1.05),
    ("login", "GL_ClientKeepAlive, beside the stub call", "KeepAlive", None, "ratio", 1.05),
    ("authorizations", "a question on 10,000 grants, beside a scan", "AskIndex/10000",
     "AskScan/10000", "times faster", 200),
    ("authorizations", "100,000 grants, beside 10,000", "AskIndex/100000", "AskIndex/10000",
     "times", 2),
    ("authorizations", "building the index, beside fetching the snapshot", "Build", "Fetch",
     "times", 2),
    ("times", "a time text, beside snprintf", "BM_TimeString", "BM_TimeStringThroughSnprintf",
     "times faster", 8),
    ("times", "a date and a day, beside timegm", "BM_DatePlusOrMinusADay",
     "BM_DatePlusOrMinusADayThroughTimegm", "times faster", 5),
    ("times", "the zone table of 10,000 records", "BM_ZoneTable/10000", None, "ms", 10),
    ("datacenters", "adding 100,000 records, beside std::map", "Add<TDCList>/100000",
     "Add<Map>/100000", "times", 2),
    ("datacenters", "finding 100,000 records, beside std::map", "Find<TDCList>/100000",
     "Find<Map>/100000", "times", 2),
    ("datacenters", "listing 100,000 names, beside std::map", "ListNames<TDCList>/100000",
     "ListNames<Map>/100000", "times", 2),
    ("properties", "loading 10,000 entries, beside the bare parse", "LoadProperties",
     "LoadBareParse", "times", 1.2),
    ("properties", "saving 10,000 entries, beside one fwrite", "SaveProperties", "SaveOneWrite",
     "times", 5),
    ("text", "decoding 10 MB of lines, beside memcpy", "CompareWithMemcpy/decode", None, "ratio",
     3.5),
    ("text", "encoding 10 MB of lines, beside memcpy", "CompareWithMemcpy/encode", None, "ratio",
     4),
    ("text", "decoding 10 MB, beside 1 MB", "Growth/decode", None, "ratio", 12),
    ("text", "encoding 10 MB, beside 1 MB", "Growth/encode", None, "ratio", 12),
    ("text", "100,000 archive records, beside formatted extraction", "Archive", None, "ratio",
     0.25),
]
UNITS = {"ns": 1e-9, "us": 1e-6, "ms": 1e-3, "s": 1.0}


def run(program):
    """Median results by benchmark name."""
    with tempfile.NamedTemporaryFile(suffix=".json") as output:
        subprocess.run(
            [program, f"--benchmark_out={output.name}", "--benchmark_out_format=json",
             f"--benchmark_repetitions={REPETITIONS}", "--benchmark_report_aggregates_only=true"],
            check=False, stdout=subprocess.DEVNULL)
        text = output.read()
    results = {}
    for entry in json.loads(text)["benchmarks"] if text else []:
        if entry.get("aggregate_name") == "median":
            results[entry["run_name"]] = entry
    return results


def find(results, name):
    """By the name that the table uses: options such as /real_time may follow it."""
    for run_name, entry in results.items():
        if run_name == name or run_name.startswith(name + "/"):
            return entry
    return None


def seconds(entry, program):
    """Processor time, which other work on the machine does not change; elapsed time where a server
    in another process has its share of the work."""
    time = "real_time" if program == "login" else "cpu_time"
    return entry[time] * UNITS[entry["time_unit"]]


def measure(row, results):
    program, _, ours_name, peer_name, form, limit = row
    ours = find(results, ours_name)
    peer = find(results, peer_name) if peer_name else None
    if ours is None or (peer_name and peer is None):
        return None, False
    if form == "times faster":
        value = seconds(peer, program) / seconds(ours, program)
        return value, value >= limit
    if form == "times":
        value = seconds(ours, program) / seconds(peer, program)
    elif form == "ms":
        value = seconds(ours, program) * 1000
    else:
        value = ours[form]
    return value, value <= limit


def main():
    build = Path(sys.argv[1])
    wanted = set(sys.argv[2:])
    rows, missed = [], 0
    for program in dict.fromkeys(goal[0] for goal in GOALS):
        if wanted and program not in wanted:
            continue
        results = run(build / "benchmarks" / program / f"bench_{program}")
        for goal in (g for g in GOALS if g[0] == program):
            value, met = measure(goal, results)
            missed += not met
            verdict = "met" if met else "MISSED" if value is not None else "NOT MEASURED"
            rows.append({"program": program, "what": goal[1], "form": goal[4], "limit": goal[5],
                         "measured": value, "verdict": verdict})
    for row in rows:
        least = "at least" if row["form"] == "times faster" else "at most"
        form = "times" if row["form"] == "ratio" else row["form"]
        measured = "-" if row["measured"] is None else f"{row['measured']:.2f}"
        print(f"{row['program']:<15} {row['what']:<54} {measured:>9} {form:<13}"
              f"{least} {row['limit']:<6} {row['verdict']}")
    (build / "benchmarks.json").write_text(json.dumps(rows, indent=2) + "\n")
    return 1 if missed else 0


if __name__ == "__main__":
    sys.exit(main())
