// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "check/update_rules.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "check/update_losses.h"
#include "check/update_reasons.h"
#include "tool/grouped.h"

namespace ostrafel {

namespace {

const char* NounOf(const Loss& loss) {
  if (loss.at.second == 0) return "resource";
  switch (loss.kind) {
    case NodeKind::kScalar:
      return "value";
    case NodeKind::kLink:
      return "link";
    case NodeKind::kArray:
      return "array";
    case NodeKind::kObject:
    case NodeKind::kBadId:
      break;
  }
  return "object";
}

// True when the loss follows from a key that is to be a hash and a list, which is a finding of its
// own: a load that such a key refuses drops other things as well, for no reason of theirs.
bool IsOfMixedKey(const Losses& losses, const Reason& reason) {
  return !losses.mixed_keys.empty() &&
         (reason.key.empty() || losses.mixed_keys.count(reason.key) != 0);
}

void CheckLosses(const Survey& survey, Findings* findings) {
  const Losses losses = FindLosses(survey);
  const std::vector<Reason> reasons = ReasonsOf(survey, losses.values);
  for (std::size_t i = 0; i < reasons.size(); ++i) {
    if (IsOfMixedKey(losses, reasons[i])) continue;
    const Loss& loss = losses.values[i];
    findings->push_back({RuleId::kUpdateLoses, loss.place, loss.key,
                         std::string("an update of the unchanged tree loses this ") + NounOf(loss) +
                             ", " + reasons[i].text,
                         reasons[i].related});
  }
}

void CheckSearches(const Survey& survey, Findings* findings) {
  if (survey.searches == 0) return;
  const std::size_t keys = survey.store.keys.size();
  const std::uint64_t looks = std::uint64_t{survey.searches} * keys;
  const bool is_one = survey.searches == 1;
  findings->push_back({RuleId::kUpdateSlow,
                       {},
                       std::nullopt,
                       "an update makes the server search all of its keys " +
                           (is_one ? "once, for an array"
                                   : Grouped(survey.searches) + " times, once for each array") +
                           " that holds objects, arrays or links: with the " + Grouped(keys) +
                           " keys of this tree alone it looks at " + Grouped(looks)});
}

}  // namespace

void CheckUpdateRules(const Survey& survey, Findings* findings) {
  CheckLosses(survey, findings);
  CheckSearches(survey, findings);
}

}  // namespace ostrafel
