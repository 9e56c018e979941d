# SPDX-FileCopyrightText: 2026 The Ostrafel developers
# SPDX-License-Identifier: Apache-2.0

"""Builds Ostrafel once and then, quickly, each mutant; runs the tests against it."""

import json
import os
import pathlib
import re
import resource
import shlex
import shutil
import signal
import subprocess
import time

SYSTEM_TESTS_LAST = "RandomRuns.*"  # many runs each, and whatever they find others mostly find
# Need data that is not everywhere, or much time without new code paths.
SYSTEM_TESTS_NEVER = "Mockups.*:Huge*:ChangingTree.*"

# The tests of one mutant: the program that they are in, which of them, which program is linked
# anew. The first two hold the tested code themselves; the last ones run the program.
STAGES = {
    "unit": ("unit_tests", "-LargeFile.*", "unit_tests"),  # larger than a mutant may write
    "store": ("store_tests", "*", "store_tests"),
    "system": ("system_tests", f"-{SYSTEM_TESTS_LAST}:{SYSTEM_TESTS_NEVER}", "Ostrafel"),
    "length": ("failing_call_tests", "LengthError.*", "Ostrafel"),
    "replies": ("fault_tests", "WrongReplies.*", "Ostrafel"),
    "random": ("system_tests", SYSTEM_TESTS_LAST, "Ostrafel"),
}

MEBIBYTE = 1 << 20


def _limit_resources():
    """A mutant may allocate or print without end."""
    resource.setrlimit(resource.RLIMIT_AS, (4096 * MEBIBYTE, 4096 * MEBIBYTE))
    resource.setrlimit(resource.RLIMIT_FSIZE, (256 * MEBIBYTE, 256 * MEBIBYTE))
    resource.setrlimit(resource.RLIMIT_CORE, (0, 0))


def run_limited(command, seconds, environment, output):
    """The exit status of command, or None when it takes longer and is killed with its children. What
    it prints goes to the file output."""
    with open(output, "wb") as file:
        process = subprocess.Popen(
            command, stdin=subprocess.DEVNULL, stdout=file, stderr=subprocess.STDOUT,
            env={**os.environ, **environment}, start_new_session=True,
            preexec_fn=_limit_resources)
    try:
        return process.wait(seconds)
    except subprocess.TimeoutExpired:
        pass
    # First a chance for the sandbox to put things back.
    for number in (signal.SIGTERM, signal.SIGKILL):
        os.killpg(process.pid, number)
        try:
            process.wait(5)
            break
        except subprocess.TimeoutExpired:
            continue
    return None


