// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// The shell's commands.
#include <cstdio>

#include "faults/interposer/next.h"
#include "faults/interposer/plan.h"

extern "C" {

std::FILE* popen(const char* command, const char* mode) {
  static auto* const next = failing_calls::Next<std::FILE*(const char*, const char*)>("popen");
  return failing_calls::Fails(failing_calls::kPopen) ? nullptr : next(command, mode);
}

int pclose(std::FILE* pipe) {
  static auto* const next = failing_calls::Next<int(std::FILE*)>("pclose");
  const bool fails = failing_calls::Fails(failing_calls::kPclose);
  const int status = next(pipe);
  return fails ? -1 : status;
}

}  // extern "C"
