// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "export/interruption.h"

#include <sys/socket.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <stdexcept>

namespace ostrafel {

namespace {

constexpr std::array<int, 3> kSignals = {SIGINT, SIGTERM, SIGHUP};

// What a handler may touch.
volatile std::sig_atomic_t signal_that_came = 0;
volatile std::sig_atomic_t watched_connection = -1;

// hiredis goes on waiting after EINTR: it has to be told otherwise, and so it makes no difference
// whether the signal comes before a read or in it.
void TakeSignal(int signal) {
  const int error = errno;
  signal_that_came = signal;
  (void)shutdown(watched_connection, SHUT_RDWR);
  errno = error;
}

}  // namespace

void CatchInterruptions(int connection) {
  watched_connection = connection;
  struct sigaction action = {};
  action.sa_handler = TakeSignal;  // without SA_RESTART
  (void)sigemptyset(&action.sa_mask);
  for (const int signal : kSignals) {
    struct sigaction before = {};
    (void)sigaction(signal, nullptr, &before);
    if (before.sa_handler != SIG_IGN) (void)sigaction(signal, &action, nullptr);
  }
}

bool IsInterrupted() { return signal_that_came != 0; }

void CheckInterruption() {
  if (IsInterrupted()) throw std::runtime_error("interrupted");
}

void EndByInterruption() {
  if (!IsInterrupted()) return;
  const int signal = signal_that_came;
  struct sigaction action = {};
  action.sa_handler = SIG_DFL;
  (void)sigemptyset(&action.sa_mask);
  (void)sigaction(signal, &action, nullptr);
  (void)raise(signal);
}

}  // namespace ostrafel