class Build:
    """The build of the sources as they are, to which mutants are compared."""

    def __init__(self, repository, folder, stages, sanitize):
        self.repository, self.folder, self.stages = repository, folder, stages
        self.flags = "-O0 -w -D_GLIBCXX_ASSERTIONS"  # an index out of range ends the program
        self.sanitize = sanitize
        self.seconds = {}

    def prepare(self):
        options = [
            "-DCMAKE_BUILD_TYPE=None", "-DCMAKE_EXPORT_COMPILE_COMMANDS=ON",
            f"-DCMAKE_CXX_FLAGS={self.flags}",
            f"-DOSTRAFEL_SANITIZERS={'address,undefined' if self.sanitize else ''}",
        ]
        if shutil.which("ccache"):
            options.append("-DCMAKE_CXX_COMPILER_LAUNCHER=ccache")
        subprocess.run(["cmake", "-S", self.repository, "-B", self.folder, "-G", "Ninja", *options],
                       check=True, stdout=subprocess.DEVNULL)
        programs = sorted({name for stage in self.stages for name in STAGES[stage][::2]})
        subprocess.run(["cmake", "--build", self.folder, "--target", *programs], check=True,
                       stdout=subprocess.DEVNULL)
        with open(self.folder / "compile_commands.json", encoding="utf-8") as file:
            self.compile_commands = {
                os.path.relpath(entry["file"], self.repository): shlex.split(entry["command"])
                for entry in json.load(file)
            }
        self._precompile_headers()
        self.link_commands = {name: self._link_command(name) for name in programs}
        self.dependents = self._find_dependents()

    def _precompile_headers(self):
        """The libraries' headers, which take most of the time of compiling a mutant."""
        included = set()
        for path in (self.repository / "src/store").iterdir():
            included |= set(re.findall(r"^#include <.*>$", path.read_text(encoding="utf-8"), re.M))
        self.header = self.folder / "libraries.h"
        self.header.write_text("\n".join(sorted(included)) + "\n", encoding="utf-8")
        name = next(name for name in self.compile_commands if name.startswith("src/store/"))
        command = self.compile_command(name, self.header, f"{self.header}.gch")
        subprocess.run(command, cwd=self.folder, check=True)

    def compile_command(self, name, path, target):
        """The command that makes target of path as the build makes an object of name."""
        command = list(self.compile_commands[name])
        command[command.index("-o") + 1] = str(target)
        at = command.index("-c")
        if str(target).endswith(".gch"):
            command[at:at] = ["-x", "c++-header"]
        else:
            command[at:at] = ["-include", str(self.header)]
        command[command.index("-c") + 1] = str(path)
        return command[1:] if command[0].endswith("ccache") else command  # no mutant comes twice

    def _link_command(self, program):
        output = subprocess.run(["ninja", "-C", self.folder, "-t", "commands", program], check=True,
                                capture_output=True, text=True).stdout
        line = [line for line in output.splitlines() if f" -o {program} " in line
                or f" -o tests/{program} " in line][-1]
        # ": && c++ ... && cmake -E ...", of which only the linking is wanted.
        return shlex.split(next(part for part in line.split("&&") if " -o " in part))

    def _find_dependents(self):
        """Header -> the sources below src that include it."""
        output = subprocess.run(["ninja", "-C", self.folder, "-t", "deps"], check=True,
                                capture_output=True, text=True).stdout
        dependents = {}
        for block in output.split("\n\n"):
            lines = [line.strip() for line in block.splitlines()[1:]]
            paths = [os.path.relpath(self.folder / line, self.repository) for line in lines]
            if paths and paths[0].startswith("src/"):
                for path in paths[1:]:
                    dependents.setdefault(path, []).append(paths[0])
        return dependents

    def measure(self):
        """Runs the tests of the build itself, which must pass, and takes their time."""
        for stage in self.stages:
            start = time.monotonic()
            if self.run_stage(stage, self.folder, 1200)[0] != 0:
                raise SystemExit(f"mutate: the {stage} tests fail without any mutant")
            self.seconds[stage] = time.monotonic() - start

    def time_limit(self, stage):
        return 20 + 4 * self.seconds[stage]

    def run_stage(self, stage, folder, seconds, chosen=()):
        """Runs the tests of a stage, or only the chosen ones, with what was linked in folder (the
        build's own, or a mutant's). Returns the exit status, None when they take longer than
        seconds, and the names of the tests that failed."""
        tests, every, linked = STAGES[stage]
        program = folder / linked
        command = [self.folder / "tests" / tests]
        if linked == tests and folder != self.folder:
            command = [program]
        command += [f"--gtest_filter={':'.join(chosen) or every}", "--gtest_fail_fast",
                    "--gtest_brief=1"]
        output = folder / f"{stage}.log"
        status = run_limited(command, seconds, {"OSTRAFEL_PROGRAM": str(program)}, output)
        text = output.read_text(encoding="utf-8", errors="replace")
        return status, set(re.findall(r"^\[  FAILED  \] (\w+\.\w+)", text, re.M))


class MutantBuild:
    """One mutant in a folder of its own: only what differs from the build is compiled."""

    def __init__(self, build, folder, file, text):
        self.build, self.folder, self.file = build, folder, file
        shutil.rmtree(folder, ignore_errors=True)
        changed = folder / file
        changed.parent.mkdir(parents=True)
        changed.write_text(text, encoding="utf-8")
        self.linked = set()

    def compile(self):
        """False when it does not compile."""
        if self.file.endswith(".cpp"):
            sources = {self.file: self.folder / self.file}
        else:
            sources = {}
            for name in self.build.dependents.get(self.file, []):
                # Beside the mutated header, because quoted includes look there first.
                sources[name] = self.build.repository / name
        self.objects = []
        for name, path in sources.items():
            target = self.folder / (name.replace("/", "_") + ".o")
            command = self.build.compile_command(name, path, target)
            at = next(i for i, word in enumerate(command) if word.startswith("-I"))
            command[at:at] = [f"-I{self.folder}/src"]
            if self._run(command) != 0:
                return False
            if not name.endswith("/main.cpp"):
                self.objects.append(str(target))
        return True

    def link(self, program):
        """False when it does not link. The new objects come before the libraries with the old."""
        if program in self.linked:
            return True
        command = list(self.build.link_commands[program])
        command[command.index("-o") + 1] = str(self.folder / program)
        at = command.index("-o")
        command[at:at] = self.objects
        self.linked.add(program)
        return self._run(command) == 0

    def _run(self, command):
        return subprocess.run(command, cwd=self.build.folder, stdin=subprocess.DEVNULL,
                              stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL,
                              check=False).returncode

    def discard(self):
        shutil.rmtree(self.folder, ignore_errors=True)


def repository_of(script):
    return pathlib.Path(script).resolve().parents[2]
