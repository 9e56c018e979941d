#!/usr/bin/python3
# SPDX-FileCopyrightText: 2026 The Ostrafel developers
# SPDX-License-Identifier: Apache-2.0

"""Measures whole runs of Ostrafel beside the floor and the alternatives, inside a sandbox.

Every round runs each contender once, one after the other, on the same tree and on a store in the
same state, so that what else the machine does touches all alike. Writes all figures to a JSON file
in the folder WORK, where the recordings go, too."""

import argparse
import json
import pathlib
import statistics
import subprocess
import sys
import time

import growth
import machine
import recording
import sandbox_server
import startup
from programs import HERE, URI, built, instructions, peak_memory, run

PYTHON = "/usr/bin/python3"  # the one that Debian's python3-redis is installed for
SLOW = 60                    # seconds; what takes longer runs only once


def log(text):
    print(f"{time.strftime('%H:%M:%S')} {text}", flush=True)


class Scenario:
    """A kind of run: the action, the tree that is loaded, and the tree that the store holds before,
    or None. is_large: updates of the tree take too long for most contenders."""

    def __init__(self, build, folder, action, tree, stored, is_large):
        self.build, self.folder, self.action = build, folder, action
        self.tree, self.stored, self.is_large = tree, stored, is_large
        self.recording, self.stream = folder / "recording", folder / "stream"
        folder.mkdir(parents=True, exist_ok=True)

    def prepare(self):
        sandbox_server.clear()
        if self.stored is not None:
            subprocess.run([self.build / "Ostrafel", "create", self.stored, URI], check=True,
                           stdout=subprocess.DEVNULL)

    def contenders(self):
        """Name -> command."""
        replayed = [self.recording, sandbox_server.SOCKET, self.tree, "index.json"]
        commands = {
            "Ostrafel": [self.build / "Ostrafel", self.action, self.tree, URI],
            "floor": [built(self.build, "replay"), *replayed],
            "redis-cli --pipe": ["redis-cli", "-s", sandbox_server.SOCKET, "--pipe"],
            "one at a time": [built(self.build, "replay"), "--round-trips", *replayed],
            "redis-py": [PYTHON, HERE / "redis_py_loader.py", self.action, self.tree, URI]}
        if self.is_large and self.action == "update":
            return {name: commands[name] for name in ("Ostrafel", "floor")}
        return commands

    def run_contender(self, name, runner=run):
        command = self.contenders()[name]
        self.prepare()
        if name != "redis-cli --pipe":
            return runner(command)
        with open(self.stream, "rb") as stream:
            return runner(command, stdin=stream)

    def time_contender(self, name):
        result = self.run_contender(name)
        printed = result.pop("printed")
        if name in ("floor", "one at a time"):
            # The replay prints how long it read its recording, which is no work of a loader.
            wall, client = printed.split()
            result["wall"] -= float(wall)
            result["client"] -= float(client)
        return result

    def record(self):
        self.prepare()
        recording.record(self.build, [self.action, self.tree, URI], self.recording)
        return recording.describe(self.recording, self.stream)

    def check(self):
        """Stops when a contender does not leave the store as Ostrafel does: the comparison would be
        of different work."""
        expected = None
        for name in self.contenders():
            self.run_contender(name)
            found = sandbox_server.contents()
            expected = expected or found
            if found != expected:
                sys.exit(f"measure: {name} leaves another store than Ostrafel.")

    def memory(self, results):
        """MiB by contender. The replay is left out, as it holds the whole recording."""
        return {name: self.run_contender(name, peak_memory) for name, runs in results.items()
                if name in ("Ostrafel", "redis-cli --pipe", "redis-py") and runs[0]["wall"] < SLOW}

    def instructions(self):
        counts = {}
        for figure, contender, function in (("whole process", "Ostrafel", None),
                                            ("main", "Ostrafel", "main"),
                                            ("floor", "floor", "RunFloor")):
            counts[figure] = self.run_contender(
                contender, lambda command, inside=function: instructions(command, inside))
        return counts

    def measure(self, rounds):
        results = {name: [] for name in self.contenders()}
        for round_number in range(rounds):
            # There and back, so that nobody always comes after the same one.
            for name, runs in list(results.items())[::-1 if round_number % 2 else 1]:
                if not runs or runs[0]["wall"] <= SLOW:
                    runs.append(self.time_contender(name))
            walls = ", ".join(f"{name} {runs[-1]['wall'] * 1e3:.1f}"
                              for name, runs in results.items())
            log(f"  round {round_number + 1} of {rounds}, ms: {walls}")
        return results

    def measure_all(self, rounds, with_instructions):
        measured = {"counts": self.record()}
        if not self.is_large:
            self.check()
        measured["results"] = self.measure(rounds)
        if self.action == "create" or not self.is_large:
            measured["memory"] = self.memory(measured["results"])
        if with_instructions:
            log("  instructions")
            measured["instructions"] = self.instructions()
        self.recording.unlink()  # that of the large tree's update has gigabytes
        self.stream.unlink()
        return measured


