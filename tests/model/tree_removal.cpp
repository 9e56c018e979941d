// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "model/tree_removal.h"

#include <optional>
#include <vector>

namespace model {
namespace {

// The keys that the server lists; none for any answer that is not an array of strings.
std::vector<std::string> MatchingKeys(RunState& run, const std::string& pattern) {
  const std::optional<Reply> reply = Ask(run, {"keys", pattern});
  std::vector<std::string> keys;
  if (!reply || reply->type != Reply::Type::kArray) return keys;
  for (const Reply& key : reply->elements) {
    if (key.type != Reply::Type::kString) return {};
    keys.push_back(key.text);
  }
  return keys;
}

}  // namespace

bool RemoveTree(RunState& run, const std::string& uri) {
  const std::string below = uri.back() == '/' ? uri + "*" : uri + "/*";
  for (const std::string& pattern : {uri, below, "&&" + below}) {
    std::vector<Command> deletions;
    for (const std::string& key : MatchingKeys(run, pattern)) deletions.push_back({"del", key});
    if (deletions.empty()) continue;
    if (run.endpoint.Exchange(deletions).size() < deletions.size()) {
      run.err += "Failed to get reply\n";
      return false;
    }
  }
  return true;
}

}  // namespace model
