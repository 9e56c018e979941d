#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 The Ostrafel developers
# SPDX-License-Identifier: Apache-2.0

"""Reads as much of a recipe, or of what it includes, as those of our layer use.

  recipe.py FILE [NAME=VALUE...] -- variable NAME    prints the value of a variable
  recipe.py FILE [NAME=VALUE...] -- function NAME    prints a function in shell, ready to be run
  recipe.py FILE [NAME=VALUE...] -- list WORD        prints what is inherited or required

NAME=VALUE are variables that BitBake would have from elsewhere, DISTRO_FEATURES say.
"""

import os
import re
import sys

ASSIGNMENT = re.compile(r'([\w:${}-]+(?:\[[\w-]+\])?)\s*(\?\?=|\?=|:=|\+=|=\+|=)\s*"(.*)"', re.DOTALL)
FUNCTION = re.compile(r"([\w:]+)\(\) \{\n(.*?)^\}\n", re.DOTALL | re.MULTILINE)
WORDS = re.compile(r"(inherit|require)\s+(.*)")


class Bitbake:
    """What expressions in recipes call."""

    class utils:  # pylint: disable=invalid-name
        @staticmethod
        def contains(name, word, yes, no, data):
            return yes if word in (data.getVar(name) or "").split() else no


class Recipe:
    def __init__(self, path, variables):
        self.variables, self.functions, self.words = dict(variables), {}, []
        with open(path, encoding="utf-8") as file:
            text = FUNCTION.sub(self.add_function, file.read()).replace("\\\n", "")
        for line in text.splitlines():
            if match := ASSIGNMENT.fullmatch(line):
                self.assign(*match.groups())
            elif match := WORDS.fullmatch(line):
                self.words.append(match.groups())
            elif line and not line.startswith("#"):
                raise SystemExit(f"{path}: what is this? {line}")

    def add_function(self, match):
        self.functions[match[1]] = match[2]
        return ""

    def assign(self, name, operator, value):
        name = self.expanded(name)
        old = self.variables.get(name)
        if operator in ("?=", "??=") and old is not None:
            return
        if operator == "+=":
            value = f"{old or ''} {value}"
        elif operator == "=+":
            value = f"{value} {old or ''}"
        self.variables[name] = value

    def getVar(self, name):  # pylint: disable=invalid-name
        value = self.variables.get(name)
        return None if value is None else self.expanded(value)

    def expanded(self, text):
        """Variables that are not known stay as they are, as BitBake leaves them."""
        text = re.sub(r"\$\{@(.+?)\}", lambda match: str(
            eval(match[1], {"bb": Bitbake, "d": self, "os": os})), text)  # pylint: disable=eval-used
        return re.sub(r"\$\{([\w:-]+)\}",
                      lambda match: match[0] if (value := self.getVar(match[1])) is None else value, text)


def main(arguments):
    split = arguments.index("--")
    recipe = Recipe(arguments[0], (pair.split("=", 1) for pair in arguments[1:split]))
    kind, name = arguments[split + 1:]
    if kind == "variable":
        print(" ".join((recipe.getVar(name) or "").split()))
    elif kind == "function":
        print(recipe.expanded(recipe.functions[name]), end="")
    else:
        print(*(recipe.expanded(words) for word, words in recipe.words if word == name))


main(sys.argv[1:])
