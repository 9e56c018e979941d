// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "check/store_rules.h"

#include <cstddef>
#include <cstdlib>
#include <optional>
#include <string>
#include <unordered_set>
#include <utility>
#include <vector>

#include "layout/value_rendering.h"
#include "text/json_positions.h"
#include "text/text_file.h"

namespace ostrafel {

namespace {

// The longest number that a sentence shows whole.
constexpr std::size_t kShownDigits = 32;

std::string Shortened(const std::string& number) {
  if (number.size() <= kShownDigits) return number;
  return number.substr(0, kShownDigits) + "... (" + std::to_string(number.size()) + " characters)";
}

// What there is to say of an integer; nothing when it is stored as it is.
std::optional<std::string> ClampedInteger(const json_t* value) {
  const std::string written = std::to_string(json_integer_value(value));
  const std::string stored = RenderValue(value);
  if (stored == written) return std::nullopt;
  return "the integer " + written + " does not fit into 32 bits and is stored as " + stored;
}

// What there is to say of a real; nothing when the stored text is the same number.
std::optional<std::string> RoundedReal(const json_t* value) {
  const std::string stored = RenderValue(value);
  if (std::strtod(stored.c_str(), nullptr) == json_real_value(value)) return std::nullopt;
  return "the number needs more than six digits after the point and is stored as " +
         Shortened(stored);
}

// What there is to say of a member's value; nothing when its name is not reserved.
std::optional<std::string> ReservedValue(const Node& node) {
  if (node.name == nullptr || !IsReservedProperty(node.name)) return std::nullopt;
  if (json_is_string(node.value)) return std::nullopt;
  return "the value of the reserved member \"" + std::string(node.name) +
         "\" is no string, so that it is stored like that of any other member";
}

// Calls report with a rule and a sentence for all that the store changes of one value.
template <typename ReportChange>
void CheckValue(const Node& node, const ReportChange& report) {
  if (json_is_integer(node.value)) {
    report(RuleId::kStoreIntegerClamped, ClampedInteger(node.value));
  } else if (json_is_real(node.value)) {
    report(RuleId::kStoreRealRounded, RoundedReal(node.value));
  }
  report(RuleId::kStoreReservedType, ReservedValue(node));
}

Finding DuplicateFinding(const std::string& path, const DuplicateMember& member) {
  const auto place_of = [&](const Position& position) {
    return Place{path, member.pointer, Spot::kName, position};
  };
  Finding finding = {RuleId::kStoreDuplicateMember, place_of(member.names.back()), std::nullopt,
                     "the object has " + std::to_string(member.names.size()) +
                         " members of this name, and only the value of the last one is stored"};
  for (std::size_t i = 0; i + 1 < member.names.size(); ++i) {
    finding.related.push_back({place_of(member.names[i]), "the same name, whose value is lost"});
  }
  return finding;
}

void CheckDuplicates(const std::string& path, Findings* findings) {
  for (const DuplicateMember& member : FindDuplicateMembers(ReadTextFile(path))) {
    findings->push_back(DuplicateFinding(path, member));
  }
}

}  // namespace

void CheckStoreRulesIn(const Survey& survey, const Subject& subject, Findings* findings) {
  const Outline& outline = subject.outline;
  const std::vector<bool> is_stored = StoredNodes(survey, subject);
  for (std::size_t i = 1; i < outline.size(); ++i) {
    if (!is_stored[i]) continue;
    const std::size_t parent = outline[i].parent;
    CheckValue(outline[i], [&](RuleId rule, std::optional<std::string> message) {
      if (!message) return;
      findings->push_back(
          {rule, PlaceOf(survey, subject, i), outline[parent].key, std::move(*message)});
    });
  }
}

void CheckStoreRules(const Survey& survey, Findings* findings) {
  std::unordered_set<std::string> included;
  for (const TreeFile& file : survey.files) {
    // A text that jansson refused has no members.
    if (file.end != LoadEnd::kNotObject) CheckDuplicates(file.path, findings);
    const bool includes = file.text_path != file.path;
    if (includes && included.insert(file.text_path).second) {
      CheckDuplicates(file.text_path, findings);
    }
  }
}

}  // namespace ostrafel
