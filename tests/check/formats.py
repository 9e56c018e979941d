# SPDX-FileCopyrightText: 2026 The Ostrafel developers
# SPDX-License-Identifier: Apache-2.0
"""Judges what ostrafel-check prints, read from standard input. Says what is wrong and ends with
status 1, or says nothing.

  formats.py valid SCHEMA      valid against a JSON schema
  formats.py strict SCHEMA     not valid any more when a member is taken away, wherever it is
  formats.py report TREE       what --format json says of a tree agrees with itself and its files
  formats.py same TREE FILE    what --format sarif says of it agrees with that of --format json
  formats.py bytes             prints the strings that --print-store has, byte for byte
"""

import copy
import json
import os
import re
import sys
import urllib.parse

import jsonschema


def read(path):
    with open(path, encoding="utf-8", errors="strict") as file:
        return json.load(file)


def expect(condition, *words):
    if not condition:
        sys.exit(" ".join(str(word) for word in words).encode("ascii", "backslashreplace").decode())


def validator_of(path):
    schema = read(path)
    kind = jsonschema.validators.validator_for(schema)
    kind.check_schema(schema)
    return kind(schema)


def valid(document, schema):
    for error in validator_of(schema).iter_errors(document):
        expect(False, error.message[:300], "at", list(error.absolute_path))


def objects_in(value):
    """All objects of a value, itself included."""
    if isinstance(value, dict):
        yield value
    for item in value.values() if isinstance(value, dict) else value:
        if isinstance(item, (dict, list)):
            yield from objects_in(item)


def strict(document, schema):
    validator = validator_of(schema)
    changed = copy.deepcopy(document)
    tried = 0
    for holder in objects_in(changed):
        for name in list(holder):
            removed = holder.pop(name)
            expect(not validator.is_valid(changed), "valid without", name)
            holder[name] = removed
            tried += 1
    expect(tried > 20, "only", tried, "members")


def value_at(document, pointer):
    for step in pointer.split("/")[1:]:
        step = step.replace("~1", "/").replace("~0", "~")
        document = document[int(step) if isinstance(document, list) else step]
    return document


def opened(tree, file):
    """A path that both formats agree on; empty for None."""
    if file is None:
        return ""
    path = os.path.join(tree, file)
    return os.path.abspath(path if os.path.lexists(path) else file)


def judge_place(place, tree):
    expect((place["line"] is None) == (place["column"] is None), "half a position in", place)
    if place["line"] is None:
        return
    with open(opened(tree, place["file"]), "rb") as file:
        text = file.read().removeprefix(b"\xef\xbb\xbf").decode("utf-8", "surrogateescape")
    lines = text.split("\n")[place["line"] - 1:]
    rest = "\n".join([lines[0][place["column"] - 1:]] + lines[1:])
    if place["pointer"] is None:
        return
    name = place["pointer"].split("/")[-1].replace("~1", "/").replace("~0", "~")
    token, _ = json.JSONDecoder(strict=False).raw_decode(rest)
    expect(token in (name, value_at(json.loads(text), place["pointer"])), "not at", place)


def report(document, tree):
    findings = document["findings"]
    order = [(one["file"] or "", one["line"] or 0, one["column"] or 0, one["rule"])
             for one in findings]
    expect(order == sorted(order), "not sorted")
    for level in ("error", "warning", "note"):
        count = sum(one["level"] == level for one in findings)
        expect(count == document["summary"][level + "s"], "the number of each level")
    for one in findings:
        for place in [one] + one["related"]:
            judge_place(place, tree)


def file_of(location, tree):
    artifact = location["physicalLocation"]["artifactLocation"]
    if artifact["uri"] == "./":
        return ""
    path = urllib.parse.unquote(artifact["uri"], errors="surrogateescape")
    return opened(tree, path if "uriBaseId" in artifact else path.removeprefix("file://"))


def plain(message):
    """What is the same in a message with escapes and in one without."""
    return re.sub(r"\\x[0-9a-f]{2}|[^ -~]", "", message)


def same(document, tree, path):
    [run] = document["runs"]
    rules = [rule["id"] for rule in run["tool"]["driver"]["rules"]]
    told = []
    for one in run["results"]:
        expect(rules[one["ruleIndex"]] == one["ruleId"], "the wrong index")
        [location] = one["locations"]
        region = location["physicalLocation"].get("region", {})
        told.append((one["ruleId"], one["level"], file_of(location, tree),
                     region.get("startLine", 0), region.get("startColumn", 0),
                     plain(one["message"]["text"])))
    known = [(one["rule"], one["level"], opened(tree, one["file"]), one["line"] or 0,
              one["column"] or 0, plain(one["message"])) for one in read(path)["findings"]]
    expect(sorted(told) == sorted(known), "other findings than in", path)


def strings_in(value):
    if isinstance(value, str):
        yield value
    elif isinstance(value, list):
        for item in value:
            yield from strings_in(item)
    else:
        for name, item in value.items():
            yield name
            yield from strings_in(item)


def strings(document):
    for key, stored in document.items():
        [(kind, value)] = stored.items()
        expect(isinstance(value, {"hash": dict, "list": list}[kind]), "no", kind)
        for string in [key, *strings_in(value)]:
            sys.stdout.buffer.write(string.encode("utf-8", "surrogateescape") + b"\n")


def main():
    document = json.loads(sys.stdin.buffer.read().decode("utf-8", errors="strict"))
    {"valid": valid, "strict": strict, "report": report, "same": same,
     "bytes": strings}[sys.argv[1]](document, *sys.argv[2:])


main()