def scenarios_of(tree, with_updates):
    """(name, action, tree to load, tree that is stored before) of a tree. The one with changes has
    the same name followed by -changed or -update."""
    changed = [path for path in (tree.with_name(tree.name + suffix)
                                 for suffix in ("-changed", "-update")) if path.exists()]
    yield "create", "create", tree, None
    yield "create over itself", "create", tree, tree
    if with_updates:
        yield "update, unchanged", "update", tree, tree
    if with_updates and changed:
        yield "update, changed", "update", changed[0], tree


def measure_tree(tree, arguments, is_large):
    """The scenarios of a tree and their figures. The recording run of each is not timed: it has
    read the files once before the first round, so that all are read from memory."""
    files = sum(1 for _ in tree.rglob("index.json"))
    scenarios = {}
    for name, action, loaded, stored in scenarios_of(tree, not is_large or arguments.large_updates):
        rounds = 1 if is_large and action == "update" else (
            arguments.large_rounds if is_large else arguments.rounds)
        log(f"{tree.name}, {name}")
        folder = arguments.work / "recordings" / f"{tree.name}-{name}".replace(" ", "-")
        scenario = Scenario(arguments.build, folder, action, loaded, stored, is_large)
        # Under valgrind, the large tree would take an hour.
        with_instructions = not is_large and not (arguments.quick and files > 100)
        scenarios[name] = scenario.measure_all(rounds, with_instructions)
        scenarios[name]["loaded files"] = sum(1 for _ in loaded.rglob("index.json"))
    return {"files": files, "scenarios": scenarios}


def growth_from(small, large):
    """What each further file costs in a create on an empty store."""
    def client(tree, contender):
        runs = tree["scenarios"]["create"]["results"][contender]
        return statistics.median(result["client"] for result in runs) / tree["files"]

    def memory(tree):
        return tree["scenarios"]["create"]["memory"]["Ostrafel"]

    further = large["files"] - small["files"]
    return {"client seconds per file": {name: [client(small, name), client(large, name)]
                                        for name in ("Ostrafel", "floor")},
            "files": [small["files"], large["files"]],
            "peak memory": [memory(small), memory(large)],
            "KiB per further file": (memory(large) - memory(small)) * 1024 / further}


def measure_pieces(arguments):
    """The report of the Google Benchmark program."""
    report = arguments.work / "pieces.json"
    sandbox_server.clear()
    subprocess.run([built(arguments.build, "benchmark_pieces"), f"--benchmark_out={report}",
                    "--benchmark_out_format=json",
                    *(["--benchmark_min_time=0.01"] if arguments.quick else [])], check=True)
    return json.loads(report.read_text())


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("build", type=pathlib.Path, help="where the programs are")
    parser.add_argument("work", type=pathlib.Path, metavar="WORK")
    parser.add_argument("trees", type=pathlib.Path, nargs="+", help="trees; beside each may lie "
                        "one of the same name followed by -changed or -update; the last is "
                        "compared with the large one")
    parser.add_argument("--large", type=pathlib.Path, help="the large tree")
    parser.add_argument("--rounds", type=int, default=11)
    parser.add_argument("--large-rounds", type=int, default=3)
    parser.add_argument("--large-updates", action="store_true")
    parser.add_argument("--quick", action="store_true", help="small sizes everywhere")
    arguments = parser.parse_args()
    arguments.build, arguments.work = arguments.build.resolve(), arguments.work.resolve()
    measured = {"machine": machine.describe(arguments.build), "rounds": arguments.rounds,
                "large rounds": arguments.large_rounds, "trees": {}}

    def save():
        """After each part: a failure later on does not lose what took long."""
        (arguments.work / "results.json").write_text(json.dumps(measured, indent=1),
                                                     encoding="utf-8")

    log("start-up")
    measured["start-up"] = startup.measure(arguments.build, 10 if arguments.quick else 200)
    for tree in arguments.trees:
        measured["trees"][tree.name] = measure_tree(tree, arguments, False)
        save()
    if arguments.large:
        large = measure_tree(arguments.large, arguments, True)
        measured["per file"] = growth_from(measured["trees"][arguments.trees[-1].name], large)
        measured["trees"][arguments.large.name] = large
        save()
    log("what grows")
    measured["growth"] = growth.measure(arguments.build, arguments.work, arguments.quick)
    save()
    log("pieces")
    measured["pieces"] = measure_pieces(arguments)
    save()


if __name__ == "__main__":
    main()
