# SPDX-FileCopyrightText: 2026 The Ostrafel developers
# SPDX-License-Identifier: Apache-2.0

"""What happens between the start of Ostrafel and its first command.

A socket of ours takes the place of the server's, and the moment counts in which the first bytes
arrive there. For comparison, each by itself: the shell pipeline that finds the server's directory;
a run without arguments, which starts the program, loads its libraries and ends; and the floor,
which is the same pipeline and connection in a C program that loads hiredis and jansson only."""

import collections
import contextlib
import os
import pathlib
import re
import socket
import statistics
import subprocess
import tempfile
import time

import sandbox_server
from programs import URI, as_text, built

PIPELINE = ("dirname $(grep -m 1 '^unixsocket ' /etc/redis/redis.conf |                 "
            "awk '{print $2}') | tr -d '\\n'")


def spawn(command):
    quiet = [(os.POSIX_SPAWN_OPEN, number, "/dev/null", os.O_RDWR, 0) for number in (0, 1, 2)]
    command = as_text(command)
    return os.posix_spawn(command[0], command, os.environ, file_actions=quiet)


def seconds_to_end(command):
    start = time.perf_counter()
    os.waitpid(spawn(command), 0)
    return time.perf_counter() - start


def seconds_to_command(listener, command):
    """From the start of the process to the first bytes that it sends."""
    start = time.perf_counter()
    process = spawn(command)
    connection, _ = listener.accept()
    connection.recv(1)
    seconds = time.perf_counter() - start
    connection.close()
    os.waitpid(process, 0)
    return seconds


@contextlib.contextmanager
def server_replaced(path):
    """Sends Ostrafel to the socket at path."""
    file = pathlib.Path(sandbox_server.RUNTIME) / "redis.unixsocket"
    before = file.read_text(encoding="utf-8")
    file.write_text(path, encoding="utf-8")
    try:
        yield
    finally:
        file.write_text(before, encoding="utf-8")


def times(build, folder, rounds):
    """Name -> median seconds, of interleaved rounds."""
    path, recorded = f"{folder}/socket", f"{folder}/recording"
    pathlib.Path(recorded).write_bytes(b"Ckeys %s\0/redfish/v1\0")
    (pathlib.Path(folder) / "tree").mkdir()
    load = [build / "Ostrafel", "create", f"{folder}/tree", URI]
    floor = [built(build, "replay"), recorded, path, f"{folder}/tree", "index.json"]
    with socket.socket(socket.AF_UNIX) as listener, server_replaced(path):
        listener.bind(path)
        listener.listen()
        listener.settimeout(10)
        measured = collections.defaultdict(list)
        for _ in range(rounds):
            measured["Ostrafel"].append(seconds_to_command(listener, load))
            measured["floor"].append(seconds_to_command(listener, floor))
            measured["shell pipeline"].append(seconds_to_end(["/bin/sh", "-c", PIPELINE]))
            measured["no arguments"].append(seconds_to_end(load[:1]))
    return {name: statistics.median(values) for name, values in measured.items()}


# The calls of a run, in order; each part ends with the first call that its pattern finds.
PARTS = (("loading the program and its libraries", "munmap"),
         ("before the shell pipeline", r"(?=pipe2?\()"),
         ("the shell pipeline, Ostrafel's side", r"wait4|waitid"),
         ("the three files that tell where the server is", r"(?=socket\()"),
         ("connecting and sending the first command", r"write|sendto|sendmsg"))


def traced(command):
    with tempfile.NamedTemporaryFile("r") as report:
        subprocess.run(["strace", "-o", report.name, *as_text(command)],
                       stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, check=False)
        return [line for line in report if re.match(r"\w+\(", line)]


def calls_by_part(build, folder):
    """[part, number of system calls, their names] for each of PARTS."""
    lines = traced([build / "Ostrafel", "create", f"{folder}/tree", URI])
    parts, place = [], 0
    for name, end in PARTS:
        names = []
        while place < len(lines):
            is_end = re.match(end, lines[place])
            if is_end and end.startswith("(?="):
                break
            names.append(lines[place].partition("(")[0])
            place += 1
            if is_end:
                break
        parts.append([name, len(names), dict(collections.Counter(names))])
    return parts


def pipeline_calls():
    """How many system calls and processes the shell pipeline takes."""
    with tempfile.NamedTemporaryFile("r") as report:
        subprocess.run(["strace", "-f", "-o", report.name, "/bin/sh", "-c", PIPELINE], check=True,
                       stdout=subprocess.DEVNULL)
        lines = [line for line in report if re.match(r"\d+ +\w+\(", line)]
    return {"calls": len(lines), "processes": len({line.split()[0] for line in lines})}


def measure(build, rounds):
    with tempfile.TemporaryDirectory(prefix="startup.", dir="/tmp") as folder:
        return {"seconds": times(build, folder, rounds), "calls": calls_by_part(build, folder),
                "pipeline": pipeline_calls()}
