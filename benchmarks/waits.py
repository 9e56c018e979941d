# SPDX-FileCopyrightText: 2026 The Ostrafel developers
# SPDX-License-Identifier: Apache-2.0

"""What another client waits while a program runs."""

import threading
import time

import redis

import programs
import sandbox_server


class Waits(threading.Thread):
    """A client that asks the server for something small, again and again, and notes how long the
    longest answer took while the program ran."""

    def __init__(self):
        super().__init__()
        self.longest = 0
        self.is_over = False

    def run(self):
        client = redis.Redis(unix_socket_path=sandbox_server.SOCKET)
        while not self.is_over:
            start = time.perf_counter()
            client.ping()
            self.longest = max(self.longest, time.perf_counter() - start)


def with_waits(command, status, **settings):
    """A run, and the longest wait of another client meanwhile."""
    waits = Waits()
    waits.start()
    try:
        measured = programs.run(command, status=status, **settings)
    finally:
        waits.is_over = True
        waits.join()
    return measured | {"wait": waits.longest}
