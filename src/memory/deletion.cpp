// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// The deletion of store/server.h.
#include <string>

#include "memory/memory_server.h"
#include "memory/search.h"
#include "store/server.h"

namespace ostrafel {

unsigned DeleteMatchingKeys(Server* server, const std::string& pattern) {
  for (const std::string& key : MatchingNames(server->keys, UpToNul(pattern))) {
    server->keys.erase(std::string(UpToNul(key)));  // a key with a NUL in it stays
  }
  return 1;
}

}  // namespace ostrafel
