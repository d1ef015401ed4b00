#!/usr/bin/env python3
"""Times a search that has to load every package of a project against the same search again.

Each run starts `orivane mcp` anew: the first search reads and builds the objects, the later ones find them in memory. Searches
name the families that load objects, and a term that nothing contains, so that every asset is read and no cap ends the scan.
Prints medians and spreads of the runs, and what the process takes.

  Benchmarks/object_search_first_and_repeated.py PROJECT [--runs 5] [--repeats 5] [--program build/release/bin/orivane]
"""
import argparse
import json
import pathlib
import re
import statistics
import subprocess
import time

FAMILIES = ["BehaviorTree", "Blackboard", "Enum", "Struct", "DataAsset", "DataTable", "EnvQuery"]


class Session:
    """One server with the project open."""

    def __init__(self, program, project, options):
        self.process = subprocess.Popen([program, "mcp", "--project", project, *options], stdin=subprocess.PIPE,
                                        stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, text=True)
        self.last_id = 0
        self.request("initialize", {"protocolVersion": "2025-06-18", "capabilities": {},
                                    "clientInfo": {"name": "benchmark", "version": "1"}})
        self.send({"jsonrpc": "2.0", "method": "notifications/initialized"})
        self.search(["EnvQuery"], "no folder is named like this")  # answered once the project is open

    def send(self, message):
        self.process.stdin.write(json.dumps(message) + "\n")
        self.process.stdin.flush()

    def request(self, method, params):
        self.last_id += 1
        self.send({"jsonrpc": "2.0", "id": self.last_id, "method": method, "params": params})
        for line in self.process.stdout:
            answer = json.loads(line)
            if answer.get("id") == self.last_id:
                return answer["result"]
        raise SystemExit("the server ended")

    def search(self, families, path=""):
        """Seconds of one search."""
        start = time.perf_counter()
        result = self.request("tools/call", {"name": "asset_search", "arguments": {
            "term": "zzqqxx", "include_asset_families": families, "path_contains": path}})
        seconds = time.perf_counter() - start
        if result.get("isError"):
            raise SystemExit(result["content"][0]["text"])
        return seconds

    def resident_megabytes(self):
        status = pathlib.Path(f"/proc/{self.process.pid}/status").read_text()
        return int(re.search(r"VmRSS:\s+(\d+)", status)[1]) / 1024

    def close(self):
        self.process.stdin.close()
        self.process.wait()


def describe(name, seconds):
    milliseconds = sorted(1000 * value for value in seconds)
    print(f"{name:10} {statistics.median(milliseconds):9.1f} ms   ({milliseconds[0]:.1f} to {milliseconds[-1]:.1f})")


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("project")
    parser.add_argument("--runs", type=int, default=5)
    parser.add_argument("--repeats", type=int, default=5)
    parser.add_argument("--program", default=pathlib.Path(__file__).parent.parent / "build/release/bin/orivane")
    parser.add_argument("--options", default="", help="further options of the server, such as '--object-memory 64'")
    arguments = parser.parse_args()

    first, repeated, before, after = [], [], [], []
    for _ in range(arguments.runs):
        session = Session(arguments.program, arguments.project, arguments.options.split())
        before.append(session.resident_megabytes())
        first.append(session.search(FAMILIES))
        repeated += [session.search(FAMILIES) for _ in range(arguments.repeats)]
        after.append(session.resident_megabytes())
        session.close()
    describe("first", first)
    describe("repeated", repeated)
    print(f"memory     {statistics.median(before):9.0f} MB before, {statistics.median(after):.0f} MB after")


if __name__ == "__main__":
    main()
