# SPDX-FileCopyrightText: 2026 The Ostrafel developers
# SPDX-License-Identifier: Apache-2.0
"""Judges what ostrafel-diff --format json says of the tree in the first argument, read from standard
input: that it is sorted, and that it agrees with itself and the files. Says what is wrong and ends
with status 1, or says nothing."""

import json
import os
import sys


def expect(condition, *words):
    if not condition:
        sys.exit(" ".join(str(word) for word in words).encode("ascii", "backslashreplace").decode())


def bytes_of(text):
    return text.encode("utf-8", "surrogateescape")


def order_of(one):
    record = one["record"]
    if isinstance(record, str):
        return bytes_of(one["key"]), bytes_of(record)
    return bytes_of(one["key"]), -1 if record is None else record


def value_at(document, pointer):
    for step in pointer.split("/")[1:]:
        step = step.replace("~1", "/").replace("~0", "~")
        document = document[int(step) if isinstance(document, list) else step]
    return document


def name_of(document, pointer):
    """What stands at the line of a member; nothing for an element and the root."""
    parent, slash, step = pointer.rpartition("/")
    if not slash or isinstance(value_at(document, parent), list):
        return ""
    return step.replace("~1", "/").replace("~0", "~")


def judge_place(one, tree):
    if one["line"] is None:
        expect(one["change"] == "extra" or one["file"] is None, "no line of", one)
        return
    path = os.path.join(tree, one["file"])
    with open(path if os.path.exists(path) else one["file"], "rb") as file:
        text = file.read().removeprefix(b"\xef\xbb\xbf").decode("utf-8")
    value_at(json.loads(text), one["pointer"])
    line = text.split("\n")[one["line"] - 1]
    expect(name_of(json.loads(text), one["pointer"]) in line, "not at the line of", one)


def main():
    document = json.loads(sys.stdin.buffer.read().decode("utf-8", errors="strict"))
    differences = document["differences"]
    expect(document["equal"] == (differences == []), "equal, or not")
    order = [order_of(one) for one in differences]
    expect(order == sorted(order), "not sorted")
    for one in differences:
        expect(one["stored"] != one["wanted"] or one["record"] is None, "no difference:", one)
        judge_place(one, sys.argv[1])


main()
