#!/usr/bin/python3
# SPDX-FileCopyrightText: 2026 The Ostrafel developers
# SPDX-License-Identifier: Apache-2.0

"""Measures runs of ostrafel-diff beside a create of the same tree, inside scripts/sandbox. Writes
the figures to a JSON file."""

import argparse
import json
import pathlib
import statistics

import programs
import sandbox_server
from waits import with_waits


class Measurement:
    """The commands that are measured, for one tree and its changed form."""

    def __init__(self, arguments, tree, changed):
        self.diff = programs.built(arguments.build, "ostrafel-diff")
        loader = programs.built(arguments.build, "Ostrafel")
        self.create = [loader, "create", tree, programs.URI]
        self.name = tree.name
        self.lines = [
            ("ostrafel-diff, equal", [self.diff, tree, programs.URI], 0),
            ("ostrafel-diff, 1 % of the files changed", [self.diff, changed, programs.URI], 1),
            ("ostrafel-diff --apply of that", [self.diff, "--apply", changed, programs.URI], 0),
        ]

    def measure(self, rounds):
        """The lines of the table: medians over the rounds, in each of which all commands run, and
        medians of the ratios to the create of the same round. What others wait is measured in runs
        of its own, as the other client takes time of the server."""
        walls = {name: [] for name, _, _ in self.lines}
        waits = {name: [] for name, _, _ in self.lines}
        creates = []
        memory = {}
        for _ in range(rounds):
            sandbox_server.clear()
            creates.append(programs.run(self.create)["wall"])
            for name, command, status in self.lines:
                walls[name].append(programs.run(command, status=status)["wall"])
            programs.run(self.create)
            for name, command, status in self.lines:
                waits[name].append(with_waits(command, status)["wait"])
        programs.run(self.create)
        for name, command, status in self.lines:
            memory[name] = programs.peak_memory(command, status=status)
        result = [{"name": f"{self.name}, create", "wall": statistics.median(creates), "ratio": 1,
                   "rounds": rounds}]
        for name, _, _ in self.lines:
            ratios = [wall / create for wall, create in zip(walls[name], creates)]
            result.append({"name": f"{self.name}, {name}", "wall": statistics.median(walls[name]),
                           "ratio": statistics.median(ratios), "memory": memory[name],
                           "wait": statistics.median(waits[name]), "rounds": rounds})
        for line in result:
            print(f"{line['name']}: {line['wall'] * 1e3:.1f} ms, {line['ratio']:.2f}", flush=True)
        return result


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("build", type=pathlib.Path, help="the folder of the programs")
    parser.add_argument("results", type=pathlib.Path, metavar="RESULTS", help="the JSON file")
    parser.add_argument("small", type=pathlib.Path, help="a tree, and beside it NAME-changed")
    parser.add_argument("--large", type=pathlib.Path, help="likewise, with --large-rounds")
    parser.add_argument("--rounds", type=int, default=11)
    parser.add_argument("--large-rounds", type=int, default=3)
    arguments = parser.parse_args()
    lines = []
    for tree, rounds in ((arguments.small, arguments.rounds),
                         (arguments.large, arguments.large_rounds)):
        if tree:
            changed = tree.with_name(tree.name + "-changed")
            lines += Measurement(arguments, tree, changed).measure(rounds)
    arguments.results.write_text(json.dumps({"diff": lines}, indent=1), encoding="utf-8")


if __name__ == "__main__":
    main()
