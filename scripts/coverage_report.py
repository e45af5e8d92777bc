#!/usr/bin/python3
"""Summarises a gcovr JSON report of src/: line coverage per folder, then the paths that must
stay covered when tests change (every error code, both calculators, both solvers, the cluster
choosers, the indoor vote, the moved-tag rule), each as lines run / lines of its functions.

Usage: coverage_report.py GCOVR_JSON SOURCE_ROOT
"""
import json
import re
import sys
from pathlib import Path

# Label, then functions (regexes on the demangled name before its parameter list; the
# anonymous namespace reads "anonymous").
KEY_PATHS = [
    ("main calculator", [r"CorvexTagPositionCalculator::getPosition(Inner)?"]),
    ("k-means calculator", [r"KmeansPositionCalculator::getPosition"]),
    ("solver: weighted mean", [r"CorvexTagPositionCalculator::getAvgResult"]),
    ("solver: least squares", [r"CorvexTagPositionCalculator::getOptimumResult",
                               r"LMOptimizer::optimize"]),
    ("choice of solver", [r"CorvexTagPositionCalculator::getTagResult"]),
    ("chooser: time switch", [r"BleScanInfoFilters::getClusterByTimeSwitchCheck",
                              r"BleScanInfoFilters::getLatestPointsCluster"]),
    ("chooser: latest", [r"BleScanInfoFilters::getLatestCluster"]),
    ("chooser: GNSS", [r"BleScanInfoFilters::getHaveGnssCluster"]),
    ("chooser: active", [r"BleScanInfoFilters::getActiveCluster",
                         r"BleScanInfoFilters::getActiveCount"]),
    ("chooser: biggest", [r"BleScanInfoFilters::findBiggestClusterIndex"]),
    ("chooser: static/dynamic order", [r"BleScanInfoFilters::select(Static|Dynamic)Cluster"]),
    ("indoor vote", [r"CorvexTagPositionCalculator::(setResultIndoorInfo|filterIndoor)",
                     r"CorvexTagPositionCalculator::selectMostOccurrences<.*>",
                     r"anonymous::.*[Ff]loor.*"]),
    ("moved-tag rule", [r"CorvexTagPositionCalculator::(checkMoved|checkOutlier)",
                        r"KmeansPositionCalculator::checkMove"]),
]
ERROR_CODE_USE = re.compile(r"\b(ErrorCode::[A-Z_]+|CORVEX_(?!LOG_)[A-Z_]+)\b")


def executable_lines(entry):
    return {line["line_number"]: line["count"] for line in entry["lines"]
            if not line["gcovr/noncode"]}


def function_spans(entry):
    """(name, first line, end line) per function; a function ends where the next begins."""
    names = {f["lineno"]: f["name"].replace("(anonymous namespace)", "anonymous").split("(")[0]
             for f in entry["functions"]}
    starts = sorted((line, name) for line, name in names.items())
    ends = [line for line, _ in starts[1:]] + [10 ** 9]
    return [(name, start, end) for (start, name), end in zip(starts, ends)]


def main():
    report, root = json.load(open(sys.argv[1])), Path(sys.argv[2])
    files = {entry["file"]: entry for entry in report["files"]}

    folders = {}
    for name, entry in files.items():
        lines = executable_lines(entry)
        folder = "/".join(name.split("/")[:2])
        total, run = folders.get(folder, (0, 0))
        folders[folder] = (total + len(lines), run + sum(c > 0 for c in lines.values()))
    folders["all"] = tuple(map(sum, zip(*folders.values())))
    print(f"{'folder':16} {'lines':>6} {'run':>6} {'%':>6}")
    for folder, (total, run) in sorted(folders.items(), key=lambda kv: (kv[0] == "all", kv)):
        print(f"{folder:16} {total:6} {run:6} {100 * run / total:6.1f}")

    print("\nkey paths (lines run / lines; never-run lines listed)")
    for label, patterns in KEY_PATHS:
        total, missing = 0, []
        for name, entry in sorted(files.items()):
            lines = executable_lines(entry)
            for function, start, end in function_spans(entry):
                if any(re.search(rf"(^|::){p}$", function) for p in patterns):
                    span = [n for n in lines if start <= n < end]
                    total += len(span)
                    missing += [f"{name}:{n}" for n in sorted(span) if lines[n] == 0]
        state = f"{total - len(missing)}/{total}" if total else "no such function"
        print(f"  {label:32} {state:>9}  {' '.join(missing)}")

    print("\nerror codes (times each line that sets or returns one ran)")
    for name, entry in sorted(files.items()):
        if "/error_code." in name:
            continue
        lines = executable_lines(entry)
        text = (root / name).read_text().split("\n")
        for number, count in sorted(lines.items()):
            for code in ERROR_CODE_USE.findall(text[number - 1]):
                print(f"  {code:42} {count:9}  {name}:{number}")


if __name__ == "__main__":
    main()
