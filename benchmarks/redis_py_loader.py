#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 The Ostrafel developers
# SPDX-License-Identifier: Apache-2.0

"""Loads a tree as Ostrafel does, in the way in which one would write that with redis-py: for the
comparison of speed. The store that it makes of the trees here is the same."""

import json
import os
import re
import sys

import redis

PIPELINE = 2000
INCLUDED = "/usr/local/nginx/www"
RESERVED = {"&&" + name for name in (
    "AllowMethod", "CRUDprefix", "POSTValidation", "PATCHValidation", "PUTValidation", "Validation",
    "SensitiveData", "ETag", "Async", "BlockCSRGeneration", "BlockReplaceCertificate", "OwnerName",
    "Privileges", "AllowDeepMethod", "DateTime")}


def load(path):
    with open(path, encoding="utf-8-sig") as file:
        return json.load(file)


def escape(text):
    return text.replace("\\", "\\\\").replace('"', '\\"')


def render(value):
    if isinstance(value, str):
        return f'"{escape(value)}"'
    if value is None or isinstance(value, bool):
        return json.dumps(value)
    if isinstance(value, int):
        return str(max(-2**31, min(2**31 - 1, value)))
    return f"{value:f}".rstrip("0")


def derived_key(parent, name):
    key = re.sub("/+", "/", f"{parent}/{name}")
    return key if key.startswith("&&") else "&&" + key


def is_link(value):
    return len(value) == 1 and isinstance(value.get("@odata.id"), str)


class Loader:
    def __init__(self, server, merges):
        self.server, self.merges = server, merges
        self.removals, self.writes = (server.pipeline(transaction=False) for _ in range(2))
        self.visited, self.pruned = set(), set()

    def queue(self, pipeline, *command):
        pipeline.execute_command(*command)
        if len(pipeline) == PIPELINE:
            self.flush()

    def flush(self):
        self.removals.execute()
        self.writes.execute()

    # What an update removes.

    def unlink_below(self, pattern):
        for key in self.server.scan_iter(match=pattern, count=1000):
            self.queue(self.removals, "UNLINK", key)
        self.pruned.add(pattern[:-2])

    def is_pruned(self, pattern):
        return any(pattern[:place.start()] in self.pruned for place in re.finditer("/", pattern))

    def prune_key(self, key, expected):
        stored = self.server.type(key).decode()
        if stored == "none" or (expected == stored == "hash"):
            return
        self.queue(self.removals, "UNLINK", key)
        pattern = key + ("*" if key.endswith("/") else "/*")
        if stored == "list":
            first = self.server.lindex(key, 0) or b""
            if not re.match(rb"&&(Array|Object|ObjectRef) .", first):
                return
        if self.is_pruned(pattern):
            return
        self.unlink_below(pattern)
        if not pattern.startswith("&&"):
            self.unlink_below("&&" + pattern)

    def prune(self, parent, name, key, in_list, expected):
        if not self.merges:
            return
        key = key or derived_key(parent, name)
        self.prune_key(key, expected)
        records = [name] + [marker + (key if in_list else f"{name} {key}")
                            for marker in ("&&Array ", "&&ObjectRef ", "&&Object ")]
        for record in records:
            if in_list:
                self.queue(self.removals, "LREM", parent, 0, record)
            else:
                self.queue(self.removals, "HDEL", parent, record)
        if not in_list:
            for field, _ in self.server.hscan_iter(parent, match=f"&&ObjectRef {name} *"):
                self.queue(self.removals, "HDEL", parent, field)

    # What is written.

    def refer(self, parent, marker, name, target, in_list):
        if in_list:
            self.queue(self.writes, "RPUSH", parent, marker + target)
        else:
            self.queue(self.writes, "HSET", parent, f"{marker}{name} {target}", "")

    def write_value(self, parent, name, value, in_list=False):
        if isinstance(value, dict):
            self.write_object(parent, name, value, in_list)
        elif isinstance(value, list):
            self.write_array(parent, name, value, in_list)
        elif in_list:
            self.queue(self.writes, "RPUSH", parent, render(value))
        elif name in RESERVED and isinstance(value, str):
            self.queue(self.writes, "HSET", parent, name, escape(value))
        else:
            self.prune(parent, name, "", False, "none")
            self.queue(self.writes, "HSET", parent, name, render(value))

    def write_object(self, parent, name, value, in_list):
        key = derived_key(parent, name)
        if is_link(value):
            record = f"&&Object {name} {key}"
            was_inline = self.merges and not in_list and self.server.hexists(parent, record)
            if was_inline:
                self.queue(self.removals, "UNLINK", key)
            self.prune(parent, name, key, in_list, "hash")
            if was_inline and not self.is_pruned(key + "/*"):
                self.unlink_below(key + "/*")
            self.refer(parent, "&&ObjectRef ", name, value["@odata.id"], in_list)
            return
        key = value.get("@odata.id", key)
        is_written = "@odata.id" in value and key in self.visited
        if "@odata.id" in value:
            self.visited.add(key)
        self.prune(parent, name, key, in_list, "hash")
        self.refer(parent, "&&Object ", name, key, in_list)
        if not is_written:
            for member, member_value in value.items():
                self.write_value(key, member, member_value)

    def write_array(self, parent, name, value, in_list):
        key = derived_key(parent, name)
        self.prune(parent, name, key, in_list, "list")
        for index, element in enumerate(value):
            self.write_value(key, str(index), element, in_list=True)
        self.refer(parent, "&&Array ", name, key, in_list)

    def write_resource(self, key, document):
        key = document["@odata.id"] if len(document) > 1 and "@odata.id" in document else key
        included = document.get("&&File", "")
        if included.endswith(".json"):
            document = {**load(os.path.join(INCLUDED, included)), "&&File": included}
        if key in self.visited:
            return
        self.visited.add(key)
        for name, value in document.items():
            self.write_value(key, name, value)


def main():
    action, folder, uri = sys.argv[1:4]
    server = redis.Redis(unix_socket_path=os.environ["OSTRAFEL_SANDBOX_SOCKET"])
    if action == "create":
        for pattern in (uri, f"{uri}/*", f"&&{uri}/*"):
            keys = server.keys(pattern)
            if keys:
                server.delete(*keys)
    loader = Loader(server, merges=action == "update")
    for path, _, names in os.walk(folder):
        if "index.json" in names:
            relative = os.path.relpath(path, folder)
            loader.write_resource(uri if relative == "." else f"{uri}/{relative}",
                                  load(os.path.join(path, "index.json")))
    loader.flush()


if __name__ == "__main__":
    main()
