// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "check/load_rules.h"

#include <cstddef>
#include <string>
#include <vector>

#include "check/key_types.h"
#include "check/load_files.h"
#include "check/lost_members.h"
#include "check/uncontested_nodes.h"
#include "layout/resource_id.h"
#include "text/json_pointer.h"

namespace ostrafel {

namespace {

// The last member of the root, whose failure ends the load; 0 when there is none.
std::size_t LastMember(const Outline& outline) {
  std::size_t member = outline.size() - 1;
  while (member != 0 && outline[member].parent != 0) member = outline[member].parent;
  return member;
}

// Where an object has an "@odata.id" that is no string.
void AddIdFinding(const Survey& survey, const Subject& subject, std::size_t node, bool ends_load,
                  Findings* findings) {
  const Outline& outline = subject.outline;
  const std::string pointer = ChildPointer(PointerOf(outline, node), IdMember);
  const std::string problem = "the \"@odata.id\" of the object is no string, ";
  findings->push_back({RuleId::kLoadIdType, PlaceOf(survey, subject, pointer),
                       outline[outline[node].parent].key,
                       problem + (ends_load ? "and the load ends at this file"
                                            : "and the object is left out without a message")});
}

// Reports the bad ids that the writer may come to, and returns where it stops.
Stops CheckIds(const Survey& survey, const Subject& subject, const std::vector<bool>& is_stored,
               Findings* findings) {
  const Outline& outline = subject.outline;
  const std::size_t last_member = LastMember(outline);
  Stops stops;
  std::size_t member = 0;
  for (std::size_t i = 1; i < outline.size(); ++i) {
    if (outline[i].parent == 0) member = i;
    if (outline[i].kind != NodeKind::kBadId || !is_stored[outline[i].parent]) continue;
    stops.try_emplace(member, i);
    AddIdFinding(survey, subject, i, member == last_member, findings);
  }
  return stops;
}

}  // namespace

void CheckLoadRulesIn(const Survey& survey, const Subject& subject, Findings* findings) {
  const std::vector<bool> is_stored = UncontestedNodes(survey, subject);
  if (!is_stored[0]) return;
  const Stops stops = CheckIds(survey, subject, is_stored, findings);
  // What else is lost of a file that ends the load is no secret.
  if (stops.count(LastMember(subject.outline)) != 0) return;
  CheckLostMembers(survey, subject, is_stored, stops, findings);
  CheckReplacedMembers(survey, subject, findings);
}

void CheckLoadRules(const Survey& survey, Findings* findings) {
  MergeSharedLists(findings);
  CheckListing(survey, findings);
  CheckFiles(survey, findings);
  CheckKeyTypes(survey, findings);
}

}  // namespace ostrafel
