# SPDX-FileCopyrightText: 2026 The Ostrafel developers
# SPDX-License-Identifier: Apache-2.0

"""Recordings of a run's calls of hiredis (record_calls.c): making, counting and converting them."""

import os
import re
import subprocess

from programs import built


def record(build, arguments, path):
    """Runs Ostrafel with its calls recorded to path."""
    environment = {**os.environ, "LD_PRELOAD": str(built(build, "record_calls.so")),
                   "OSTRAFEL_RECORDING": str(path)}
    subprocess.run([build / "Ostrafel", *arguments], check=True, env=environment,
                   stdout=subprocess.DEVNULL)


def _texts(file):
    """The strings of a file, each of which ends with a NUL, without reading it all at once."""
    rest = b""
    while block := file.read(1 << 20):
        *texts, rest = (rest + block).split(b"\0")
        yield from texts
    # After the last NUL there may still be the letters of calls without strings.
    yield rest


def calls_of(path):
    """The calls of a recording: (kind, words of the command as hiredis makes them of a format)."""
    with open(path, "rb") as file:
        texts = _texts(file)
        for text in texts:
            # Before the letter of a call with strings stand those of calls without any.
            format_text = text.lstrip(b"G")
            for _ in range(len(text) - len(format_text)):
                yield "G", []
            if format_text:
                words = [re.sub(rb"%[sd]", lambda _: next(texts), word) if b"%" in word else word
                         for word in format_text[1:].split(b" ")]
                yield chr(format_text[0]), words


def describe(path, stream):
    """Counts commands, round trips and bytes of a recording, and writes the commands to the file
    stream in the form that redis-cli --pipe takes."""
    commands = round_trips = size = 0
    before = ""
    with open(stream, "wb") as file:
        for kind, words in calls_of(path):
            # All replies of a pipeline come after its last command: one round trip.
            if kind == "C" or (kind == "G" and before == "A"):
                round_trips += 1
            before = kind
            if kind == "G":
                continue
            commands += 1
            text = b"".join(b"$%d\r\n%s\r\n" % (len(word), word) for word in words)
            size += file.write(b"*%d\r\n%s" % (len(words), text))
    return {"commands": commands, "round trips": round_trips, "bytes": size}
