// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "check/uncontested_nodes.h"

#include <cstddef>

namespace ostrafel {

namespace {

// True when nobody claims the key of the node, which has one of its own, before the node does.
bool IsFirstClaim(const Survey& survey, const Subject& subject, std::size_t node) {
  const auto found = survey.claims.find(subject.outline[node].key);
  if (found == survey.claims.end()) return true;
  const Claim& first = found->second.front();
  return first.file == subject.file && first.pointer == PointerOf(subject.outline, node);
}

}  // namespace

std::vector<bool> UncontestedNodes(const Survey& survey, const Subject& subject) {
  const Outline& outline = subject.outline;
  std::vector<bool> stored(outline.size());
  for (std::size_t i = 0; i < outline.size(); ++i) {
    const bool has_own_key = i == 0 || outline[i].has_own_id;
    const bool is_around = i == 0 || stored[outline[i].parent];
    stored[i] = is_around && (!has_own_key || IsFirstClaim(survey, subject, i));
  }
  return stored;
}

}  // namespace ostrafel
