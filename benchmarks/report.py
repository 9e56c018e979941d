#!/usr/bin/python3
# SPDX-FileCopyrightText: 2026 The Ostrafel developers
# SPDX-License-Identifier: Apache-2.0

"""Writes the figures of a run of measure.py, checking.py, differing.py or exporting.py into a Markdown
document.

A table goes between the comments "<!-- begin NAME -->" and "<!-- end NAME -->"; what lies outside
of them is written by hand and stays."""

import argparse
import json
import pathlib
import re
import statistics
import sys


def table(columns, rows):
    """Text columns are those whose first cell is not a number."""
    def is_number(cell):
        return re.fullmatch(r"[-+]?[\d.,]+|–", str(cell)) is not None

    marks = ["---:" if all(is_number(row[place]) for row in rows) else "---"
             for place in range(len(columns))]
    lines = [columns, marks, *rows]
    return "\n".join("| " + " | ".join(map(str, line)) + " |" for line in lines)


def thousands(number):
    return f"{number:,}"


def median(runs, figure):
    return statistics.median(run[figure] for run in runs)


def ratio(runs, others):
    """The median of the ratios of the wall times of each round."""
    return statistics.median(a["wall"] / b["wall"] for a, b in zip(runs, others))


def milliseconds(value):
    return f"{value * 1e3:,.1f}"


def labelled_runs(trees):
    """The label and the measurements of each run of each tree."""
    return [(f"{tree_name}, {name}", scenario) for tree_name, tree in trees.items()
            for name, scenario in tree["scenarios"].items()]


def wall_times(trees):
    others = ("redis-cli --pipe", "one at a time", "redis-py")
    rows = []
    for label, scenario in labelled_runs(trees):
        results = scenario["results"]
        ostrafel, floor, *rest = (milliseconds(median(results[name], "wall")) if name in results
                                  else "–" for name in ("Ostrafel", "floor", *others))
        rows.append([label, ostrafel, floor, f"{ratio(results['Ostrafel'], results['floor']):.2f}",
                     *rest, len(results["Ostrafel"])])
    return table(["wall time, ms", "Ostrafel", "floor", "Ostrafel ÷ floor", *others, "rounds"],
                 rows)


def resources(trees):
    rows = []
    for label, scenario in labelled_runs(trees):
        ostrafel, floor = (scenario["results"][name] for name in ("Ostrafel", "floor"))
        memory = scenario.get("memory", {}).get("Ostrafel")
        rows.append([label, *(milliseconds(median(results, figure))
                              for figure in ("client", "server") for results in (ostrafel, floor)),
                     "–" if memory is None else f"{memory:.1f}"])
    return table(["CPU time, ms", "client", "floor's client", "server", "floor's server",
                  "peak memory, MiB"], rows)


def work(trees):
    rows = []
    for label, scenario in labelled_runs(trees):
        counts = scenario["counts"]
        rows.append([label, thousands(scenario["loaded files"]),
                     *(thousands(counts[figure])
                       for figure in ("commands", "round trips", "bytes"))])
    return table(["what is sent", "files", "commands", "round trips", "bytes"], rows)


def instructions(trees):
    rows = []
    for label, scenario in labelled_runs(trees):
        if "instructions" not in scenario:
            continue
        counts = scenario["instructions"]
        main, whole, floor = (counts[kind] for kind in ("main", "whole process", "floor"))
        rows.append([label, f"{floor / 1e6:.2f}", f"{main / 1e6:.2f}", f"{main / floor:.3f}",
                     f"{whole / 1e6:.2f}", f"{whole / floor:.3f}"])
    return table(["millions of instructions", "floor", "main", "main ÷ floor", "whole process",
                  "whole process ÷ floor"], rows)


def results(measured):
    trees = measured["trees"]
    sizes = ", ".join(f"{name}: {thousands(tree['files'])} files" for name, tree in trees.items())
    return "\n\n".join(["![Wall time of Ostrafel and of other ways to load the same trees]"
                        "(performance.svg)", f"The trees: {sizes}.", wall_times(trees),
                        resources(trees), work(trees), instructions(trees)])


