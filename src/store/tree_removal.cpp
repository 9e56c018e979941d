// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "store/tree_removal.h"

#include <stdexcept>

#include "base/message.h"
#include "layout/layout.h"

namespace ostrafel {

unsigned RemoveResourceTree(Server* server, const std::string& uri) {
  try {
    for (const std::string& pattern : TreePatterns(uri)) {
      if (DeleteMatchingKeys(server, pattern) == 0) return 0;
    }
  } catch (const std::length_error& error) {
    PrintLengthError(error.what());
    return 0;
  }
  return 1;
}

}  // namespace ostrafel
