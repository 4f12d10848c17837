#!/usr/bin/env python3
"""What changed between two runs by more than their noise.
  bench/compare.py OLD NEW [--only REGEX] [--all]
OLD and NEW are result files of one kind: results.tsv of bench/xml, or JSON of Google Benchmark (bench/micro and its
like). Both runs are to come from one quiet machine. A row counts as changed when its medians differ by more than three
times the deviations of both runs together, and by more than a floor: 3 % for events and small programs, 10 % for trees,
whose times depend on where the heap lies. Exits with 1 when something became slower or larger, with 2 when the files
have nothing in common."""
import argparse
import csv
import json
import math
import re
import sys

FLOORS = {"events": 3.0, "limit": 3.0, "bench": 3.0, "memory": 2.0}
TREE_FLOOR = 10.0


def load_tsv(path):
    """{(section, input, contestant): (value, deviation in %)}; smaller values are better."""
    rows = {}
    with open(path, newline="") as file:
        for row in csv.DictReader(file, delimiter="\t", quoting=csv.QUOTE_NONE):
            section, key = row["section"], (row["section"], row["input"], row["contestant"])
            if section == "memory":
                facts = dict(word.split("=", 1) for word in row["note"].split() if "=" in word)
                if "liveHeap" in facts:
                    rows[key] = (float(facts["liveHeap"]), 0.0)
            elif section in ("events", "limit") or section.startswith("tree-"):
                rows[key] = (float(row["cpu_median_ms"]), float(row["cpu_mad_pct"]))
    return rows


def load_json(path):
    with open(path) as file:
        document = json.load(file)
    medians, deviations = {}, {}
    for row in document.get("benchmarks", []):
        name = row.get("run_name", row["name"])
        if row.get("run_type") != "aggregate":
            medians.setdefault(name, row["cpu_time"])
        elif row["aggregate_name"] == "median":
            medians[name] = row["cpu_time"]
        elif row["aggregate_name"] == "cv":
            deviations[name] = 100 * row["cpu_time"]
    return {("bench", name, ""): (value, deviations.get(name, 0.0)) for name, value in medians.items()}


def load(path):
    return load_json(path) if path.endswith(".json") else load_tsv(path)


def change(old, new, floor):
    """The change in % (positive: slower or larger) and whether it stands out of the noise."""
    (old_value, old_noise), (new_value, new_noise) = old, new
    if old_value <= 0:
        return 0.0, False
    percent = 100 * (new_value / old_value - 1)
    return percent, abs(percent) > max(floor, 3 * math.hypot(old_noise, new_noise))


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("old")
    parser.add_argument("new")
    parser.add_argument("--only", default="", help="rows whose name matches")
    parser.add_argument("--all", action="store_true", help="unchanged rows, too")
    options = parser.parse_args()

    old, new = load(options.old), load(options.new)
    wanted = re.compile(options.only)
    common = [key for key in new if key in old and wanted.search(" ".join(key))]
    if not common:
        print("the two files have no row in common", file=sys.stderr)
        return 2
    worse = better = 0
    for key in common:
        percent, stands_out = change(old[key], new[key], FLOORS.get(key[0], TREE_FLOOR))
        worse += stands_out and percent > 0
        better += stands_out and percent < 0
        if stands_out or options.all:
            mark = "" if not stands_out else "  WORSE" if percent > 0 else "  better"
            print(f"{' '.join(filter(None, key)):<48}{old[key][0]:>14.4g}{new[key][0]:>14.4g}{percent:>+9.1f} %{mark}")
    print(f"{len(common)} rows compared, {worse} worse, {better} better by more than the noise")
    return 1 if worse else 0


if __name__ == "__main__":
    sys.exit(main())
