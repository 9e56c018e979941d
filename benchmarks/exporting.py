#!/usr/bin/python3
# SPDX-FileCopyrightText: 2026 The Ostrafel developers
# SPDX-License-Identifier: Apache-2.0

"""Measures runs of ostrafel-export beside the create that made the store, inside scripts/sandbox.
Writes the figures to a JSON file."""

import argparse
import json
import os
import pathlib
import shutil
import statistics
import subprocess
import tempfile

import programs
import sandbox_server
from waits import with_waits

MEMORY = pathlib.Path("/dev/shm")


def is_tmpfs(folder):
    kinds = dict(line.split()[1:3] for line in
                 pathlib.Path("/proc/self/mounts").read_text(encoding="utf-8").splitlines())
    return kinds.get(str(folder)) == "tmpfs" and os.access(folder, os.W_OK)


class Target:
    """A place to export to: a folder of a new name each time. File systems are slow where many
    files were just removed, so that nothing is removed before the end, unless it is in memory."""

    def __init__(self, name, parent, is_cleared):
        self.name = name
        self.is_cleared = is_cleared
        self.top = pathlib.Path(tempfile.mkdtemp(prefix="exported-", dir=parent))
        self.count = 0

    def fresh(self):
        if self.is_cleared and self.count:
            shutil.rmtree(self.top / str(self.count), ignore_errors=True)
        self.count += 1
        return self.top / str(self.count)

    def remove(self):
        shutil.rmtree(self.top, ignore_errors=True)


class Measurement:
    """A create of a tree, and exports of the store that it makes."""

    def __init__(self, arguments, tree, targets):
        self.export = programs.built(arguments.build, "ostrafel-export")
        loader = programs.built(arguments.build, "Ostrafel")
        self.create = [loader, "create", tree, programs.URI]
        self.name = tree.name
        self.targets = targets
        self.status = 0

    def command(self, target):
        return [self.export, "-q", programs.URI, target.fresh()]

    def probe(self):
        """Learns whether the store holds something that may not come back: the status tells."""
        sandbox_server.clear()
        programs.run(self.create)
        command = programs.as_text(self.command(self.targets[0]))
        ended = subprocess.run(command, stderr=subprocess.DEVNULL, check=False)
        self.status = min(ended.returncode, 1)

    def measure(self, rounds):
        """The lines of the table: medians over the rounds, in each of which all commands run, and
        medians of the ratios to the create of the same round. What others wait is measured in runs
        of its own, as the other client takes time of the server."""
        self.probe()
        creates = []
        walls = {target.name: [] for target in self.targets}
        waits = {target.name: [] for target in self.targets}
        memory = {}
        quiet = {"status": self.status, "stderr": subprocess.DEVNULL}
        for _ in range(rounds):
            sandbox_server.clear()
            os.sync()  # what was written before is not to be waited for
            creates.append(programs.run(self.create)["wall"])
            for target in self.targets:
                walls[target.name].append(programs.run(self.command(target), **quiet)["wall"])
            for target in self.targets:
                waits[target.name].append(with_waits(self.command(target), **quiet)["wait"])
        for target in self.targets:
            memory[target.name] = programs.peak_memory(self.command(target), **quiet)
        sandbox_server.clear()
        result = [{"name": f"{self.name}, create", "wall": statistics.median(creates), "ratio": 1,
                   "memory": programs.peak_memory(self.create), "rounds": rounds}]
        for target in self.targets:
            taken = walls[target.name]
            result.append({"name": f"{self.name}, ostrafel-export {target.name}",
                           "wall": statistics.median(taken),
                           "ratio": statistics.median(wall / create for wall, create
                                                      in zip(taken, creates)),
                           "memory": memory[target.name],
                           "wait": statistics.median(waits[target.name]), "rounds": rounds})
        for line in result:
            wait = f", others wait {line['wait'] * 1e3:.1f} ms" if "wait" in line else ""
            print(f"{line['name']}: {line['wall'] * 1e3:.1f} ms, {line['ratio']:.2f}, "
                  f"{line['memory']:.1f} MiB{wait}", flush=True)
        return result


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("build", type=pathlib.Path, help="the folder of the programs, whose file "
                        "system is the disk")
    parser.add_argument("results", type=pathlib.Path, metavar="RESULTS", help="the JSON file")
    parser.add_argument("trees", type=pathlib.Path, nargs="+", metavar="TREE")
    parser.add_argument("--large", type=pathlib.Path, help="one more tree, with --large-rounds")
    parser.add_argument("--rounds", type=int, default=11)
    parser.add_argument("--large-rounds", type=int, default=3)
    arguments = parser.parse_args()
    targets = [Target("to the disk", arguments.build, is_cleared=False)]
    if is_tmpfs(MEMORY):
        targets.insert(0, Target("to memory", MEMORY, is_cleared=True))
    lines = []
    try:
        for tree in arguments.trees:
            lines += Measurement(arguments, tree, targets).measure(arguments.rounds)
        if arguments.large:
            lines += Measurement(arguments, arguments.large, targets).measure(
                arguments.large_rounds)
    finally:
        for target in targets:
            target.remove()
    arguments.results.write_text(json.dumps({"export": lines}, indent=1), encoding="utf-8")


if __name__ == "__main__":
    main()
