#!/usr/bin/env python3
"""The console on a terminal, as a person meets it: a pseudo-terminal types and reads. usage: console_process_test.py ORIVANE SAMPLE_PROJECT"""

import json
import os
import pathlib
import pty
import re
import select
import shutil
import signal
import stat
import subprocess
import sys
import tempfile
import time

PROMPT = "orivane> "
LIMIT = 60  # seconds for anything to appear


def draw(text):
    """What a terminal of the kind vt100 shows: lines, with cursor movements and deletions carried out."""
    lines, column = [""], 0
    for escape, number, letter, character in re.findall(r"(\x1b\[\??(\d*)(?:;\d+)*([A-Za-z])|\x1b[=>()][0-9A-B]?)|(.)", text, re.S):
        line = lines[-1]
        if letter == "C":
            column += int(number or 1)
        elif letter == "D":
            column -= int(number or 1)
        elif letter in ("K", "J"):
            lines[-1] = line[:column]
        elif character == "\r":
            column = 0
        elif character == "\b":
            column -= 1
        elif character == "\n":
            lines.append("")
        elif character >= " " and not escape:
            lines[-1] = line[:column].ljust(column) + character + line[column + 1:]
            column += 1
    return "\n".join(lines)


class Terminal:
    """One run of the console. Each thing is waited for behind the last one."""

    def __init__(self, command, environment):
        self.screen = ""
        self.seen = 0  # of what is drawn
        self.process, self.handle = pty.fork()
        if self.process == 0:
            os.execvpe(command[0], command, environment)

    def send(self, text):
        os.write(self.handle, text.encode())

    def expect(self, pattern):
        end = time.monotonic() + LIMIT
        while True:
            shown = draw(self.screen)
            if re.search(pattern, shown[self.seen:]):
                self.seen += re.search(pattern, shown[self.seen:]).start() + 1
                return
            if time.monotonic() > end or not self.read(end - time.monotonic()):
                sys.exit(f"FAILED: waited for {pattern!r}, got:\n{shown[self.seen:][-2000:]}")

    def read(self, seconds):
        ready, _, _ = select.select([self.handle], [], [], max(seconds, 0))
        try:
            data = os.read(self.handle, 65536) if ready else b""
        except OSError:  # the other side is gone
            data = b""
        self.screen += data.decode(errors="replace")
        return bool(data)

    def expect_end(self, code):
        end = time.monotonic() + LIMIT
        while time.monotonic() < end:
            self.read(0.05)
            process, status = os.waitpid(self.process, os.WNOHANG)
            if process:
                if os.waitstatus_to_exitcode(status) != code:
                    sys.exit(f"FAILED: exit code {os.waitstatus_to_exitcode(status)} instead of {code}")
                return
        os.kill(self.process, signal.SIGKILL)
        sys.exit("FAILED: the console does not end")


def type_and_complete(console):
    console.expect(PROMPT)
    console.send("orivane.datat\t")
    console.expect("Orivane.DataTableSearch ")
    console.send("te\t")
    console.expect("term=")
    console.send("Health\r")
    console.expect(r"1 asset, 1 hit: ColumnName 1\s+Saved/Quellar/datatable_search\.json")
    console.expect(PROMPT)

    console.send("Orivane.AssetSearch families=Text,datat\t")
    console.expect("families=Text,DataTable")
    console.send(" path=/game/u\t")
    console.expect("path=/Game/UI/")
    console.send("\x03")  # drops the line
    console.expect(PROMPT)
    console.send("Orivane.ExploreAssetGraph asset=/Game/AI/BT_Guar\t")
    console.expect("BT_Guard ")
    console.send("rel\tb\t\r")
    console.expect("relation=Both")
    console.expect(r"referred to by: ")
    console.expect(PROMPT)

    console.send("Orivane.S\t")
    console.expect("StructSearch ")
    console.send("\x03")
    console.expect(PROMPT)
    console.send("Orivane.B\t\t")
    console.expect("Orivane.BehaviorTreeSearch")
    console.expect("Orivane.BlueprintSearch")
    console.send("\x03")
    console.expect(PROMPT)
    console.send("Orivane.Nonsense\r")
    console.expect("there is no command 'Orivane.Nonsense'")
    console.send("help Orivane.EnumSearch\r")
    console.expect("Search UserDefinedEnums")
    console.expect(PROMPT)
    console.send("\x04")
    console.expect_end(0)


def recall(console):
    console.expect(PROMPT)
    console.send("\x1b[A")
    console.expect("help Orivane.EnumSearch")
    console.send("\x03")
    console.expect(PROMPT)
    console.send("exit\r")
    console.expect_end(0)


def terminate(console):
    console.expect(PROMPT)
    os.kill(console.process, signal.SIGTERM)
    console.expect_end(130)


