#!/usr/bin/python3
# SPDX-FileCopyrightText: 2026 The Ostrafel developers
# SPDX-License-Identifier: Apache-2.0

"""Measures runs of ostrafel-check, which needs no server: whole trees, and folders of many small
trees with a run for each. Writes the figures to a JSON file."""

import argparse
import json
import os
import pathlib
import statistics
import subprocess
import sys
import tempfile


def finish(command, process):
    """Waits for a run, which may have findings: status 1."""
    _, status, usage = os.wait4(process.pid, 0)
    process.returncode = os.waitstatus_to_exitcode(status)
    if process.returncode not in (0, 1):
        sys.exit(f"{command} failed.")
    return usage.ru_utime + usage.ru_stime


def seconds(command):
    """The processor time of a run, which other programs of the machine change least."""
    return finish(command, subprocess.Popen(command, stdout=subprocess.DEVNULL))


def peak_memory(command):
    """The MiB that a run had in memory at most. A process starts with the pages of its parent, so
    the parent here is a small one."""
    with tempfile.NamedTemporaryFile("r") as report:
        timed = ["/usr/bin/time", "-q", "-f", "%M", "-o", report.name, *command]
        finish(timed, subprocess.Popen(timed, stdout=subprocess.DEVNULL))
        return int(report.read()) / 1024


def files_of(tree):
    return sum(1 for _ in tree.rglob("index.json"))


def measure(program, name, trees, rounds):
    """A line of the table: the trees, one run after the other, this many times."""
    commands = [[str(program), str(tree)] for tree in trees]
    memory = max(peak_memory(command) for command in commands)  # has all files read once
    processor = statistics.median(sum(map(seconds, commands)) for _ in range(rounds))
    print(f"{name}: {processor * 1e3:.1f} ms", flush=True)
    return {"name": name, "files": sum(map(files_of, trees)), "processor": processor,
            "memory": memory, "rounds": rounds}


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("program", type=pathlib.Path, help="ostrafel-check")
    parser.add_argument("results", type=pathlib.Path, metavar="RESULTS", help="the JSON file")
    parser.add_argument("trees", type=pathlib.Path, nargs="+", help="whole trees")
    parser.add_argument("--mockups", type=pathlib.Path, help="a folder of many trees")
    parser.add_argument("--rounds", type=int, default=5)
    arguments = parser.parse_args()
    lines = [measure(arguments.program, tree.name, [tree], arguments.rounds)
             for tree in arguments.trees]
    if arguments.mockups:
        trees = sorted(path for path in arguments.mockups.iterdir() if path.is_dir())
        lines.append(measure(arguments.program, f"{len(trees)} mockups, a run each", trees,
                             arguments.rounds))
    arguments.results.write_text(json.dumps({"check": lines}, indent=1), encoding="utf-8")


if __name__ == "__main__":
    main()
