#!/usr/bin/env python3
"""A running server and a running console answer from the files as they are: random edits of a project with random calls between them, every
answer compared with that of a fresh process. usage: living_project_test.py ORIVANE SAMPLE_PROJECT [--edits N] [--watch events|times]
ORIVANE_TEST_SEED repeats a run."""

import argparse
import json
import os
import pathlib
import random
import re
import select
import shutil
import subprocess
import sys
import tempfile
import time

LIMIT = 60  # seconds until a server that does not answer counts as hanging
# Materials are read by loading them, in both processes. Particle systems are searched in memory alone where their contents are asked for, so
# their mode stays 0: what earlier calls have loaded would differ.
SETTINGS = [
    None,
    "[/Script/OrivaneToolkit.OrivaneSettings]\nMaterialSearchMode=1\n",
    "[/Script/OrivaneToolkit.OrivaneSettings]\nMaterialSearchMode=0\n",
    "[/Script/Quellar.QuellarSettings]\n+ExcludedDirectories=UI\n+ExcludedDirectories=Docs\n",
    "[/Script/Quellar.QuellarSettings]\n!ExcludedDirectories=ClearArray\nbExcludeEnginePlugins=False\n",
    "[/Script/Quellar.QuellarSettings]\n+TextSearchExtensions=md\n+TextSearchExtensions=uplugin\n",
    "half a line [",
]
FAMILIES = ["Blueprint", "Text", "BehaviorTree", "Blackboard", "DataAsset", "DataTable", "EnvQuery", "Enum", "Struct", "Material", "NiagaraSystem"]
WORDS = ["Lamp", "Fog", "Guard", "Harbour", "Damage", "Health", "Oil", "Brass", "Target", "Speed", "Row", "Slot", "Zz1", "Zz2", "float"]


class Server:
    """One `orivane mcp`; calls wait for their answers."""

    def __init__(self, command):
        self.errors = tempfile.TemporaryFile()
        self.process = subprocess.Popen(command, stdin=subprocess.PIPE, stdout=subprocess.PIPE, stderr=self.errors)
        self.pending = b""
        self.id = 0
        self.request("initialize", {"protocolVersion": "2025-11-25", "capabilities": {}, "clientInfo": {"name": "test", "version": "0"}})
        self.send({"jsonrpc": "2.0", "method": "notifications/initialized"})

    def send(self, message):
        self.process.stdin.write(json.dumps(message).encode() + b"\n")
        self.process.stdin.flush()

    def request(self, method, params):
        self.id += 1
        self.send({"jsonrpc": "2.0", "id": self.id, "method": method, "params": params})
        while b"\n" not in self.pending:
            if not select.select([self.process.stdout], [], [], LIMIT)[0]:
                sys.exit("FAILED: the server is silent")
            data = os.read(self.process.stdout.fileno(), 1 << 20)
            if not data:
                self.errors.seek(0)
                sys.exit("FAILED: the server has ended: " + self.errors.read().decode(errors="replace"))
            self.pending += data
        line, self.pending = self.pending.split(b"\n", 1)
        return json.loads(line)["result"]

    def call(self, tool, arguments):
        answer = self.request("tools/call", {"name": tool, "arguments": arguments})
        content = answer["structuredContent"]
        return {"messages": content.pop("messages"), "data": content}

    def end(self):
        self.process.stdin.close()
        if self.process.wait(LIMIT) != 0:
            sys.exit("FAILED: the server ended badly")


class Console:
    """One `orivane console` behind a pipe."""

    END = "help help"  # is refused, on standard error

    def __init__(self, command, folder):
        self.document = folder / "Saved/Quellar/asset_search.json"
        self.process = subprocess.Popen(command, stdin=subprocess.PIPE, stderr=subprocess.PIPE, stdout=subprocess.DEVNULL)

    def search(self, line):
        self.process.stdin.write(f"{line}\n{self.END}\n".encode())
        self.process.stdin.flush()
        errors = b""
        while b"no command 'help'" not in errors:
            if not select.select([self.process.stderr], [], [], LIMIT)[0]:
                sys.exit("FAILED: the console is silent")
            data = os.read(self.process.stderr.fileno(), 1 << 20)
            if not data:
                sys.exit("FAILED: the console has ended: " + errors.decode(errors="replace"))
            errors += data
        return json.loads(self.document.read_text())

    def end(self):
        self.process.stdin.close()
        self.process.wait(LIMIT)


