#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 The Ostrafel developers
# SPDX-License-Identifier: Apache-2.0

"""Compares what was not covered with the list of exceptions.

Usage: check_coverage.py GCOVR_JSON EXCEPTIONS

An exception is a block of lines:

  FILE
  | one or more lines of FILE that follow each other, without their indentation
  = not run: REASON
  = N branches: REASON      (of all its lines together, N branches are not taken)

The reason may go on in further lines. "#" starts a comment. The text must be in the file exactly
once, so that an exception never speaks for another place than the one it was written for.
"""

import json
import pathlib
import re
import sys
from collections import namedtuple

Entry = namedtuple("Entry", "file lines branches")  # branches: None when the lines are not run


def read_exceptions(path):
    entries, block = [], []
    for line in [*path.read_text(encoding="utf-8").splitlines(), ""]:
        line = line.strip()
        if line and not line.startswith("#"):
            block.append(line)
        elif not line and block:
            lines = [text[2:].strip() for text in block if text.startswith("| ")]
            claim = next(text for text in block if text.startswith("= "))
            match = re.match(r"= (?:not run|(\d+) branch(?:es)?): \S", claim)
            if not match or not lines:
                raise SystemExit(f"{path}: not an exception: {block}")
            entries.append(Entry(block[0], lines, int(match[1]) if match[1] else None))
            block = []
    return entries


def find_lines(source, wanted):
    """The number of the first of these lines, for each place where they are."""
    lines = [line.strip() for line in source.read_text(encoding="utf-8").splitlines()]
    return [i + 1 for i in range(len(lines)) if lines[i:i + len(wanted)] == wanted]


def read_uncovered(path):
    """(file, line number) -> how many branches are not taken, or None for a line that is not run."""
    uncovered, totals = {}, {"lines": [0, 0], "branches": [0, 0]}
    for file in json.loads(path.read_text(encoding="utf-8"))["files"]:
        for line in file["lines"]:
            if line.get("gcovr/noncode"):
                continue
            missed = sum(branch["count"] == 0 for branch in line["branches"])
            totals["lines"][0] += line["count"] > 0
            totals["lines"][1] += 1
            totals["branches"][0] += len(line["branches"]) - missed
            totals["branches"][1] += len(line["branches"])
            if line["count"] == 0:
                uncovered[file["file"], line["line_number"]] = None
            elif missed:
                uncovered[file["file"], line["line_number"]] = missed
    for name, (covered, total) in totals.items():
        print(f"{name}: {covered} of {total} covered ({100 * covered / max(1, total):.1f} %)")
    return uncovered


def main(coverage, exceptions):
    uncovered = read_uncovered(pathlib.Path(coverage))
    problems, excused = [], {"lines": 0, "branches": 0}
    for entry in read_exceptions(pathlib.Path(exceptions)):
        name = f"{entry.file}: {entry.lines[0]}"
        places = find_lines(pathlib.Path(entry.file), entry.lines)
        if len(places) != 1:
            problems.append(f"{exceptions}: {len(places)} places have the text of {name}")
            continue
        numbers = range(places[0], places[0] + len(entry.lines))
        found = {n: uncovered.pop((entry.file, n)) for n in numbers if (entry.file, n) in uncovered}
        if entry.branches is None:
            if not found or any(missed is not None for missed in found.values()):
                problems.append(f"{exceptions}: now it is run: {name}")
            excused["lines"] += len(found)
        else:
            missed = sum(count or 0 for count in found.values())
            if missed != entry.branches or None in found.values():
                problems.append(f"{exceptions}: {missed} branches of {entry.branches} are not taken: "
                                f"{name}")
            excused["branches"] += missed
    for (file, number), missed in sorted(uncovered.items()):
        text = pathlib.Path(file).read_text(encoding="utf-8").splitlines()[number - 1].strip()
        what = "not run" if missed is None else f"branches not taken: {missed}"
        problems.append(f"{file}:{number}: {what}: {text}")
    print(f"exceptions: {excused['lines']} lines, {excused['branches']} branches of lines that are run")
    print("\n".join(problems) or "Everything else is covered.")
    return 1 if problems else 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
