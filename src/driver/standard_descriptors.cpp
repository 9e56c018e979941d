// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "driver/standard_descriptors.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "base/message.h"

namespace ostrafel {

bool OccupyStandardDescriptors() {
  for (int descriptor = STDIN_FILENO; descriptor <= STDERR_FILENO; ++descriptor) {
    // For an open descriptor fcntl(2) cannot fail, and open(2) returns the lowest number that is
    // free: this one, because those below it are in use by now.
    if (fcntl(descriptor, F_GETFD) >= 0 || open("/dev/null", O_RDWR) == descriptor) continue;
    PrintMessage("/dev/null: %s\n", std::strerror(errno));
    return false;
  }
  return true;
}

}  // namespace ostrafel
