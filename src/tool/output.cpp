// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "tool/output.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>

#include "tool/tool.h"

namespace ostrafel {

void ReserveStandardDescriptors() {
  for (int descriptor = STDIN_FILENO; descriptor <= STDERR_FILENO; ++descriptor) {
    // open(2) takes the lowest number that is free: this one.
    if (fcntl(descriptor, F_GETFD) < 0) (void)open("/dev/null", O_RDONLY);
  }
}

bool WriteOutput(const std::string& text) {
  const bool is_written =
      std::fwrite(text.data(), 1, text.size(), stdout) == text.size() && std::fflush(stdout) == 0;
  if (!is_written) PrintTrouble(std::string("standard output: ") + std::strerror(errno));
  return is_written;
}

}  // namespace ostrafel