def give_the_prompt_back(console):
    console.expect(PROMPT)
    console.send("Orivane.BlueprintSearch term=\r")
    console.expect("did not complete within 0.3 s.*empty term")
    console.expect(PROMPT)
    console.send("Orivane.DataTableSearch term=Health\r")
    console.expect("datatable_search.json")
    console.send("exit\r")
    console.expect_end(0)


def keep_the_terminal(orivane, project, environment):
    """Whatever a project is made of, no command lets it steer a terminal."""
    hostile = "\u202eko\u2066\x1b[2J\x9b2J\u2028\x7f"
    name = "DT_\u202eko\u200f"
    asset = {"name": name, "class": "/Script/Engine.DataTable", "tags": {hostile: hostile}}
    package = {"varnel_package": 1, "assets": [asset, {"name": hostile}], "dependencies": [{"package": "/Game/AI/BT_Guard"}],
               "objects": [{"path": name, "class": "/Script/Engine.DataTable", "properties": {"Rows": {}, hostile: hostile}}]}
    project.joinpath(f"Content/{name}.vasset").write_text(json.dumps(package, ensure_ascii=False), encoding="utf-8")
    project.joinpath(f"Docs/{hostile}.md").write_text("hostile", encoding="utf-8")
    project.joinpath(f"Docs/{hostile}large.md").touch()
    os.truncate(project.joinpath(f"Docs/{hostile}large.md"), 257 << 20)
    project.joinpath("Config/DefaultGame.ini").open("a", encoding="utf-8").write(f"\n{hostile}\n[/Script/Quellar.QuellarSettings]\n{hostile}=1\n")
    descriptor = next(project.glob("*.uproject"))
    descriptor.write_text(json.dumps({"name": hostile, "description": hostile}), encoding="utf-8")
    calls = [["search", "hostile"], ["search", "hostile", "--json"], ["search", "DT_"], ["paths", "DT_"], ["paths", "DT_", "--json"],
             ["check"], ["check", "--json"], ["info"], ["info", "--json"], ["info", "--settings"], ["info", "--dump-registry"],
             ["call", "asset_search", '{"term": "hostile"}'], ["call", "explore_asset_graph", json.dumps({"asset_path": f"/Game/{name}"})],
             ["console", "-c", "Orivane.TextSearch term=hostile", "-c", "load /Game", "-c", "Orivane.DataTableSearch term=DT_"]]
    calls += [["graph", "/Game/AI/BT_Guard", "-r", "both", "--format", form] for form in ("tree", "json", "dot", "mermaid", "html")]
    for call in calls:
        run = Terminal([orivane, *call, "--project", str(project)], environment)
        while run.read(LIMIT):
            pass
        os.waitpid(run.process, 0)
        os.close(run.handle)
        steering = re.findall("[\x00-\x08\x0b\x0c\x0e-\x1f\x7f-\x9f\u061c\u200e\u200f\u2028-\u202e\u2066-\u2069].{0,9}",
                              re.sub(r"\x1b\[[0-9;]*m", "", run.screen))
        if steering or not run.screen:
            sys.exit(f"FAILED: orivane {' '.join(call)} lets through {steering[:5]}")
    console = Terminal([orivane, "console", "--project", str(project)], environment)
    console.expect(PROMPT)
    console.send("load /Game/DT_\t\t\x03exit\r")
    console.expect_end(0)
    if re.search("[\u202e\u200f]", console.screen):
        sys.exit("FAILED: completion lets a direction through")
    lines = subprocess.run([orivane, "paths", "DT_", "--json", "--project", str(project)], capture_output=True, check=True).stdout
    if name not in lines.decode():
        sys.exit("FAILED: other programs get names as they are")


def main():
    orivane, sample = sys.argv[1:3]
    with tempfile.TemporaryDirectory() as scratch:
        project = pathlib.Path(scratch, "Project")
        shutil.copytree(sample, project)
        environment = {**os.environ, "TERM": "vt100", "XDG_STATE_HOME": scratch + "/state", "HOME": scratch}
        command = [orivane, "console", "--project", str(project)]
        type_and_complete(Terminal(command, environment))
        history = pathlib.Path(scratch, "state/orivane/console_history")
        if stat.S_IMODE(history.stat().st_mode) != 0o600:
            sys.exit("FAILED: the history is for its user alone")
        recall(Terminal(command, environment))
        terminate(Terminal(command, environment))
        knows_blueprints = subprocess.run([orivane, "search", "x", "--family", "Blueprint", "--project", str(project)],
                                          capture_output=True, check=False).returncode != 2
        if knows_blueprints:
            give_the_prompt_back(Terminal(command + ["--time-limit", "0.3"], environment))
        keep_the_terminal(orivane, project, environment)
    print("the console behaves")


main()
