// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "check/uncontested_nodes.h"

#include <cstddef>

namespace ostrafel {

namespace {

// True when nobody else writes the members of the node: an object that is given up claims nothing.
bool IsUncontested(const Survey& survey, const Subject& subject, std::size_t node) {
  return !ClaimsKey(subject.outline, node) || IsFirstClaim(survey, subject, node) ||
         survey.claims.count(subject.outline[node].key) == 0;
}

}  // namespace

std::vector<bool> UncontestedNodes(const Survey& survey, const Subject& subject) {
  const Outline& outline = subject.outline;
  std::vector<bool> stored(outline.size());
  for (std::size_t i = 0; i < outline.size(); ++i) {
    const bool is_around = i == 0 || stored[outline[i].parent];
    stored[i] = is_around && IsUncontested(survey, subject, i);
  }
  return stored;
}

}  // namespace ostrafel
