// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "export/inclusion_check.h"

#include "export/folders.h"
#include "play/play.h"

namespace ostrafel {

bool ComesBack(const std::string& path, const std::string& listed_key, const Contents& contents) {
  const LoadRequest request = {LoadAction::kCreate, path, listed_key, kDocumentName};
  Server server;
  const Played played = PlayLoad(&server, request, ListTree(request), OnFailure::kStop);
  if (played.status != 0 || server.keys.size() != contents.size()) return false;
  for (const auto& [entry, value] : contents) {
    const auto key = server.keys.find(entry->first);
    if (key == server.keys.end() || !(key->second == value)) return false;
  }
  return true;
}

}  // namespace ostrafel
