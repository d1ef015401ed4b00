#!/usr/bin/env python3
"""Times path searches in this process's own registry against ripgrep over a file of the same paths and against SQLite's FTS5 with its trigram tokenizer.

usage: path_search_versus_others.py PROJECT TERM... [--runs N] [--program PATH] [--no-cache]

PROJECT is opened by asset_path_benchmark, which writes all object paths to a file and times the service; then each term is counted by `rg -c -i -F` (a whole
process, as it is always run) and by SQLite in this process. Fewer than three letters are no trigram: there SQLite's LIKE is timed. All case-insensitive; the
numbers of hits must be equal. Medians and spread in microseconds.
"""

import argparse
import json
import os
import pathlib
import sqlite3
import statistics
import subprocess
import tempfile
import time


def measure_ours(options, dump):
    environment = {**os.environ, "ORIVANE_BENCHMARK_PROJECT": options.project, "ORIVANE_BENCHMARK_DUMP": str(dump),
                   "ORIVANE_BENCHMARK_TERMS": ",".join(options.terms)}
    if options.no_cache:
        environment["ORIVANE_BENCHMARK_NO_CACHE"] = "1"
    command = [options.program, "--benchmark_filter=Service", "--benchmark_format=json", "--benchmark_min_time=0.05",
               f"--benchmark_repetitions={options.runs}"]
    report = json.loads(subprocess.run(command, env=environment, capture_output=True, text=True, check=True).stdout)
    times, hits = {}, {}
    for run in report["benchmarks"]:
        if run["run_type"] == "iteration":
            term = run["name"].split("/", 1)[1].removesuffix("/repeats:" + str(options.runs))
            times.setdefault(term, []).append(run["real_time"])
            hits[term] = int(run["hits"])
    return times, hits


def run_ripgrep(dump, term):
    found = subprocess.run(["rg", "-c", "-i", "-F", "--", term, str(dump)], capture_output=True, text=True, check=False).stdout
    return int(found or 0)


def build_index(folder, dump):
    start = time.perf_counter()
    connection = sqlite3.connect(folder / "paths.db")
    connection.execute("CREATE VIRTUAL TABLE paths USING fts5(path, tokenize='trigram')")
    with open(dump, encoding="utf-8") as lines:
        connection.executemany("INSERT INTO paths VALUES (?)", ((line[:-1],) for line in lines))
    connection.commit()
    print(f"FTS5: built in {time.perf_counter() - start:.1f} s, {os.path.getsize(folder / 'paths.db') / 2**20:.0f} MiB", flush=True)
    return connection


def run_sqlite(connection, term):
    if len(term) < 3:
        query, text = "SELECT count(*) FROM paths WHERE path LIKE ? ESCAPE '!'", "%" + term.replace("_", "!_").replace("%", "!%") + "%"
    else:
        query, text = "SELECT count(*) FROM paths WHERE paths MATCH ?", '"' + term.replace('"', '""') + '"'
    return connection.execute(query, (text,)).fetchone()[0]


def measure(run, runs):
    hits, times = run(), []
    for _ in range(runs):
        start = time.perf_counter()
        run()
        times.append(1e6 * (time.perf_counter() - start))
    return times, hits


def describe(times):
    return f"{statistics.median(times):.1f} us ({min(times):.1f}-{max(times):.1f})"


def main():
    root = pathlib.Path(__file__).resolve().parent.parent
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("project")
    parser.add_argument("terms", nargs="+", metavar="TERM")
    parser.add_argument("--runs", type=int, default=9)
    parser.add_argument("--program", default=str(root / "build/release/bin/asset_path_benchmark"))
    parser.add_argument("--no-cache", action="store_true", help="leave the project's registry cache alone")
    options = parser.parse_args()
    with tempfile.TemporaryDirectory() as scratch:
        dump = pathlib.Path(scratch, "paths.txt")
        ours, our_hits = measure_ours(options, dump)
        connection = build_index(pathlib.Path(scratch), dump)
        for term in options.terms:
            ripgrep, ripgrep_hits = measure(lambda: run_ripgrep(dump, term), options.runs)
            sqlite, sqlite_hits = measure(lambda: run_sqlite(connection, term), options.runs)
            median = statistics.median(ours[term])
            same = our_hits[term] == ripgrep_hits == sqlite_hits
            print(f"{term!r}: {our_hits[term]} hits{'' if same else f', DIFFER: ripgrep {ripgrep_hits}, SQLite {sqlite_hits}'}; "
                  f"orivane {describe(ours[term])}; ripgrep {describe(ripgrep)}, ratio {median / statistics.median(ripgrep):.4f}; "
                  f"SQLite {describe(sqlite)}, ratio {median / statistics.median(sqlite):.4f}", flush=True)


main()
