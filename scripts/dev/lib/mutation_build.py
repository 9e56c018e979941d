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

# Which tests of a program tell mutants apart, where not all do in a useful time, in the order in
# which they are run. A stage is named after its program and what is chosen of it. Programs that are
# not named here are run whole, after the first.
NOT_RUN = {"guard_tests", "model_tests", "scaling_tests"}  # counts, the model, servers
CHOSEN = {
    "unit_tests": [("", "-LargeFile.*")],  # larger than a mutant may write
    "system_tests": [("", "-RandomRuns.*:Mockups.*:Huge*:ChangingTree.*:Environment.ADecimal*")],
    "fault_tests": [("replies", "WrongReplies.*")],
    "failing_call_tests": [("", "LengthError.*:FailingLibraryCall.*:LongPipeline.*:FailingCall.*"
                            "-FailingCall.Interrupted*:FailingCall.Fgetc*")],
}
# Many runs each, and whatever they find others mostly find.
LAST = ("system_tests", "random", "RandomRuns.WithIds*:RandomRuns.WithFullBatches")

MEBIBYTE = 1 << 20


def _limit_resources(seconds):
    """A mutant may allocate, print or loop without end."""
    resource.setrlimit(resource.RLIMIT_CPU, (seconds, seconds))
    resource.setrlimit(resource.RLIMIT_AS, (4096 * MEBIBYTE, 4096 * MEBIBYTE))
    resource.setrlimit(resource.RLIMIT_FSIZE, (256 * MEBIBYTE, 256 * MEBIBYTE))
    resource.setrlimit(resource.RLIMIT_CORE, (0, 0))


