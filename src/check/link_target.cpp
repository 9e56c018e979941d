// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "check/link_target.h"

#include <algorithm>
#include <cstddef>
#include <string_view>
#include <utility>

#include "check/removal.h"
#include "layout/resource_id.h"
#include "loading/resource_loading.h"
#include "text/json_pointer.h"
#include "tool/quoted.h"

namespace ostrafel {

namespace {

struct Target {
  std::string key;
  std::optional<std::string> fragment;  // after the "#"
};

Target Split(const std::string& text, HasQuery has_query) {
  Target target = {text, std::nullopt};
  const std::size_t hash = text.find('#');
  if (hash != std::string::npos) {
    target.fragment = text.substr(hash + 1);
    target.key.erase(hash);
  }
  if (has_query == HasQuery::kYes) {
    target.key.erase(std::min(target.key.find('?'), target.key.size()));
  }
  return target;
}

bool IsInTree(const Survey& survey, const std::string& key) {
  return survey.request.uri.empty() || Removal(survey.request.uri).Takes(key);
}

// The key that differs from this one by a slash at the end only; empty when there is none.
std::string KeyBesideSlash(const Survey& survey, const std::string& key) {
  std::string other = key;
  if (!other.empty() && other.back() == '/') {
    other.pop_back();
  } else {
    other += '/';
  }
  return IsKey(survey, other) ? other : "";
}

// Why nothing is stored at key.
TargetProblem Dangling(const Survey& survey, const std::string& key) {
  if (key.empty()) return {false, "names nothing", {}};
  TargetProblem problem = {false, "leads to " + Quoted(key) + ", where nothing is stored: ", {}};
  const auto listed = survey.files_by_listed_key.find(key);
  if (listed != survey.files_by_listed_key.end()) {
    const TreeFile& file = survey.files[listed->second];
    if (file.key == key) {
      problem.text += "the file of that folder is empty";
      problem.related.push_back({{file.path, ""}, "the file"});
      return problem;
    }
    problem.text += "the folder exists, but its file says that it is " + Quoted(file.key);
    problem.related.push_back({{file.path, ChildPointer("", IdMember)}, "what the file says"});
  } else if (const std::string other = KeyBesideSlash(survey, key); !other.empty()) {
    problem.text += "there is " + Quoted(other) + ", but a slash at the end makes it another key";
  } else if (!IsInTree(survey, key)) {
    problem.text += "it lies outside of " + Quoted(survey.request.uri);
  } else {
    problem.text += "no file and no object of the tree has that key";
  }
  return problem;
}

// The document of a file, as it is written; null when there is none. Without an outline, which
// would cost as much as the document is large.
const json_t* RootOf(const Survey& survey, std::size_t file, LinkedDocuments* linked) {
  const auto [document, is_new] = linked->try_emplace(file);
  if (is_new) {
    const TreeFile& tree_file = survey.files[file];
    Resource resource = ReadResource(tree_file.path, tree_file.listed_key);
    if (resource.end == LoadEnd::kDone) IncludeInResource(&resource);
    if (resource.end == LoadEnd::kDone) document->second = std::move(resource.file.root);
  }
  return document->second.get();
}

// True when somebody claims the key, and something else than its emptiness keeps it out of the
// store. That is told where it happens.
bool IsLost(const Survey& survey, const std::string& key, LinkedDocuments* linked) {
  const auto claims = survey.claims.find(key);
  if (claims == survey.claims.end()) return false;
  const Claim& claim = claims->second.front();
  const json_t* root = RootOf(survey, claim.file, linked);
  return json_object_size(ValueAt(root, claim.pointer)) != 0;
}

// True when the fragment leads somewhere in value.
bool Leads(const json_t* value, const std::string& fragment) {
  const std::optional<std::string> pointer = DecodePercents(fragment);
  return pointer && ValueAt(value, *pointer) != nullptr;
}

// True when the target's fragment leads somewhere, as far as is known.
bool HasFragment(const Survey& survey, const Subject& subject, const Target& target,
                 LinkedDocuments* linked) {
  const std::string& fragment = *target.fragment;
  if (target.key.empty()) return Leads(subject.root.get(), fragment);
  const auto claims = survey.claims.find(target.key);
  if (claims == survey.claims.end() || survey.unread_keys.count(target.key) != 0) return true;
  const Claim& claim = claims->second.front();
  if (claim.file == subject.file) {
    return Leads(ValueAt(subject.root.get(), claim.pointer), fragment);
  }
  const json_t* root = RootOf(survey, claim.file, linked);
  return root == nullptr || Leads(ValueAt(root, claim.pointer), fragment);
}

bool IsLetter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }

bool IsOfScheme(char c) {
  constexpr std::string_view others = "0123456789+-.";
  return IsLetter(c) || others.find(c) != std::string_view::npos;
}

}  // namespace

std::optional<TargetProblem> ProblemOf(const Survey& survey, const Subject& subject,
                                       const std::string& target, HasQuery has_query,
                                       LinkedDocuments* linked) {
  // Files are missing from the list when a folder could not be read.
  if (survey.listing.end != LoadEnd::kDone || IsKey(survey, target)) return std::nullopt;
  const Target parts = Split(target, has_query);
  const bool is_own = parts.key.empty() && parts.fragment;
  if (!is_own && !IsKey(survey, parts.key)) {
    if (IsLost(survey, parts.key, linked)) return std::nullopt;
    return Dangling(survey, parts.key);
  }
  if (!parts.fragment || HasFragment(survey, subject, parts, linked)) return std::nullopt;
  const std::string place = is_own ? "this document" : "what is stored at " + Quoted(parts.key);
  return TargetProblem{true, "leads nowhere: " + place + " has no " + Quoted(*parts.fragment), {}};
}

bool IsElsewhere(const std::string& target) {
  if (target.compare(0, 2, "//") == 0) return true;
  const std::string scheme = target.substr(0, target.find(':'));
  return scheme.size() < target.size() && !scheme.empty() && IsLetter(scheme.front()) &&
         std::all_of(scheme.begin(), scheme.end(), IsOfScheme);
}

}  // namespace ostrafel
