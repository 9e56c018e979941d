// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "check/key_rules.h"

#include <cstddef>
#include <string>
#include <vector>

#include "check/key_case.h"
#include "check/key_characters.h"
#include "check/removal.h"
#include "layout/resource_id.h"
#include "loading/resource_loading.h"
#include "text/json_pointer.h"
#include "tool/quoted.h"

namespace ostrafel {

namespace {

// Who wins, and by what.
std::string SentenceOfClaims(const std::string& key, const std::vector<Claim>& claims) {
  std::string sentence;
  if (claims[0].file != claims[1].file) {
    sentence = "another file writes " + Quoted(key) +
               ", too, and is loaded first because its folder happens to be listed first";
  } else {
    const bool is_root = claims[0].pointer.empty();
    sentence = (is_root ? "the root of this file" : "an object further up in this file") +
               (" writes " + Quoted(key)) + ", too, and comes first";
  }
  sentence += ", so the members here are lost";
  const std::size_t others = claims.size() - 2;
  return others == 0 ? sentence : sentence + ", like those of " + std::to_string(others) + " more";
}

void CheckClaims(const Survey& survey, Findings* findings) {
  for (const auto& [key, claims] : survey.claims) {
    if (claims.size() < 2) continue;
    Finding finding = {RuleId::kKeyClaimedTwice, PlaceOf(survey, claims[1]), key,
                       SentenceOfClaims(key, claims)};
    finding.related.push_back({PlaceOf(survey, claims[0]), "the first claim, which is stored"});
    for (std::size_t i = 2; i < claims.size(); ++i) {
      finding.related.push_back({PlaceOf(survey, claims[i]), "another claim, lost as well"});
    }
    findings->push_back(std::move(finding));
  }
}

bool DifferByASlash(const std::string& a, const std::string& b) {
  return a + "/" == b || b + "/" == a;
}

// Compares what the file says of itself with where it stands.
void CheckPath(const TreeFile& file, Findings* findings) {
  const Resource resource = ReadResource(file.path, file.listed_key);
  const json_t* root = resource.file.root.get();
  const char* id = json_string_value(json_object_get(root, IdMember));
  if (id == nullptr || id == file.listed_key) return;
  const bool is_slash = DifferByASlash(id, file.listed_key);
  std::string sentence = "the file says that it is " + Quoted(id) + ", ";
  // What has no other member is stored as its folder says.
  const bool is_ignored = resource.key == file.listed_key;
  if (is_ignored) {
    sentence += "but holds nothing else and is stored as " + Quoted(file.listed_key) +
                ", which its folder stands for";
  } else if (is_slash) {
    sentence += "and its folder that it is " + Quoted(file.listed_key) +
                ": two keys, though only a slash at the end differs";
  } else {
    sentence += "and is stored as that, but its folder stands for " + Quoted(file.listed_key);
  }
  findings->push_back({is_slash ? RuleId::kKeyTrailingSlash : RuleId::kKeyNotPath,
                       {file.path, ChildPointer("", IdMember)},
                       resource.key,
                       std::move(sentence)});
}

bool IsInStore(const Survey& survey, const std::string& key) {
  return survey.store.keys.find(key) != survey.store.keys.end();
}

void CheckClaimsOutsideUri(const Survey& survey, Findings* findings) {
  const std::string& uri = survey.request.uri;
  if (uri.empty()) return;
  const Removal removal(uri);
  for (const auto& [key, claims] : survey.claims) {
    if (removal.Takes(key) || !IsInStore(survey, key)) continue;
    findings->push_back({RuleId::kKeyOutsideUri, PlaceOf(survey, claims.front()), key,
                         "a create of " + Quoted(uri) + " does not remove " + Quoted(key) +
                             ", so what an older tree stored there stays and is mixed with this"});
  }
}

// The parts of resources have keys of their own, which a URI that is written with two slashes in a
// row does not take though it takes the resource's.
void CheckPartsOutsideUri(const Survey& survey, const Subject& subject,
                          const std::vector<bool>& is_stored, Findings* findings) {
  const std::string& uri = survey.request.uri;
  if (uri.empty()) return;
  const Removal removal(uri);
  const Outline& outline = subject.outline;
  std::vector<std::size_t> around(outline.size());  // the claim that a node is a part of
  std::vector<bool> is_told(outline.size());        // of a claim
  for (std::size_t i = 1; i < outline.size(); ++i) {
    const Node& node = outline[i];
    around[i] = node.has_own_id ? i : around[node.parent];
    const bool is_part = !node.has_own_id && is_stored[i] &&
                         (node.kind == NodeKind::kObject || node.kind == NodeKind::kArray);
    if (!is_part || removal.Takes(node.key) || is_told[around[i]]) continue;
    if (!removal.Takes(outline[around[i]].key) || !IsInStore(survey, node.key)) continue;
    is_told[around[i]] = true;
    const Claim claim = {subject.file, PointerOf(outline, around[i])};
    findings->push_back({RuleId::kKeyOutsideUri, PlaceOf(survey, claim), node.key,
                         "a create of " + Quoted(uri) + " does not remove " + Quoted(node.key) +
                             ", a part of this, so what an older tree stored there stays and is "
                             "mixed with this"});
  }
}

}  // namespace

void CheckKeyRulesIn(const Survey& survey, const Subject& subject, Findings* findings) {
  const std::vector<bool> is_stored = StoredNodes(survey, subject);
  CheckPartsOutsideUri(survey, subject, is_stored, findings);
  CheckGlobsInNames(survey, subject, is_stored, findings);
  CheckBlanksInNames(survey, subject, is_stored, findings);
}

void CheckKeyRules(const Survey& survey, Findings* findings) {
  CheckClaims(survey, findings);
  for (const TreeFile& file : survey.files) CheckPath(file, findings);
  CheckClaimsOutsideUri(survey, findings);
  CheckGlobsInKeys(survey, findings);
  CheckKeyCase(survey, findings);
}

}  // namespace ostrafel
