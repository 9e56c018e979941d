// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "check/redfish_references.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "check/redfish_documents.h"
#include "layout/resource_id.h"

namespace ostrafel {

namespace {

constexpr std::size_t kNobody = static_cast<std::size_t>(-1);
constexpr std::size_t kSeveral = kNobody - 1;

// A collection: what its root array "Members" lists.
struct Collection {
  std::unordered_set<std::string> members;  ///< Their "@odata.id"s, each less a slash at the end.
  Place place;                              ///< Of the array.
};

// What one pass over all documents tells. Keys are without a slash at the end.
struct References {
  std::unordered_map<std::string, std::size_t> at_folder;   ///< Key of a folder -> its file.
  std::unordered_map<std::size_t, Collection> collections;  ///< By their files.
  /// Key of a file or of its folder -> the file that refers to it, kNobody or kSeveral.
  std::unordered_map<std::string, std::size_t> referrers;
  std::vector<bool> is_known;   ///< For each file: it was read, and is no error response.
  std::vector<bool> is_exempt;  ///< For each file: nobody need refer to it.
};

// The file of the folder above that of a file; kNobody when there is none.
std::size_t FileAbove(const References& references, const TreeFile& file) {
  const std::string key = WithoutLastSlash(file.listed_key);
  const std::size_t slash = key.rfind('/');
  if (slash == std::string::npos) return kNobody;
  const auto found = references.at_folder.find(key.substr(0, slash));
  return found == references.at_folder.end() ? kNobody : found->second;
}

void NoteFiles(const Survey& survey, References* references) {
  for (std::size_t i = 0; i < survey.files.size(); ++i) {
    const TreeFile& file = survey.files[i];
    references->at_folder.emplace(WithoutLastSlash(file.listed_key), i);
    references->referrers.emplace(TargetOf(file.key), kNobody);
    references->referrers.emplace(TargetOf(file.listed_key), kNobody);
  }
  references->is_known.resize(survey.files.size());
  references->is_exempt.resize(survey.files.size());
}

void NoteCollection(const Survey& survey, const Subject& subject, References* references) {
  const json_t* root = subject.root.get();
  const json_t* members = MembersOf(root);
  // Where the collection goes on in another document, so may its members.
  if (members == nullptr || json_object_get(root, "Members@odata.nextLink") != nullptr) return;
  Collection& collection = references->collections[subject.file];
  collection.place = PlaceOf(survey, subject, "/Members");
  for (std::size_t i = 0; i < json_array_size(members); ++i) {
    const json_t* id = json_object_get(json_array_get(members, i), IdMember);
    if (json_is_string(id)) collection.members.insert(WithoutLastSlash(json_string_value(id)));
  }
}

void NoteReferences(const Subject& subject, References* references) {
  const Outline& outline = subject.outline;
  for (std::size_t i = 1; i < outline.size(); ++i) {
    const Node& node = outline[i];
    const bool is_text = node.kind == NodeKind::kScalar && json_is_string(node.value);
    // A resource's own name is no reference.
    const bool is_own_id =
        node.parent == 0 && node.name != nullptr && std::string_view(node.name) == IdMember;
    if (node.kind != NodeKind::kLink && (!is_text || is_own_id)) continue;
    const std::string_view uri =
        is_text ? std::string_view(json_string_value(node.value)) : std::string_view(node.key);
    if (uri.substr(0, 1) != "/") continue;
    const auto found = references->referrers.find(TargetOf(uri));
    if (found == references->referrers.end()) continue;
    std::size_t& referrer = found->second;
    if (referrer == kNobody) referrer = subject.file;
    if (referrer != subject.file) referrer = kSeveral;
  }
}

References ReferencesIn(const Survey& survey) {
  References references;
  NoteFiles(survey, &references);
  const std::string top = WithoutLastSlash(survey.request.uri);
  for (std::size_t i = 0; i < survey.files.size(); ++i) {
    const std::optional<Subject> subject = ReadSubject(survey, i);
    if (!subject) continue;
    const json_t* root = subject->root.get();
    const TreeFile& file = survey.files[i];
    references.is_known[i] = !IsErrorBody(root);
    references.is_exempt[i] = !subject->is_stored || IsServiceDocument(root, file.key) ||
                              WithoutLastSlash(file.listed_key) == top;
    NoteCollection(survey, *subject, &references);
    NoteReferences(*subject, &references);
  }
  return references;
}

// Adds a finding at the root of a file: where it is is wrong, not what it holds.
void Add(RuleId rule, const TreeFile& file, const std::string& message,
         const std::vector<Related>& related, Findings* findings) {
  findings->push_back({rule, {file.path, ""}, file.key, message, related});
}

void CheckMembership(const Survey& survey, const References& references, std::size_t index,
                     Findings* findings) {
  const TreeFile& file = survey.files[index];
  const auto found = references.collections.find(FileAbove(references, file));
  if (found == references.collections.end()) return;
  const auto& [members, place] = found->second;
  if (members.count(WithoutLastSlash(file.key)) != 0) return;
  if (members.count(WithoutLastSlash(file.listed_key)) != 0) return;
  Add(RuleId::kRedfishNotMember, file,
      "\"" + file.key + "\" lies in the folder of a collection whose Members do not list it",
      {{place, "the Members of the collection"}}, findings);
}

bool IsReferredTo(const References& references, std::size_t index, const std::string& key) {
  const auto found = references.referrers.find(TargetOf(key));
  return found != references.referrers.end() && found->second != kNobody && found->second != index;
}

void CheckOrphan(const Survey& survey, const References& references, std::size_t index,
                 bool is_all_known, Findings* findings) {
  const TreeFile& file = survey.files[index];
  if (references.is_exempt[index] || IsReferredTo(references, index, file.key)) return;
  // A link to the key of its folder dangles, which is a finding of its own with the same cause.
  if (IsReferredTo(references, index, file.listed_key)) return;
  // A file that is not known may hold the link. But a resource is linked to from the folder above:
  // where that is known, the others do not matter.
  const std::size_t above = FileAbove(references, file);
  if (!is_all_known && (above == kNobody || !references.is_known[above])) return;
  Add(RuleId::kRedfishOrphan, file, "no other file refers to \"" + file.key + "\"", {}, findings);
}

}  // namespace

void CheckReferences(const Survey& survey, Findings* findings) {
  const References references = ReferencesIn(survey);
  const bool is_listed = survey.listing.end == LoadEnd::kDone;
  bool is_all_known = survey.listing.problems.empty();
  for (const bool is_known : references.is_known) is_all_known = is_all_known && is_known;
  for (std::size_t i = 0; i < survey.files.size(); ++i) {
    if (survey.files[i].end != LoadEnd::kDone) continue;
    CheckMembership(survey, references, i, findings);
    if (is_listed) CheckOrphan(survey, references, i, is_all_known, findings);
  }
}

}  // namespace ostrafel
