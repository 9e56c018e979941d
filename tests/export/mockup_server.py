# SPDX-FileCopyrightText: 2026 The Ostrafel developers
# SPDX-License-Identifier: Apache-2.0
"""Follows each link of two trees, an original and what an export of it wrote, through a small server
of mockups, and compares what comes.

Usage: mockup_server.py ORIGINAL EXPORTED FORM WWW

ORIGINAL has its index.json on top, and includes files below WWW. FORM says where EXPORTED has it:
"short" for on top, "long" for below redfish/v1. Prints how many resources came and from how many
links, or says what is wrong and ends with status 1."""

import http.client
import http.server
import json
import math
import os
import sys
import threading

SERVICE = "/redfish/v1"
LOWEST, HIGHEST = -(2**31), 2**31 - 1


def expect(condition, *words):
    if not condition:
        sys.exit(" ".join(str(word) for word in words).encode("ascii", "backslashreplace").decode())


# --- The server ----------------------------------------------------------------------------------


def file_of(tree, is_short, target):
    """The file that the server of mockups answers a request with. It knows no escapes: a folder is
    found when it has the very name that the client writes. Nothing when that leads elsewhere."""
    path = target.partition("#")[0].partition("?")[0].strip("/")
    if is_short:
        service = SERVICE.strip("/")
        if path != service and not path.startswith(service + "/"):
            return None
        path = path[len(service) :].strip("/")
    return os.path.join(tree, path, "index.json")


class Handler(http.server.BaseHTTPRequestHandler):
    protocol_version = "HTTP/1.1"
    wbufsize = -1  # an answer in one piece, for which no client waits

    def do_GET(self):
        path = file_of(self.server.tree, self.server.is_short, self.path)
        body = b""
        is_there = path is not None and os.path.isfile(path)
        if is_there:
            with open(path, "rb") as file:
                body = file.read()
        self.send_response(200 if is_there else 404)
        self.send_header("Content-Type", "application/json")
        self.send_header("Content-Length", str(len(body)))
        self.end_headers()
        self.wfile.write(body)

    def log_message(self, *_):
        pass


class Server(http.server.ThreadingHTTPServer):
    daemon_threads = True

    def __init__(self, tree, is_short):
        super().__init__(("127.0.0.1", 0), Handler)
        self.tree = tree
        self.is_short = is_short
        threading.Thread(target=self.serve_forever, daemon=True).start()


class Client:
    def __init__(self, tree, is_short):
        self.server = Server(tree, is_short)
        self.connection = http.client.HTTPConnection(*self.server.server_address)

    def get(self, target):
        """The document, or nothing."""
        self.connection.putrequest("GET", target)
        self.connection.endheaders()
        response = self.connection.getresponse()
        body = response.read()
        return json.loads(body.decode("utf-8-sig")) if response.status == 200 else None


# --- The comparison ------------------------------------------------------------------------------


def objects_in(value):
    """All objects in a value, outer ones first."""
    if isinstance(value, dict):
        yield value
    inner = value.values() if isinstance(value, dict) else value if isinstance(value, list) else ()
    for one in inner:
        yield from objects_in(one)


def links_in(document):
    """The keys that a client finds in a document."""
    for one in objects_in(document):
        link = one.get("@odata.id")
        if isinstance(link, str) and link.startswith(SERVICE):
            yield link


def included(document, www):
    """What a load makes of a document that names another file."""
    name = document.get("&&File", "") if isinstance(document, dict) else ""
    if not name.endswith(".json"):
        return document
    with open(os.path.join(www, name), "rb") as file:
        return json.loads(file.read())


def pointed(document, target):
    """What the fragment of a link points to, and whether there is such a thing."""
    value = document
    for step in target.partition("#")[2].split("/")[1:]:
        step = step.replace("~1", "/").replace("~0", "~")
        if isinstance(value, list) and step.isdigit() and int(step) < len(value):
            value = value[int(step)]
        elif isinstance(value, dict) and step in value:
            value = value[step]
        else:
            return None, False
    return value, True