def run_limited(command, seconds, environment, output):
    """The exit status of command, or None when it takes longer and is killed with its children. Each
    of its processes gets a third of these seconds of a processor. What it prints goes to the file
    output."""
    with open(output, "wb") as file:
        process = subprocess.Popen(
            command, stdin=subprocess.DEVNULL, stdout=file, stderr=subprocess.STDOUT,
            env={**os.environ, **environment}, start_new_session=True,
            preexec_fn=lambda: _limit_resources(int(seconds) // 3 + 1))
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


class Stage:
    """Some tests of one program."""

    def __init__(self, target, choice, tests):
        self.target, self.tests = target, tests
        self.program = target.rpartition("/")[2]
        self.name = self.program.removesuffix("_tests") + (f"-{choice}" if choice else "")
        self.holds = set()  # the sources whose objects are linked into the program itself
        self.runs_ostrafel = False
        self.seconds = {}  # test -> how long it takes without any mutant


class Build:
    """The build of the sources as they are, to which mutants are compared."""

    def __init__(self, repository, folder, sanitize):
        self.repository, self.folder = repository, folder
        self.flags = "-O0 -w -D_GLIBCXX_ASSERTIONS"  # an index out of range ends the program
        self.sanitize = sanitize
        self.stages = []

    def configure(self):
        """Finds the test programs; they are the stages."""
        options = [
            "-DCMAKE_BUILD_TYPE=None", "-DCMAKE_EXPORT_COMPILE_COMMANDS=ON",
            f"-DCMAKE_CXX_FLAGS={self.flags}", "-DOSTRAFEL_PRECOMPILED_HEADERS=ON",
            f"-DOSTRAFEL_SANITIZERS={'address,undefined' if self.sanitize else ''}",
        ]
        if shutil.which("ld.lld"):
            options.append("-DCMAKE_EXE_LINKER_FLAGS=-fuse-ld=lld")
        if shutil.which("ccache"):
            options.append("-DCMAKE_CXX_COMPILER_LAUNCHER=ccache")
        subprocess.run(["cmake", "-S", self.repository, "-B", self.folder, "-G", "Ninja", *options],
                       check=True, stdout=subprocess.DEVNULL)
        targets = re.findall(r"^(tests/(?:.*/)?\w+_tests): CXX_EXECUTABLE_LINKER",
                             self._ninja("targets", "all"), re.M)
        targets = [target for target in targets if target.rpartition("/")[2] not in NOT_RUN]
        rank = {name: i for i, name in enumerate(CHOSEN)}
        targets.sort(key=lambda target: rank.get(target.rpartition("/")[2], 0.5))
        self.stages = [Stage(target, choice, tests) for target in targets
                       for choice, tests in CHOSEN.get(target.rpartition("/")[2], [("", "*")])]
        self.stages += [Stage(target, *LAST[1:]) for target in targets
                        if target.endswith("/" + LAST[0])]

    def prepare(self):
        targets = {stage.target for stage in self.stages}
        subprocess.run(["cmake", "--build", self.folder, "--target", "Ostrafel",
                        *(target.rpartition("/")[2] for target in targets)],
                       check=True, stdout=subprocess.DEVNULL)
        with open(self.folder / "compile_commands.json", encoding="utf-8") as file:
            self.compile_commands = {
                os.path.relpath(entry["file"], self.repository): shlex.split(entry["command"])
                for entry in json.load(file)
                if os.path.relpath(entry["file"], self.repository).startswith("src/")
            }
        self.objects = {name: command[command.index("-o") + 1]
                        for name, command in self.compile_commands.items()}
        self._precompile_headers()
        self.link_commands = {target: self._link_command(target)
                              for target in targets | {"Ostrafel"}}
        for stage in self.stages:
            stage.holds = self._sources_in(stage.target)
            stage.runs_ostrafel = re.search(
                r"^ +(\|+ )?Ostrafel$", self._ninja("query", stage.target), re.M) is not None
        self.dependents = self._find_dependents()

    def _ninja(self, tool, *arguments):
        return subprocess.run(["ninja", "-C", self.folder, "-t", tool, *arguments], check=True,
                              capture_output=True, text=True).stdout

    def _precompile_headers(self):
        """The libraries' headers, which take most of the time of compiling a mutant."""
        included = set()
        for name in self.compile_commands:
            text = (self.repository / name).read_text(encoding="utf-8")
            included |= set(re.findall(r"^#include <.*>$", text, re.M))
        self.header = self.folder / "libraries.h"
        self.header.write_text("\n".join(sorted(included)) + "\n", encoding="utf-8")
        name = next(name for name in self.compile_commands if not name.endswith("/main.cpp"))
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

    def _link_command(self, target):
        line = next(line for line in reversed(self._ninja("commands", target).splitlines())
                    if f" -o {target} " in line)
        # ": && c++ ... && cmake -E ...", of which only the linking is wanted.
        return shlex.split(next(part for part in line.split("&&") if " -o " in part))

    def _sources_in(self, target):
        """The sources below src of which the program holds the objects, alone or out of a library."""
        command = list(self.link_commands[target])
        command[command.index("-o") + 1] = str(self.folder / "traced")
        command.append("-Wl,--trace")
        trace = subprocess.run(command, cwd=self.folder, check=True, capture_output=True,
                               text=True).stdout
        # "…/libNAME.a(FILE.o)", and of other linkers "(…/libNAME.a)FILE.o"
        members = set(re.findall(r"lib(\w+)\.a\W+([\w.]+\.o)\b", trace))
        return {name for name, object_ in self.objects.items()
                if object_ in command or re.search(r"/(\w+)\.dir/(.*)", object_).groups() in members}

    def _find_dependents(self):
        """Header -> the sources below src that include it."""
        dependents = {}
        for block in self._ninja("deps").split("\n\n"):
            lines = [line.strip() for line in block.splitlines()[1:]]
            paths = [os.path.relpath(self.folder / line, self.repository) for line in lines]
            source = next((path for path in paths if path in self.compile_commands), None)
            if source:
                for path in paths:
                    if path != source:
                        dependents.setdefault(path, []).append(source)
        return dependents

    def measure(self):
        """Runs the tests of the build itself, which must pass, and takes their times."""
        for stage in self.stages:
            times = self.folder / f"{stage.name}.json"
            status, _ = self.run_stage(stage, self.folder, 1200, more=[f"--gtest_output=json:{times}"])
            if status != 0:
                raise SystemExit(f"mutate: the {stage.name} tests fail without any mutant")
            with open(times, encoding="utf-8") as file:
                suites = json.load(file)["testsuites"]
            stage.seconds = {f"{suite['name']}.{test['name']}": float(test["time"].rstrip("s"))
                             for suite in suites for test in suite["testsuite"]}

    def run_stage(self, stage, folder, seconds, chosen=(), more=()):
        """Runs the tests of a stage, or only the chosen ones, with what was linked in folder (the
        build's own, or a mutant's). Returns the exit status, None when they take longer than
        seconds, and the names of the tests that failed."""
        program = folder / stage.program
        if not program.exists():
            program = self.folder / stage.target
        output = folder / f"{stage.name}.log"
        status = run_limited(
            [program, f"--gtest_filter={':'.join(chosen) or stage.tests}", "--gtest_fail_fast",
             "--gtest_brief=1", *more],
            seconds, {"OSTRAFEL_PROGRAM": str(folder / "Ostrafel")}, output)
        text = output.read_text(encoding="utf-8", errors="replace")
        return status, set(re.findall(r"^\[  FAILED  \] ([\w/]+\.[\w/]+)", text, re.M))


class MutantBuild:
    """One mutant in a folder of its own: only what differs from the build is compiled."""

    def __init__(self, build, folder, file, text):
        self.build, self.folder, self.file = build, folder, file
        shutil.rmtree(folder, ignore_errors=True)
        changed = folder / file
        changed.parent.mkdir(parents=True)
        changed.write_text(text, encoding="utf-8")
        self.objects = {}  # source -> its object
        self.linked = set()

    def compile(self):
        """False when it does not compile."""
        if self.file in self.build.compile_commands:
            sources = {self.file: self.folder / self.file}
        else:
            sources = {name: self.build.repository / name
                       for name in self.build.dependents.get(self.file, [])}
            self._shadow(sources)
        for name, path in sources.items():
            target = self.folder / (name.replace("/", "_") + ".o")
            command = self.build.compile_command(name, path, target)
            at = next(i for i, word in enumerate(command) if word.startswith("-I"))
            command[at:at] = [f"-I{self.folder}/src"]
            if self._run(command) != 0:
                return False
            self.objects[name] = str(target)
        return True

    def _shadow(self, sources):
        """Copies the sources that include the header, which is looked for beside them first."""
        for name in sources:
            copy = self.folder / name
            copy.parent.mkdir(parents=True, exist_ok=True)
            shutil.copyfile(self.build.repository / name, copy)
            sources[name] = copy

    def matters_to(self, stage):
        return stage.runs_ostrafel or bool(stage.holds & self.objects.keys())

    def link(self, stage):
        """False when it does not link."""
        targets = [stage.target] if stage.holds & self.objects.keys() else []
        targets += ["Ostrafel"] if stage.runs_ostrafel else []
        return all(self._link(target) for target in targets)

    def _link(self, target):
        if target in self.linked:
            return True
        self.linked.add(target)
        command = list(self.build.link_commands[target])
        command[command.index("-o") + 1] = str(self.folder / target.rpartition("/")[2])
        for name, object_ in self.objects.items():
            old = self.build.objects[name]
            if old in command:
                command[command.index(old)] = object_
            elif not name.endswith("/main.cpp"):  # before the libraries with the old object
                command.insert(command.index("-o"), object_)
        return self._run(command) == 0

    def _run(self, command):
        return subprocess.run(command, cwd=self.build.folder, stdin=subprocess.DEVNULL,
                              stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL,
                              check=False).returncode

    def discard(self):
        shutil.rmtree(self.folder, ignore_errors=True)


def repository_of(script):
    return next(folder for folder in pathlib.Path(script).resolve().parents
                if (folder / "CMakeLists.txt").exists())