class Project:
    """Random edits of a project folder. Each returns what it did, or None where it could not."""

    def __init__(self, folder, sample, rng):
        self.folder, self.sample, self.rng = folder, sample, rng
        self.outside = folder.parent / "Outside"
        self.outside.mkdir()
        self.unfinished = None  # a package half written, and the rest of it
        self.text_word = None  # last written into a text that was there before
        self.count = 0
        shutil.copytree(sample, folder)

    def files(self, *suffixes):
        found = []
        for root in ("Content", "Plugins", "Docs", "Tools"):
            found += [f for f in (self.folder / root).rglob("*") if f.suffix in suffixes and f.is_file() and not self.is_linked(f)]
        return sorted(found)

    def folders(self):
        return sorted(f for root in ("Content", "Plugins") for f in (self.folder / root).rglob("*") if f.is_dir() and not self.is_linked(f))

    def is_linked(self, path):
        return any(p.is_symlink() for p in [path, *path.parents] if self.folder in p.parents)

    def pick(self, things):
        return self.rng.choice(things) if things else None

    def name(self):
        self.count += 1
        return f"N{self.count % 50}"

    def change_package(self):
        file = self.pick(self.files(".vasset"))
        return file and self.change(file)

    def change(self, file):
        text = file.read_text(errors="replace")
        words = sorted(set(re.findall(r"[A-Za-z]{3,}", text)))
        if not words:
            return None
        old, new = self.rng.choice(words), self.rng.choice(words + WORDS)
        file.write_text(re.sub(rf"\b{old}\b", new, text, count=self.rng.choice([0, 1])))
        return f"{old} -> {new} in {file}"

    def change_keeping_size_and_time(self):
        file = self.pick(self.files(".vasset"))
        if not file:
            return None
        times, text = file.stat(), file.read_text(errors="replace")
        numbers = re.findall(r"[a-z]{4}", text)
        word = self.rng.choice(numbers or ["none"])
        file.write_text(text.replace(word, self.rng.choice(["lamp", "fogs", "zzzz", word[::-1]])))
        os.utime(file, ns=(times.st_atime_ns, times.st_mtime_ns))
        return f"time put back: {file}"

    def add(self):
        source, folder = self.pick(self.files(".vasset")), self.pick(self.folders())
        if not source or not folder:
            return None
        target = folder / f"{self.name()}{source.suffix}"
        target.write_text(source.read_text(errors="replace").replace(source.stem, target.stem))
        return f"{target} made from {source}"

    def remove(self):
        file = self.pick(self.files(".vasset", ".md", ".txt", ".uplugin"))
        if file:
            file.unlink()
        return file and f"removed {file}"

    def remove_and_make_again(self):
        file = self.pick(self.files(".vasset"))
        if not file:
            return None
        text = file.read_text(errors="replace")
        file.unlink()
        file.write_text(text.replace("Lamp", "Lump") if self.rng.random() < 0.5 else text)
        return f"removed and made again: {file}"

    def rename(self):
        file, folder = self.pick(self.files(".vasset", ".md")), self.pick(self.folders())
        if not file or not folder:
            return None
        target = folder / self.rng.choice([file.name, f"{self.name()}{file.suffix}", file.name.upper().replace(".VASSET", ".vasset")])
        file.rename(target)
        return f"{file} renamed to {target}"

    def rename_over(self):
        file, target = self.pick(self.files(".vasset")), self.pick(self.files(".vasset"))
        if not file:
            return None
        fresh = self.outside / "fresh"
        fresh.write_text(file.read_text(errors="replace").replace(file.stem, target.stem))
        fresh.replace(target)
        return f"{target} replaced by one like {file}"

    def write_half(self):
        if self.unfinished:
            file, rest = self.unfinished
            self.unfinished = None
            if not file.exists():
                return None
            with file.open("ab") as out:
                out.write(rest)
            return f"finished {file}"
        file = self.pick(self.files(".vasset"))
        if not file:
            return None
        data = file.read_bytes()
        cut = self.rng.randrange(len(data) + 1)
        file.write_bytes(data[:cut])
        self.unfinished = file, data[cut:]
        return f"half written: {file}"

    def change_text(self):
        file = self.pick(self.files(".md", ".txt", ".py"))
        if file and self.rng.random() < 0.7:
            self.text_word = self.rng.choice(WORDS)
            file.write_text(self.text_word + " and other words", encoding=self.rng.choice(["utf-8", "utf-16"]))
            return f"text {file}"
        logs = self.folder / "Saved/Logs"  # is not watched
        logs.mkdir(parents=True, exist_ok=True)
        folder = self.pick([*self.folders(), logs, logs])
        (folder / f"{self.name()}.txt").write_text(self.rng.choice(WORDS))
        return f"new text in {folder}"

    def move_folder(self):
        folder, into = self.pick(self.folders()), self.pick(self.folders())
        if not folder or folder == into or folder in into.parents:
            return None
        target = into / self.rng.choice([folder.name, self.name()])
        if target.exists():
            return None
        folder.rename(target)
        return f"folder {folder} moved to {target}"

    def move_out_or_in(self):
        moved = sorted(self.outside.glob("Moved*"))
        if moved:
            target = self.folder / "Content" / self.name()
            if target.exists():
                return None
            moved[0].rename(target)
            return f"folder moved in as {target}"
        folder = self.pick(self.folders())
        if not folder:
            return None
        folder.rename(self.outside / "Moved")
        return f"folder {folder} moved out"

    def new_folders(self):
        folder = self.folder / "Content" / self.name() / self.name() / self.name()
        file = self.pick(self.files(".vasset"))
        if not file or folder.exists():
            return None
        text = file.read_text(errors="replace")
        folder.mkdir(parents=True)
        (folder / file.name).write_text(text)
        return f"new folders {folder} with {file.name}"

    def link_folder(self):
        links = [f for f in sorted((self.folder / "Content").iterdir()) if f.is_symlink()]
        if links:
            target = pathlib.Path(os.readlink(links[0]))
            links[0].unlink()
            target.rename(links[0])
            return f"{links[0]} is a folder again"
        folder = self.pick([f for f in self.folders() if f.parent == self.folder / "Content"])
        if not folder:
            return None
        target = self.outside / f"Linked{folder.name}"
        folder.rename(target)
        folder.symlink_to(target)
        return f"{folder} is a link"

    def settings(self):
        file, text = self.folder / "Config/DefaultGame.ini", self.rng.choice(SETTINGS)
        if self.rng.random() < 0.1 and file.parent.exists():
            shutil.rmtree(file.parent)
            return "no folder Config"
        file.parent.mkdir(exist_ok=True)
        if text is None:
            file.unlink(missing_ok=True)
        else:
            file.write_text(text)
        return f"settings {text!r}"

    def script(self):
        file = self.pick(sorted((self.folder / "Script").glob("*.vscript")))
        if file and self.rng.random() < 0.8:
            return self.change(file)
        if file and self.rng.random() < 0.3:
            file.unlink()
            return f"removed {file}"
        shutil.rmtree(self.folder / "Script", ignore_errors=True)
        shutil.copytree(self.sample / "Script", self.folder / "Script")
        return "script modules as in the beginning"

    def plugin(self):
        plugins = [f for f in sorted((self.folder / "Plugins").rglob("*")) if (f / f"{f.name}.uplugin").exists()] if (self.folder / "Plugins").exists() else []
        how = self.rng.randrange(3)
        if plugins and how == 0:
            plugin, name = self.rng.choice(plugins), self.name()
            if (plugin.parent / name).exists():
                return None
            (plugin / f"{plugin.name}.uplugin").rename(plugin / f"{name}.uplugin")
            plugin.rename(plugin.parent / name)
            return f"plugin {plugin} is {name}"
        if plugins and how == 1:
            shutil.rmtree(self.rng.choice(plugins))
            return "a plugin less"
        name, file = self.name(), self.pick(self.files(".vasset"))
        folder = self.folder / "Plugins" / name / "Content"
        if folder.exists() or not file:
            return None
        text = file.read_text(errors="replace")
        folder.mkdir(parents=True)
        (folder / file.name).write_text(text)
        (folder.parent / f"{name}.uplugin").write_text("{}")
        return f"new plugin {name}"

    def descriptor(self):
        next(self.folder.glob("*.uproject")).write_text(json.dumps({"name": self.rng.choice(WORDS)}))
        return "descriptor"

    def start_over(self):
        for path in self.folder.iterdir():
            if path.name != "Intermediate":
                shutil.rmtree(path) if path.is_dir() and not path.is_symlink() else path.unlink()
        shutil.copytree(self.sample, self.folder, dirs_exist_ok=True)
        shutil.rmtree(self.outside)
        self.outside.mkdir()
        self.unfinished = None
        return "everything as in the beginning"

    EDITS = {change_package: 20, change_keeping_size_and_time: 10, add: 10, remove: 6, remove_and_make_again: 5, rename: 6, rename_over: 5, write_half: 8,
             change_text: 8, move_folder: 5, move_out_or_in: 4, new_folders: 3, link_folder: 2, settings: 6, script: 5, plugin: 3, descriptor: 1}

    def edit(self):
        count = len(self.files(".vasset"))
        if not 40 < count < 300 or self.rng.random() < 0.005:
            return self.start_over()
        return self.rng.choices(list(self.EDITS), weights=self.EDITS.values())[0](self)


