// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "check/link_rules.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "base/affixes.h"
#include "check/link_target.h"
#include "layout/resource_id.h"
#include "text/json_pointer.h"

namespace ostrafel {

namespace {

// True for the names of members that hold URIs of resources. What is pushed to is no resource.
bool IsUriMember(std::string_view name) {
  if (name == "HttpPushUri" || name == "MultipartHttpPushUri") return false;
  return EndsWith(name, "Uri") || EndsWith(name, "URI") || EndsWith(name, "@Redfish.ActionInfo");
}

// The local path that a node holds as the URI of a resource; null when it holds none.
const char* LocalUri(const Node& node) {
  if (node.name == nullptr || !json_is_string(node.value) || !IsUriMember(node.name)) {
    return nullptr;
  }
  const std::string_view text = json_string_value(node.value);
  const bool is_local = text.substr(0, 1) == "/" && text.substr(0, 2) != "//";
  return is_local ? text.data() : nullptr;
}

Place PlaceOfLink(const Survey& survey, const Subject& subject, std::size_t node) {
  return PlaceOf(survey, subject, ChildPointer(PointerOf(subject.outline, node), IdMember));
}

void CheckLink(const Survey& survey, const Subject& subject, std::size_t i, LinkedDocuments* linked,
               Findings* findings) {
  const Node& node = subject.outline[i];
  if (IsElsewhere(node.key)) return;
  std::optional<TargetProblem> problem =
      ProblemOf(survey, subject, node.key, HasQuery::kNo, linked);
  if (!problem) return;
  findings->push_back({problem->is_fragment ? RuleId::kLinkFragment : RuleId::kLinkDangling,
                       PlaceOfLink(survey, subject, i), subject.outline[node.parent].key,
                       "the link " + problem->text, std::move(problem->related)});
}

void CheckUri(const Survey& survey, const Subject& subject, std::size_t i, LinkedDocuments* linked,
              Findings* findings) {
  const Node& node = subject.outline[i];
  const char* uri = LocalUri(node);
  if (uri == nullptr) return;
  std::optional<TargetProblem> problem = ProblemOf(survey, subject, uri, HasQuery::kYes, linked);
  if (!problem) return;
  findings->push_back({problem->is_fragment ? RuleId::kLinkFragment : RuleId::kLinkUri,
                       PlaceOf(survey, subject, i), subject.outline[node.parent].key,
                       "the URI " + problem->text, std::move(problem->related)});
}

// Target -> the first link to it, of one array.
using LinksOfArray = std::unordered_map<std::string_view, std::size_t>;

void CheckRepetition(const Survey& survey, const Subject& subject, std::size_t i,
                     LinksOfArray* links, Findings* findings) {
  const Node& node = subject.outline[i];
  const auto [first, is_new] = links->emplace(node.key, i);
  if (is_new) return;
  findings->push_back({RuleId::kLinkRepeated,
                       PlaceOfLink(survey, subject, i),
                       subject.outline[node.parent].key,
                       "the array has a link to \"" + node.key + "\" before this one",
                       {{PlaceOfLink(survey, subject, first->second), "the first link to it"}}});
}

}  // namespace

void CheckLinkRulesIn(const Survey& survey, const Subject& subject, Findings* findings) {
  const std::vector<bool> is_stored = StoredNodes(survey, subject);
  std::unordered_map<std::size_t, LinksOfArray> arrays;
  LinkedDocuments linked;
  for (std::size_t i = 1; i < subject.outline.size(); ++i) {
    if (!is_stored[i]) continue;
    const Node& node = subject.outline[i];
    if (node.kind == NodeKind::kScalar) CheckUri(survey, subject, i, &linked, findings);
    if (node.kind != NodeKind::kLink) continue;
    CheckLink(survey, subject, i, &linked, findings);
    if (node.name == nullptr) {
      CheckRepetition(survey, subject, i, &arrays[node.parent], findings);
    }
  }
}

}  // namespace ostrafel
