// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// The removal of a tree of store/server.h.
#include <stdexcept>

#include "base/message.h"
#include "layout/layout.h"
#include "memory/memory_server.h"
#include "memory/search.h"
#include "store/server.h"

namespace ostrafel {

unsigned RemoveResourceTree(Server* server, const std::string& uri) {
  try {
    for (const std::string& pattern : TreePatterns(uri)) {
      for (const std::string& key : MatchingNames(server->keys, UpToNul(pattern))) {
        server->keys.erase(std::string(UpToNul(key)));  // a key with a NUL in it stays
      }
    }
  } catch (const std::length_error& error) {
    PrintLengthError(error.what());
    return 0;
  }
  return 1;
}

}  // namespace ostrafel
