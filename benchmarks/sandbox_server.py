# SPDX-FileCopyrightText: 2026 The Ostrafel developers
# SPDX-License-Identifier: Apache-2.0

"""The sandbox's Redis server, as the measurements see it."""

import contextlib
import os
import sys

try:
    import redis
except ImportError:
    sys.exit("The module redis is missing: install python3-redis, and run this with Debian's own "
             "/usr/bin/python3.")
if "OSTRAFEL_SANDBOX_SOCKET" not in os.environ:
    sys.exit("Run this inside scripts/sandbox: it empties the Redis server that it measures.")

SOCKET = os.environ["OSTRAFEL_SANDBOX_SOCKET"]
RUNTIME = os.environ["OSTRAFEL_SANDBOX_RUNTIME"]
SERVER = redis.Redis(unix_socket_path=SOCKET)


def clear():
    SERVER.flushall()


def cpu_seconds():
    """The processor time that the server has used so far."""
    used = SERVER.info("cpu")
    return used["used_cpu_user"] + used["used_cpu_sys"]


def command_statistics():
    """Name of a command -> {"calls": ..., "usec": ...} since reset_statistics."""
    return {name.partition("_")[2]: figures
            for name, figures in SERVER.info("commandstats").items()}


def reset_statistics():
    SERVER.config_resetstat()


def fill(count):
    """Adds keys that no pattern of a run matches until there are count keys."""
    pipeline = SERVER.pipeline(transaction=False)
    for number in range(SERVER.dbsize(), count):
        pipeline.set(f"filler:{number}", "")
        if len(pipeline) == 10000:
            pipeline.execute()
    pipeline.execute()


def contents():
    """The whole store in a form that can be compared: key -> hash as dict or list as list."""
    keys = SERVER.keys()
    pipeline = SERVER.pipeline(transaction=False)
    for key in keys:
        pipeline.type(key)
    types = pipeline.execute()
    for key, kind in zip(keys, types):
        if kind == b"hash":
            pipeline.hgetall(key)
        else:
            pipeline.lrange(key, 0, -1)
    return dict(zip(keys, pipeline.execute()))


@contextlib.contextmanager
def settings(**values):
    """Has the server's settings (with "_" for "-") changed inside a with statement."""
    names = {name: name.replace("_", "-") for name in values}
    before = {name: SERVER.config_get(dashed)[dashed] for name, dashed in names.items()}
    try:
        for name, value in values.items():
            SERVER.config_set(names[name], value)
        yield
    finally:
        for name, value in before.items():
            SERVER.config_set(names[name], value)
