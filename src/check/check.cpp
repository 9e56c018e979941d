// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "check/check.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <functional>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <tuple>

#include "check/key_rules.h"
#include "check/link_rules.h"
#include "check/load_rules.h"
#include "check/redfish_rules.h"
#include "check/store_rules.h"
#include "check/update_rules.h"
#include "text/text_file.h"

namespace ostrafel {

namespace {

constexpr std::array kRulesOfDocuments = {
    CheckLoadRulesIn, CheckStoreRulesIn, CheckKeyRulesIn, CheckLinkRulesIn, CheckRedfishRulesIn,
};
constexpr std::array kRulesOfTrees = {
    CheckLoadRules, CheckStoreRules, CheckKeyRules, CheckUpdateRules, CheckRedfishRules,
};

// Calls take with each place of the findings that is to be located.
template <typename Take>
void ForEachPlace(Findings* findings, const Take& take) {
  const auto take_place = [&](Place* place) {
    if (place->pointer && place->position.line == 0) take(place);
  };
  for (Finding& finding : *findings) {
    take_place(&finding.place);
    for (Related& related : finding.related) take_place(&related.place);
  }
}

// Keeps the first finding of several with one rule and place: those of a file that several include.
void DropRepeated(Findings* findings) {
  std::set<std::tuple<RuleId, std::string, std::string, Spot>> told;
  const auto is_repeated = [&](const Finding& finding) {
    const Place& place = finding.place;
    return place.pointer &&
           !told.insert({finding.rule, place.path, *place.pointer, place.spot}).second;
  };
  findings->erase(std::remove_if(findings->begin(), findings->end(), is_repeated), findings->end());
}

}  // namespace

Findings CheckTree(const Survey& survey, const TakeProgress& tell) {
  Findings findings;
  for (std::size_t i = 0; i < survey.files.size(); ++i) {
    tell(i, survey.files.size());
    const std::optional<Subject> subject = ReadSubject(survey, i);
    if (!subject) continue;
    for (const auto& check : kRulesOfDocuments) check(survey, *subject, &findings);
  }
  for (const auto& check : kRulesOfTrees) check(survey, &findings);
  DropRepeated(&findings);
  return findings;
}

void LocateFindings(Findings* findings) {
  std::map<std::string, std::set<std::string>> pointers;  // of each path
  ForEachPlace(findings, [&](Place* place) { pointers[place->path].insert(*place->pointer); });
  std::map<std::string, std::map<std::string, ValuePosition>> positions;
  for (const auto& [path, wanted] : pointers) {
    positions[path] = LocateValues(ReadTextFile(path), wanted);
  }
  ForEachPlace(findings, [&](Place* place) {
    const auto& of_path = positions[place->path];
    const auto found = of_path.find(*place->pointer);
    if (found == of_path.end()) return;
    place->position = place->spot == Spot::kName ? found->second.name : found->second.value;
  });
  // Refers to the texts, which are long.
  const auto order = [](const Finding& a) {
    const Place& place = a.place;
    return std::make_tuple(std::string_view(place.path), place.position.line, place.position.column,
                           std::string_view(RuleOf(a.rule).name), std::cref(place.pointer),
                           std::string_view(a.message));
  };
  std::sort(findings->begin(), findings->end(),
            [&](const Finding& a, const Finding& b) { return order(a) < order(b); });
}

}  // namespace ostrafel
