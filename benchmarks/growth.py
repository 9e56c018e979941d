#!/usr/bin/python3
# SPDX-FileCopyrightText: 2026 The Ostrafel developers
# SPDX-License-Identifier: Apache-2.0

"""Measures what grows faster than the work: by itself, prints the tables; see measure."""

import argparse
import json
import pathlib
import statistics
import subprocess
import sys
import tempfile

import sandbox_server
from programs import HERE, URI, run

REPEATS = 5
NOTHING_REMOVED = {"&&ETag": "1"}  # an update that looks for nothing to remove, to be subtracted
# What is written at once, where one would take too little time to be seen.
ARRAYS = 10
MEMBERS = 50


class Bench:
    """Runs of Ostrafel on trees of one resource."""

    def __init__(self, build, folder):
        self.program, self.folder = build / "Ostrafel", pathlib.Path(folder)

    def load(self, action, document):
        """Loads a tree of one resource and returns what it took, the server's counts included."""
        (self.folder / "index.json").write_text(json.dumps(document), encoding="utf-8")
        return self.load_tree(action, self.folder)

    def make_rack(self, nodes):
        """A generated tree."""
        tree = self.folder / f"rack{nodes}"
        subprocess.run([sys.executable, HERE / "generate_tree.py", tree, "--nodes", str(nodes)],
                       check=True, stdout=subprocess.DEVNULL)
        return tree

    def load_tree(self, action, tree):
        sandbox_server.reset_statistics()
        result = run([self.program, action, tree, URI])
        result["commands"] = sandbox_server.command_statistics()
        return result

    def median(self, action, document, repeats=REPEATS):
        """The run that took the median time."""
        results = [self.load(action, document) for _ in range(repeats)]
        return sorted(results, key=lambda result: result["wall"])[repeats // 2]

    def update_cost(self, document):
        """Seconds that the update of a document takes beyond that of nothing, and its counts."""
        costs = []
        for _ in range(REPEATS):
            nothing = self.load("update", NOTHING_REMOVED)
            result = self.load("update", document)
            costs.append(result["wall"] - nothing["wall"])
        return statistics.median(costs), result["commands"]


def calls(commands, name):
    return commands.get(name, {"calls": 0})["calls"]


def doubling(first, last):
    while first <= last:
        yield first
        first *= 2


def milliseconds(seconds):
    return f"{seconds * 1e3:.2f}"


def stale_subtrees(bench, is_quick):
    """An update that writes arrays of objects again, beside more and more keys of others."""
    document = {f"Array{number}": [{"Name": "element"}] for number in range(ARRAYS)}
    sandbox_server.clear()
    rows = []
    for keys in doubling(4096, 8192 if is_quick else 262144):
        sandbox_server.fill(keys)
        bench.load("create", document)
        seconds, commands = bench.update_cost(document)
        rows.append([keys, f"{calls(commands, 'scan') / ARRAYS:.0f}",
                     milliseconds(seconds / ARRAYS)])
    return {"name": "stale subtrees", "rows": rows,
            "columns": ["keys in the store", "SCANs for each array", "ms for each array"]}


def hash_walks(bench, is_quick):
    """An update that writes some members of one resource that has more and more."""
    rows = []
    for fields in doubling(64, 256 if is_quick else 8192):
        members = [(f"Member{number}", number) for number in range(fields - len(NOTHING_REMOVED))]
        row = [fields]
        for entries in (128, 2 * fields):
            with sandbox_server.settings(hash_max_listpack_entries=entries):
                sandbox_server.clear()
                bench.load("create", {**NOTHING_REMOVED, **dict(members)})
                seconds, commands = bench.update_cost(dict(members[:MEMBERS]))
            row += [f"{calls(commands, 'hscan') / MEMBERS:.1f}",
                    milliseconds(seconds / MEMBERS)]
        rows.append(row)
    return {"name": "hash walks", "rows": rows,
            "columns": ["fields of the hash", "HSCANs for each member", "ms for each member",
                        "HSCANs, compact", "ms, compact"]}


def long_lists(bench, is_quick):
    """An update that writes one array of links again."""
    rows = []
    for elements in doubling(500, 1000 if is_quick else 8000):
        document = {"Members": [{"@odata.id": f"{URI}/Systems/{number}"}
                                for number in range(elements)]}
        row = [elements]
        for size in (-2, -5):
            with sandbox_server.settings(list_max_listpack_size=size):
                sandbox_server.clear()
                bench.load("create", document)
                result = bench.median("update", document, 1 if elements > 2000 else 3)
            removals = result["commands"]["lrem"]
            row += [milliseconds(result["wall"]), f"{removals['usec'] / removals['calls']:.1f}"]
        row.insert(1, removals["calls"])
        rows.append(row)
    return {"name": "long lists", "rows": rows,
            "columns": ["elements", "LREMs", "ms for the run", "µs for each LREM",
                        "ms, nodes of 64 KiB", "µs, nodes of 64 KiB"]}


def keys_at_create(bench, is_quick):
    """A create of one resource beside more and more keys of others."""
    sandbox_server.clear()
    rows = []
    for keys in doubling(4096, 8192 if is_quick else 262144):
        sandbox_server.fill(keys)
        result = bench.median("create", {"Name": "alone"})
        found = result["commands"]["keys"]
        rows.append([keys, found["calls"], milliseconds(result["wall"]),
                     milliseconds(found["usec"] / 1e6)])
    return {"name": "KEYS at create", "rows": rows,
            "columns": ["keys in the store", "KEYS", "ms for the run", "of it ms for KEYS"]}


def whole_trees(bench, is_quick):
    """Generated racks of more and more nodes: create, and update over itself."""
    rows = []
    for nodes in doubling(1, 2 if is_quick else 16):
        tree = bench.make_rack(nodes)
        sandbox_server.clear()
        created = bench.load_tree("create", tree)
        keys = sandbox_server.SERVER.dbsize()
        updated = bench.load_tree("update", tree)
        scans = updated["commands"]["scan"]
        rows.append([sum(1 for _ in tree.rglob("index.json")), keys, f"{created['wall']:.2f}",
                     f"{updated['wall']:.2f}", scans["calls"], f"{scans['usec'] / 1e6:.2f}"])
    return {"name": "whole trees", "rows": rows,
            "columns": ["folders", "keys", "create, s", "update, s", "SCANs of the update",
                        "s in SCAN"]}


def server_settings(bench, is_quick):
    """The update of one rack under the settings that keep hashes compact."""
    tree = bench.make_rack(1 if is_quick else 6)
    rows = []
    for entries, value in ((128, 64), (1024, 64), (128, 512), (1024, 512)):
        with sandbox_server.settings(hash_max_listpack_entries=entries,
                                     hash_max_listpack_value=value):
            sandbox_server.clear()
            bench.load_tree("create", tree)
            memory = sandbox_server.SERVER.info("memory")["used_memory_dataset"] / 2**20
            results = [bench.load_tree("update", tree) for _ in range(3)]
        rows.append([entries, value, calls(results[-1]["commands"], "hscan"),
                     f"{statistics.median(result['wall'] for result in results):.2f}",
                     f"{memory:.1f}"])
    return {"name": "server settings", "rows": rows,
            "columns": ["hash-max-listpack-entries", "hash-max-listpack-value", "HSCANs",
                        "update, s", "MiB of data"]}


def measure(build, work, is_quick):
    """Tables: name, columns and rows."""
    tables = []
    for table in (stale_subtrees, hash_walks, server_settings, long_lists, keys_at_create,
                  whole_trees):
        with tempfile.TemporaryDirectory(dir=work) as folder:
            tables.append(table(Bench(build, folder), is_quick))
        print(f"  {tables[-1]['name']}: {tables[-1]['rows'][-1]}", flush=True)
    return tables


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("build", type=pathlib.Path, help="where Ostrafel is")
    parser.add_argument("--quick", action="store_true")
    arguments = parser.parse_args()
    for table in measure(arguments.build.resolve(), "/tmp", arguments.quick):
        print(table["name"], table["columns"], *table["rows"], sep="\n")


if __name__ == "__main__":
    main()
