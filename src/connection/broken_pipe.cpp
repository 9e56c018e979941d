// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "connection/broken_pipe.h"

#include <csignal>

namespace ostrafel {

namespace {

extern "C" void DoNothing(int /*signal*/) {}

}  // namespace

void SurviveBrokenPipe() {
  struct sigaction action = {};
  action.sa_handler = DoNothing;
  action.sa_flags = SA_RESTART;
  (void)sigemptyset(&action.sa_mask);
  (void)sigaction(SIGPIPE, &action, nullptr);
}

}  // namespace ostrafel
