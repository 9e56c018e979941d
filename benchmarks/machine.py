# SPDX-FileCopyrightText: 2026 The Ostrafel developers
# SPDX-License-Identifier: Apache-2.0

"""What a figure was measured on and with."""

import json
import os
import pathlib
import platform
import re
import subprocess
import time

import redis


def first_line(*command):
    return subprocess.run(command, check=True, stdout=subprocess.PIPE,
                          text=True).stdout.partition("\n")[0]


def cached(build, variable):
    """A variable of CMake's."""
    cache = (build / "CMakeCache.txt").read_text(encoding="utf-8")
    found = re.search(rf"^{variable}:\w+=(.*)$", cache, re.MULTILINE)
    return found.group(1) if found else ""


def code_options(build):
    """The options of the compiler that change what it makes of Ostrafel."""
    commands = json.loads((build / "compile_commands.json").read_text(encoding="utf-8"))
    command = next(entry["command"] for entry in commands
                   if entry["file"].endswith("src/driver/main.cpp"))
    return " ".join(re.findall(r"(?<= )-(?:O|f|m|std=)\S*", command))


def describe(build):
    """[what, text] pairs."""
    processors = pathlib.Path("/proc/cpuinfo").read_text(encoding="utf-8")
    model = re.search(r"^(?:model name|Model|Hardware)\s*: (.*)$", processors, re.MULTILINE)
    memory = pathlib.Path("/proc/meminfo").read_text(encoding="utf-8")
    gibibytes = int(re.search(r"^MemTotal:\s*(\d+)", memory).group(1)) / 2**20
    release = platform.freedesktop_os_release().get("PRETTY_NAME", platform.system())
    return [
        ["date", time.strftime("%Y-%m-%d", time.gmtime())],
        ["machine", f"{model.group(1) if model else platform.machine()}, {os.cpu_count()} cores, "
                    f"{gibibytes:.0f} GiB of memory"],
        ["system", f"{release}, Linux {platform.release()}"],
        ["Ostrafel", first_line("git", "-c", "safe.directory=*", "describe", "--always", "--dirty",
                                "--abbrev=10")],
        ["compiler", f"{first_line(cached(build, 'CMAKE_CXX_COMPILER'), '--version')}; "
                     f"{cached(build, 'CMAKE_BUILD_TYPE')}, {code_options(build)}"],
        ["hiredis", first_line("pkg-config", "--modversion", "hiredis")],
        ["jansson", first_line("pkg-config", "--modversion", "jansson")],
        ["redis-server", first_line("redis-server", "--version").split("v=")[1].split()[0]],
        ["redis-py", f"{redis.__version__}, Python {platform.python_version()}"],
        ["valgrind", first_line("valgrind", "--version").removeprefix("valgrind-")],
    ]