def per_file(measured):
    if "per file" not in measured:
        return "Not measured: there was no large tree."
    figures = measured["per file"]
    rows = []
    for contender, (small, large) in figures["client seconds per file"].items():
        rows.append([f"client CPU per file, µs, {contender}", f"{small * 1e6:.1f}",
                     f"{large * 1e6:.1f}", f"{large / small:.2f}"])
    small, large = figures["peak memory"]
    rows.append(["peak memory, MiB, Ostrafel", f"{small:.2f}", f"{large:.2f}",
                 f"{large / small:.2f}"])
    files = [f"{thousands(count)} files" for count in figures["files"]]
    return (table(["create on an empty store", *files, "ratio"], rows) + "\n\nPeak memory for each "
            f"further file: {figures['KiB per further file']:.2f} KiB.")


def start_up(measured):
    figures = measured["start-up"]
    labels = {"Ostrafel": "Ostrafel, to the first byte that it sends",
              "floor": "the floor, to the first byte that it sends",
              "shell pipeline": "the shell pipeline by itself, to its end",
              "no arguments": "Ostrafel without arguments, to its end"}
    times = table(["from the start of the process", "ms"],
                  [[labels[name], f"{value * 1e3:.2f}"] for name, value in
                   figures["seconds"].items()])
    calls = table(["part", "system calls", "which"],
                  [[name, count, ", ".join(f"{call}" + (f" × {times}" if times > 1 else "")
                                           for call, times in names.items())]
                   for name, count, names in figures["calls"]])
    pipeline = figures["pipeline"]
    return (f"{times}\n\n{calls}\n\nThe shell pipeline's own {pipeline['processes']} processes "
            f"make {thousands(pipeline['calls'])} system calls.")


def pieces(measured):
    rows = []
    for piece in measured["pieces"]["benchmarks"]:
        if piece.get("run_type", "iteration") == "iteration" and "real_time" in piece:
            rows.append([f"`{piece['name']}`", f"{piece['real_time']:,.1f}",
                         f"{piece['cpu_time']:,.1f}", piece["time_unit"]])
    return table(["piece", "time", "CPU time", "unit"], rows)


def check(measured):
    rows = [[line["name"], thousands(line["files"]), milliseconds(line["processor"]),
             f"{line['processor'] / line['files'] * 1e6:.1f}", f"{line['memory']:.1f}",
             line["rounds"]] for line in measured["check"]]
    return table(["tree", "files", "processor time, ms", "µs per file",
                  "peak memory, MiB", "rounds"], rows)


def beside_create(lines):
    """Runs of a companion and of a create of the same tree."""
    rows = []
    for line in lines:
        memory = f"{line['memory']:.1f}" if "memory" in line else ""
        wait = milliseconds(line["wait"]) if "wait" in line else ""
        rows.append([line["name"], milliseconds(line["wall"]), f"{line['ratio']:.2f}", memory, wait,
                     line["rounds"]])
    return table(["run", "wall time, ms", "÷ create", "peak memory, MiB",
                  "longest wait of another client, ms", "rounds"], rows)


def machine(measured):
    return table(["measured", "with"], measured["machine"])


def blocks(measured):
    """Name of a block -> its text."""
    if "check" in measured:
        return {"ostrafel-check": check(measured)}
    if "diff" in measured:
        return {"ostrafel-diff": beside_create(measured["diff"])}
    if "export" in measured:
        return {"ostrafel-export": beside_create(measured["export"])}
    made = {"results": results(measured), "per file": per_file(measured),
            "start-up": start_up(measured), "machine": machine(measured),
            "pieces": pieces(measured)}
    for grown in measured["growth"]:
        rows = [[thousands(cell) if isinstance(cell, int) else cell for cell in row]
                for row in grown["rows"]]
        made[grown["name"]] = table(grown["columns"], rows)
    return made


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("results", type=pathlib.Path, help="results.json of measure.py, or those of "
                        "checking.py, differing.py or exporting.py")
    parser.add_argument("document", type=pathlib.Path)
    arguments = parser.parse_args()
    text = arguments.document.read_text(encoding="utf-8")
    for name, block in blocks(json.loads(arguments.results.read_text(encoding="utf-8"))).items():
        begin, end = f"<!-- begin {name} -->\n", f"<!-- end {name} -->"
        if text.count(begin) != 1 or text.count(end) != 1:
            sys.exit(f"report: {arguments.document} has no place for \"{name}\".")
        before, _, rest = text.partition(begin)
        text = f"{before}{begin}\n{block}\n\n{end}{rest.partition(end)[2]}"
    arguments.document.write_text(text, encoding="utf-8")


if __name__ == "__main__":
    main()