class Run:
    def __init__(self, arguments, watch, rng):
        self.arguments, self.rng, self.watch = arguments, rng, watch
        self.scratch = pathlib.Path(tempfile.mkdtemp(prefix="living-")).resolve()
        self.project = Project(self.scratch / "Project", pathlib.Path(arguments.sample).resolve(), rng)
        self.log = []
        self.calls = 0
        # The server keeps a cache, the fresh processes do not: a fault of the cache would be common to them.
        self.options = ["--project", str(self.project.folder)]
        living = [*self.options, "--watch", watch, "--watch-interval", "0.001"]
        self.server = Server([arguments.orivane, "mcp", *living, "--max-answer-bytes", "8388608"])
        self.console = Console([arguments.orivane, "console", *living], self.project.folder)

    def random_call(self):
        term = self.rng.choice(WORDS)
        packages = self.project.files(".vasset")
        tool = self.rng.choice(["asset_search", "asset_search", "explore_asset_graph", "asset_path_search", "project_report", "show_asset"])
        if tool == "asset_search":
            families = self.rng.sample(FAMILIES, self.rng.randint(1, 4)) if self.rng.random() < 0.6 else []
            return tool, {"term": term, "max_total_hits": self.rng.choice([5, 1000])} | ({"include_asset_families": families} if families else {})
        if tool == "asset_path_search":
            return tool, {"term": self.rng.choice([term, "_", "N1"])}
        path = self.rng.choice(packages).relative_to(self.project.folder).with_suffix("") if packages else pathlib.Path("Content/X")
        asset = "/Game/" + "/".join(path.parts[1:])
        if tool == "project_report":
            report = self.rng.choice(["broken", "unused", "cycles", "impact", "path"])
            return tool, {"report": report, "asset_path": asset, "target_path": "/Game/Data/DA_GameConfig", "max_results": self.rng.choice([5, 1000])}
        if tool == "show_asset":
            return tool, {"asset_path": asset}
        return tool, {"asset_path": asset, "relation": self.rng.choice(["dependencies", "referencers", "both"]), "depth": 3}

    def fresh(self, tool, arguments):
        done = subprocess.run([self.arguments.orivane, "call", tool, json.dumps(arguments), *self.options, "--no-cache"],
                              capture_output=True, timeout=LIMIT, check=False)
        answer = json.loads(done.stdout)
        return {"messages": answer["messages"], "data": answer["data"]}

    def fresh_search(self, line):
        subprocess.run([self.arguments.orivane, "console", "-c", line, *self.options, "--no-cache"], capture_output=True, timeout=LIMIT, check=False)
        return json.loads(self.console.document.read_text())

    def compare(self, tool=None, arguments=None):
        if not tool and self.rng.random() < 0.2:
            line = f"Orivane.AssetSearch term={self.rng.choice(WORDS)} families={','.join(self.rng.sample(FAMILIES, 3))}"
            return self.compare_answers(line, lambda: self.console.search(line), lambda: self.fresh_search(line))
        if not tool:
            tool, arguments = self.random_call()
        self.compare_answers(f"{tool} {json.dumps(arguments)}", lambda: self.server.call(tool, arguments), lambda: self.fresh(tool, arguments))

    def compare_answers(self, question, ask, ask_fresh):
        if self.watch == "times":
            time.sleep(0.002)  # the interval
        ours, expected = ask(), ask_fresh()
        self.calls += 1
        if ours == expected:
            return
        print(f"FAILED: {question} differs from a fresh process, watch {self.watch}, seed {self.arguments.seed}; the last edits:")
        print("\n".join(f"  {edit}" for edit in self.log[-12:]))
        print("living:", json.dumps(ours)[:4000])
        print("fresh: ", json.dumps(expected)[:4000])
        again = ask()
        print("asked again it", "answers as the fresh process" if again == expected else "answers the same" if again == ours else "differs again")
        sys.exit(f"kept: {self.scratch}")

    def descriptor_goes_and_comes(self):
        """What is known of the project stays, and every answer says why it may be old."""
        descriptor = next(self.project.folder.glob("*.uproject"))
        descriptor.rename(descriptor.with_suffix(".away"))
        for _ in range(2):
            messages = self.server.call("asset_path_search", {"term": "Guard"})["messages"]
            if messages[-1]["type"] != "warning" or "no *.uproject in" not in messages[-1]["text"] or messages[0]["type"] != "success":
                sys.exit(f"FAILED: without a descriptor: {messages}")
        descriptor.with_suffix(".away").rename(descriptor)
        self.compare()

    def folder_goes_and_comes(self):
        away = self.scratch / "Away"
        self.project.folder.rename(away)
        messages = self.server.call("asset_path_search", {"term": "Guard"})["messages"]
        if "there is no folder" not in messages[-1]["text"]:
            sys.exit(f"FAILED: without the folder: {messages}")
        shutil.copytree(away, self.project.folder, symlinks=True)
        shutil.rmtree(away)
        self.log.append("the project is a copy of itself")
        self.compare("asset_search", {"term": "Lamp"})
        self.log.append(self.project.change_package())
        self.compare("asset_search", {"term": "Lamp"})

    def run(self):
        edits = 0
        self.compare()
        while edits < self.arguments.edits:
            for _ in range(self.rng.choice([1, 1, 1, 2, 3, 8])):
                done = self.project.edit()
                if done:
                    edits += 1
                    self.log.append(done)
            if self.project.text_word:
                self.compare("asset_search", {"term": self.project.text_word, "include_asset_families": ["Text"]})
                self.project.text_word = None
            for _ in range(self.rng.choice([1, 1, 2])):
                self.compare()
        self.log.append(self.project.start_over())
        self.compare()
        self.descriptor_goes_and_comes()
        self.folder_goes_and_comes()
        self.server.end()
        self.console.end()
        shutil.rmtree(self.scratch)
        print(f"{self.watch}: {edits} edits, {self.calls} answers compared")


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("orivane")
    parser.add_argument("sample")
    parser.add_argument("--edits", type=int, default=75, help="in each mode")
    parser.add_argument("--watch", nargs="+", default=["events", "times"])
    arguments = parser.parse_args()
    arguments.seed = int(os.environ.get("ORIVANE_TEST_SEED") or random.SystemRandom().randrange(1 << 32))
    print(f"seed {arguments.seed}", flush=True)
    for watch in arguments.watch:
        Run(arguments, watch, random.Random(arguments.seed)).run()


main()
