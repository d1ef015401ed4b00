#!/usr/bin/env python3
"""Times the Text family as a whole program against ripgrep on the same files, and compares what both list.

usage: text_search_versus_ripgrep.py PROJECT TERM... [--runs N] [--orivane PATH]

PROJECT is any folder with a *.uproject. Runs alternate between the two programs, after one warm-up each; medians and spread are printed. Two files whose paths
differ only in case count as one for us, so such pairs are named and not counted as a difference.
"""

import argparse
import json
import pathlib
import statistics
import subprocess
import time

EXTENSIONS = "uproject uplugin txt md bat py xml yaml yml html css js ts config ini cfg".split()


def run_ours(options, term):
    arguments = {"term": term, "include_asset_families": ["Text"], "max_total_hits": 1000000, "max_hits_per_asset_type": 1000000}
    command = [options.orivane, "call", "asset_search", json.dumps(arguments), "--project", options.project]
    return subprocess.run(command, capture_output=True, text=True, check=False).stdout


def run_ripgrep(options, term):
    globs = [part for extension in EXTENSIONS for part in ("--iglob", "*." + extension)]
    command = ["rg", "-uuu", "-a", "-i", "-F", "-l", "--no-messages", *globs, "--", term, "."]
    return subprocess.run(command, cwd=options.project, capture_output=True, text=True, check=False).stdout


def cut(path):
    return path.split(".", 1)[0]


def compare(ours, ripgrep):
    """Paths of either side alone, after what the payload does to paths; and pairs that differ only in case."""
    listed = [asset["asset"] for asset in json.loads(ours)["data"]["content"]["assets"]]
    unique, pairs = {}, 0
    for path in ripgrep.splitlines():
        path = path.removeprefix("./")
        pairs += path.casefold() in unique
        unique.setdefault(path.casefold(), path)
    return sorted(map(str.casefold, listed)) == sorted(cut(path) for path in unique), len(listed), pairs


def measure(run, options, term):
    start = time.perf_counter()
    output = run(options, term)
    return output, 1000 * (time.perf_counter() - start)


def describe(times):
    return f"{statistics.median(times):.1f} ms ({min(times):.1f}-{max(times):.1f})"


def main():
    root = pathlib.Path(__file__).resolve().parent.parent
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("project")
    parser.add_argument("terms", nargs="+", metavar="TERM")
    parser.add_argument("--runs", type=int, default=15)
    parser.add_argument("--orivane", default=str(root / "build/release/bin/orivane"))
    options = parser.parse_args()
    for term in options.terms:
        ours_output, ripgrep_output = run_ours(options, term), run_ripgrep(options, term)
        same, number, pairs = compare(ours_output, ripgrep_output)
        ours, ripgrep = [], []
        for _ in range(options.runs):
            ours.append(measure(run_ours, options, term)[1])
            ripgrep.append(measure(run_ripgrep, options, term)[1])
        ratio = statistics.median(ours) / statistics.median(ripgrep)
        print(f"{term!r}: {number} files, lists {'equal' if same else 'DIFFER'}"
              f"{f' ({pairs} pairs differ only in case)' if pairs else ''}; "
              f"orivane {describe(ours)}, ripgrep {describe(ripgrep)}, ratio {ratio:.2f}", flush=True)


main()
