#!/usr/bin/env python3
"""Times searches of the Blueprint index against SQLite's FTS5 trigram table and ripgrep over the same strings, and compares what all three count.

usage: blueprint_search_versus_fts5.py FOLDER [--blueprints N] [--entries N] [--runs N] [--terms TERM...] [--timing PATH]

FOLDER receives the generated project, the dump of its entries (one a line, an entry's comment behind a tab) and the table; about 2 GB for 50,000 Blueprints
of 200 entries. ripgrep is timed as a whole process, SQLite inside this one, our search inside its own: from the value to the entries grouped by Blueprint, and
the same with the start and end of the search's own thread. Medians and spread of the given number of runs after one warm-up.
"""

import argparse
import json
import pathlib
import sqlite3
import statistics
import subprocess
import time

ROOT = pathlib.Path(__file__).resolve().parent.parent
# In five entries; nowhere, of common letters; in many; in more.
TERMS = ["Zyxomma", "HealthStaminaHealthStamina", "HealthStamina12", "Montage", "Health"]


def describe(times):
    return f"{statistics.median(times):.3f} ms ({min(times):.3f}-{max(times):.3f})"


def describe_ours(times):
    return f"{times['median']:.4f} ms ({times['lowest']:.4f}-{times['highest']:.4f})"


def measure(run, runs):
    times = []
    result = run()
    for _ in range(runs):
        start = time.perf_counter()
        result = run()
        times.append(1000 * (time.perf_counter() - start))
    return result, times


def fill_table(dump, path):
    path.unlink(missing_ok=True)
    table = sqlite3.connect(path)
    table.execute("PRAGMA journal_mode=OFF")
    table.execute("PRAGMA synchronous=OFF")
    table.execute("PRAGMA cache_size=-1000000")
    table.execute("PRAGMA mmap_size=8000000000")
    table.execute("CREATE VIRTUAL TABLE entries USING fts5(line, tokenize='trigram')")
    start = time.perf_counter()
    with open(dump, encoding="utf-8") as lines:
        table.executemany("INSERT INTO entries(line) VALUES (?)", ((line.rstrip("\n"),) for line in lines))
    table.execute("INSERT INTO entries(entries) VALUES ('optimize')")
    table.commit()
    return table, time.perf_counter() - start


def count_in_table(table, term):
    return table.execute("SELECT count(*) FROM entries WHERE entries MATCH ?", ('"' + term + '"',)).fetchone()[0]


def count_with_ripgrep(dump, term):
    run = subprocess.run(["rg", "-a", "-i", "-F", "-c", "--", term, dump], capture_output=True, text=True, check=False)
    return int(run.stdout or 0)


def compare(ours, table, dump, runs):
    term = ours["term"]
    number, sqlite_times = measure(lambda: count_in_table(table, term), runs)
    lines, ripgrep_times = measure(lambda: count_with_ripgrep(dump, term), max(3, runs // 10))
    same = ours["matches"] == number == lines
    sqlite_median = statistics.median(sqlite_times)
    print(f"{term}: {ours['matches']} entries of {ours['blueprints']} Blueprints, counts {'equal' if same else f'DIFFER: {number}, {lines}'}\n"
          f"  search {describe_ours(ours['search'])}, with its thread {describe_ours(ours['whole'])}\n"
          f"  FTS5 {describe(sqlite_times)}, ripgrep {describe(ripgrep_times)}\n"
          f"  ratio to FTS5 {ours['search']['median'] / sqlite_median:.3f} (with its thread {ours['whole']['median'] / sqlite_median:.3f}),"
          f" to ripgrep {ours['whole']['median'] / statistics.median(ripgrep_times):.5f}", flush=True)


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("folder", type=pathlib.Path)
    parser.add_argument("--blueprints", type=int, default=50000)
    parser.add_argument("--entries", type=int, default=200)
    parser.add_argument("--runs", type=int, default=101)
    parser.add_argument("--terms", nargs="+", default=TERMS)
    parser.add_argument("--timing", default=str(ROOT / "build/release/bin/blueprint_index_timing"))
    options = parser.parse_args()
    command = [options.timing, options.folder, str(options.blueprints), str(options.entries), str(options.runs), *options.terms]
    facts, *searches = map(json.loads, subprocess.run(command, capture_output=True, text=True, check=True).stdout.splitlines())
    print(f"{facts['blueprints']} Blueprints, {facts['entries']} entries, {facts['distinct_texts']} distinct texts of {facts['distinct_bytes']} bytes\n"
          f"registry with index {facts['index_bytes']} bytes: {facts['index_bytes'] / facts['text_bytes']:.2f} of the entries' texts and their folded twins"
          f" ({facts['text_bytes']} bytes)\n"
          f"first opening {facts['build_ms']} ms, of it columns and lists {facts['columns_ms']} ms; opening from the cache {facts['open_ms']} ms", flush=True)
    dump = options.folder / "entries.txt"
    table, seconds = fill_table(dump, options.folder / "entries.sqlite")
    print(f"FTS5 table: {(options.folder / 'entries.sqlite').stat().st_size} bytes, filled in {seconds:.1f} s", flush=True)
    for ours in searches:
        compare(ours, table, dump, options.runs)


main()