def is_number(value):
    return isinstance(value, (int, float)) and not isinstance(value, bool)


def is_as_reserved(name, wanted, given):
    """Of a member for the web service the store does not tell a word or a number from a string."""
    return name.startswith("&&") and not isinstance(wanted, str) and given == json.dumps(wanted)


class Comparison:
    """Knows which objects of the original stand in several places."""

    def __init__(self, documents):
        self.variants = {}
        for document in documents:
            for one in objects_in(document):
                if isinstance(one.get("@odata.id"), str) and len(one) > 1:
                    self.variants.setdefault(one["@odata.id"], []).append(one)

    def is_same(self, wanted, given):
        if is_number(wanted):
            if not is_number(given) or isinstance(wanted, int) != isinstance(given, int):
                return False
            if isinstance(wanted, int):
                return given == min(max(wanted, LOWEST), HIGHEST)
            return math.isclose(wanted, given, rel_tol=1e-5, abs_tol=1e-5)
        if isinstance(wanted, list):
            return (
                isinstance(given, list)
                and len(wanted) == len(given)
                and all(map(self.is_same, wanted, given))
            )
        if not isinstance(wanted, dict):
            return type(wanted) is type(given) and wanted == given
        if not isinstance(given, dict):
            return False
        if self.has_same_members(wanted, given):
            return True
        # The store has one object of a key: that of the file that was loaded first.
        others = self.variants.get(wanted.get("@odata.id"), [])
        return len(others) > 1 and any(self.has_same_members(one, given) for one in others)

    def has_same_members(self, wanted, given):
        return wanted.keys() == given.keys() and all(
            self.is_same(value, given[name]) or is_as_reserved(name, value, given[name])
            for name, value in wanted.items()
        )

    def first_difference(self, wanted, given, path=""):
        """For the message: the place of the innermost difference."""
        if isinstance(wanted, dict) and isinstance(given, dict) and wanted.keys() == given.keys():
            pairs = [(name, wanted[name], given[name]) for name in wanted]
        elif isinstance(wanted, list) and isinstance(given, list) and len(wanted) == len(given):
            pairs = zip(range(len(wanted)), wanted, given)
        else:
            pairs = ()
        for name, one, other in pairs:
            if not self.is_same(one, other):
                return self.first_difference(one, other, f"{path}/{name}")
        return f"at '{path}': {json.dumps(wanted)} became {json.dumps(given)}"


def all_documents(tree, www):
    for folder, _, names in os.walk(tree):
        if "index.json" in names:
            with open(os.path.join(folder, "index.json"), "rb") as file:
                yield included(json.loads(file.read().decode("utf-8-sig")), www)


def main():
    original_tree, exported_tree, form, www = sys.argv[1:]
    expect(form in ("short", "long"), "neither short nor long:", form)
    original = Client(original_tree, True)
    exported = Client(exported_tree, form == "short")
    comparison = Comparison(all_documents(original_tree, www))
    seen, rest, resources, links = {SERVICE}, [SERVICE], 0, 0
    while rest:
        target = rest.pop()
        wanted = original.get(target)
        if wanted is None:
            continue  # leads nowhere in the original, either
        wanted = included(wanted, www)
        given = exported.get(target)
        expect(given is not None, target, "cannot be followed any more")
        expect(given == exported.get(target + "/"), target, "has another document with a slash")
        expect(
            comparison.is_same(wanted, given),
            target,
            "is another document,",
            comparison.first_difference(wanted, given),
        )
        if pointed(wanted, target)[1]:
            expect(pointed(given, target)[1], target, "points nowhere any more")
        resources += 1
        for link in list(links_in(wanted)) + list(links_in(given)):
            links += 1
            if link not in seen:
                seen.add(link)
                rest.append(link)
    print(resources, links)


main()
