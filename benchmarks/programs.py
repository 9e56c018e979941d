# SPDX-FileCopyrightText: 2026 The Ostrafel developers
# SPDX-License-Identifier: Apache-2.0

"""Runs of programs beside the sandbox's server, and what they took."""

import os
import pathlib
import subprocess
import sys
import tempfile
import time

import sandbox_server

URI = "/redfish/v1"
HERE = pathlib.Path(__file__).resolve().parent


def as_text(command):
    return [str(part) for part in command]


def run(command, status=0, **settings):
    """Runs a command to its end, which must be that exit status: the time that it took, and
    processor time on both sides. That of the client includes the processes that it started."""
    before = sandbox_server.cpu_seconds()
    start = time.perf_counter()
    process = subprocess.Popen(as_text(command), stdout=subprocess.PIPE, text=True, **settings)
    printed = process.stdout.read()
    _, ended, usage = os.wait4(process.pid, 0)
    wall = time.perf_counter() - start
    process.returncode = os.waitstatus_to_exitcode(ended)
    process.stdout.close()
    if process.returncode != status:
        sys.exit(f"{command[0]} failed.")
    return {"wall": wall, "client": usage.ru_utime + usage.ru_stime,
            "server": sandbox_server.cpu_seconds() - before, "printed": printed}


def peak_memory(command, status=0, **settings):
    """The MiB that a command, which must end with that status, had in memory at most. A process starts with the pages of its parent,
    so the parent here is a small one."""
    with tempfile.NamedTemporaryFile("r") as report:
        timed = ["/usr/bin/time", "-q", "-f", "%M", "-o", report.name, *as_text(command)]
        if subprocess.run(timed, stdout=subprocess.DEVNULL, **settings).returncode != status:
            sys.exit(f"{command[0]} failed.")
        return int(report.read()) / 1024


def instructions(command, function=None):
    """The instructions that a command executes in user space, or only those inside a function."""
    toggle = [] if function is None else [f"--toggle-collect={function}"]
    with tempfile.NamedTemporaryFile("r") as report:
        subprocess.run(["valgrind", "-q", "--tool=callgrind", *toggle,
                        f"--callgrind-out-file={report.name}", *as_text(command)],
                       check=True, stdout=subprocess.DEVNULL)
        return next(int(line.split()[1]) for line in report if line.startswith("totals:"))


def built(build, name):
    """The path of a program or library that scripts/dev/benchmark builds."""
    path = build / name
    if not path.exists():
        sys.exit(f"{path} is missing: scripts/dev/benchmark builds it.")
    return path
