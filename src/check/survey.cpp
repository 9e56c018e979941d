// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "check/survey.h"

#include <functional>
#include <utility>

#include "document/file_inclusion.h"
#include "layout/resource_id.h"
#include "loading/resource_loading.h"
#include "store/server.h"
#include "text/json_pointer.h"

namespace ostrafel {

namespace {

// Key -> a hash of what it holds, to compare two stores without keeping both.
using Digest = std::vector<std::size_t>;

void Mix(std::size_t* hash, const std::string& text) {
  // The constant, the golden ratio's digits, spreads what is added over all bits.
  *hash ^= std::hash<std::string>()(text) + 0x9e3779b9 + (*hash << 6) + (*hash >> 2);
}

std::size_t HashOf(const std::string& key, const Stored& stored) {
  std::size_t hash = stored.index();
  Mix(&hash, key);
  if (const Hash* fields = std::get_if<Hash>(&stored)) {
    for (const auto& [name, value] : *fields) {
      Mix(&hash, name);
      Mix(&hash, value);
    }
  } else if (const List* list = std::get_if<List>(&stored)) {
    for (const std::string& element : *list) Mix(&hash, element);
  }
  return hash;
}

Digest DigestOf(const Server& server) {
  Digest digest;
  digest.reserve(server.keys.size());
  for (const auto& [key, stored] : server.keys) digest.push_back(HashOf(key, stored));
  return digest;
}

std::size_t CountRecords(const Server& server) {
  std::size_t records = 0;
  for (const auto& [key, stored] : server.keys) {
    if (const Hash* fields = std::get_if<Hash>(&stored)) records += fields->size();
    if (const List* list = std::get_if<List>(&stored)) records += list->size();
  }
  return records;
}

// True when a store refused what it was sent. Only the type of a key makes one in memory do that.
bool IsRefused(const Played& played) {
  return played.messages.find(HashFlushFailed) != std::string::npos ||
         played.messages.find(ListFlushFailed) != std::string::npos;
}

LoadRequest With(LoadRequest request, LoadAction action) {
  request.action = action;
  return request;
}

void PlayLoads(Survey* survey, const TakeProgress& tell) {
  const LoadRequest create = With(survey->request, LoadAction::kCreate);
  const LoadRequest update = With(survey->request, LoadAction::kUpdate);
  const Listing& listing = survey->listing;
  Server& store = survey->store;

  survey->create = PlayLoad(&store, create, listing, OnFailure::kStop);
  tell(0, listing.list.keys.size());
  survey->keys = store.keys.size();
  survey->records = CountRecords(store);
  survey->is_refused = IsRefused(survey->create);
  const bool fails = survey->create.status != 0;
  if (fails) {
    survey->update = PlayLoad(&store, update, listing, OnFailure::kStop);
    store = {};
    survey->is_refused = IsRefused(PlayLoad(&store, create, listing, OnFailure::kGoOn));
  }
  const Digest created = DigestOf(store);
  const Played updated =
      PlayLoad(&store, update, listing, fails ? OnFailure::kGoOn : OnFailure::kStop);
  if (!fails) survey->update = updated;
  survey->searches = store.searches;
  if (DigestOf(store) == created) return;
  survey->updated = std::move(store);
  store = {};
  (void)PlayLoad(&store, create, listing, OnFailure::kGoOn);
}

// What is known of the file that stands at that place of the listing, and its resource.
TreeFile FileOf(const LoadList& list, std::size_t file, const Resource& resource) {
  TreeFile result = {list.paths[file], list.keys[file], resource.end, resource.key,
                     list.paths[file]};
  if (result.key.empty() && result.end != LoadEnd::kDone) result.key = result.listed_key;
  if (resource.inclusion.file.root) result.text_path = resource.inclusion.path;
  return result;
}

// Adds what the file claims, less what an object that comes too late holds.
// What comes after an "@odata.id" that is no string, up to the next member of the root, is not
// written and claims nothing.
void AddClaims(std::size_t file, const Outline& outline, Survey* survey) {
  std::vector<bool> is_late(outline.size());
  bool is_given_up = false;
  for (std::size_t i = 0; i < outline.size(); ++i) {
    const Node& node = outline[i];
    if (node.parent == 0) is_given_up = false;
    if (i != 0 && is_late[node.parent]) {
      is_late[i] = true;
    } else if (is_given_up) {
      if (ClaimsKey(outline, i)) survey->unread_keys.insert(node.key);
    } else if (node.kind == NodeKind::kBadId) {
      is_given_up = true;
    } else if (ClaimsKey(outline, i)) {
      std::vector<Claim>& claims = survey->claims[node.key];
      claims.push_back({file, PointerOf(outline, i)});
      is_late[i] = claims.size() > 1;
    }
  }
}

void AddFile(std::size_t file, Survey* survey) {
  const LoadList& list = survey->listing.list;
  Resource resource = ReadResource(list.paths[file], list.keys[file]);
  const bool has_id = json_object_get(resource.file.root.get(), IdMember) != nullptr;
  if (resource.end == LoadEnd::kDone) IncludeInResource(&resource);
  survey->files.push_back(FileOf(list, file, resource));
  survey->files.back().has_id = has_id;  // as the file has it, whatever it includes
  survey->files_by_listed_key.emplace(list.keys[file], file);
  if (resource.end == LoadEnd::kDone) {
    AddClaims(file, OutlineOf(resource.file.root.get(), resource.key), survey);
  } else {
    survey->unread_keys.insert(survey->files.back().key);
  }
}

// The key that the file at path would go to, if the walk had taken it.
std::string ListedKeyOf(const LoadRequest& request, const std::string& path) {
  std::string key = request.uri;
  std::size_t start = request.static_data_path.size() + 1;
  for (std::size_t slash = path.find('/', start); slash != std::string::npos;
       slash = path.find('/', start)) {
    key = ChildKey(key, path.substr(start, slash - start));
    start = slash + 1;
  }
  return key;
}

// Adds the keys of files that the walk passed over: they cannot be looked at, or their folder
// cannot.
void AddUnreadKeys(Survey* survey) {
  for (const auto& [problem, path] : survey->listing.problems) {
    if (problem == PathProblem::kNotChecked && MayHideFile(*survey, path)) {
      survey->unread_keys.insert(ListedKeyOf(survey->request, path));
    }
  }
}

}  // namespace

Survey SurveyTree(const LoadRequest& request, const TakeProgress& tell) {
  Survey survey;
  survey.request = request;
  survey.listing = ListTree(request);
  AddUnreadKeys(&survey);
  PlayLoads(&survey, tell);
  const std::size_t count = survey.listing.list.keys.size();
  survey.files.reserve(count);
  for (std::size_t i = 0; i < count; ++i) {
    AddFile(i, &survey);
    tell(i + 1, count);
  }
  return survey;
}

std::optional<Subject> ReadSubject(const Survey& survey, std::size_t file) {
  const TreeFile& tree_file = survey.files[file];
  if (tree_file.end != LoadEnd::kDone) return std::nullopt;
  Resource resource = ReadResource(tree_file.path, tree_file.listed_key);
  if (resource.end != LoadEnd::kDone) return std::nullopt;
  Subject subject;
  subject.file = file;
  json_t* root = resource.file.root.get();
  const bool includes = tree_file.text_path != tree_file.path;
  subject.own_root.reset(includes ? json_copy(root) : json_incref(root));
  IncludeInResource(&resource);
  subject.root = std::move(resource.file.root);
  subject.outline = OutlineOf(subject.root.get(), tree_file.key);
  const auto claims = survey.claims.find(tree_file.key);
  subject.is_stored = claims == survey.claims.end() || claims->second.front().file == file;
  return subject;
}

bool ClaimsKey(const Outline& outline, std::size_t node) {
  return node == 0 || outline[node].has_own_id;
}

bool IsFirstClaim(const Survey& survey, const Subject& subject, std::size_t node) {
  const auto found = survey.claims.find(subject.outline[node].key);
  // An object within one that comes too late claims nothing, and is not found as the first.
  if (found == survey.claims.end()) return false;
  const Claim& first = found->second.front();
  return first.file == subject.file && first.pointer == PointerOf(subject.outline, node);
}

bool IsStored(const Survey& survey, const Subject& subject, std::size_t node) {
  const Outline& outline = subject.outline;
  for (std::size_t i = node;; i = outline[i].parent) {
    if (ClaimsKey(outline, i) && !IsFirstClaim(survey, subject, i)) return false;
    if (i == 0) return true;
  }
}

std::vector<bool> StoredNodes(const Survey& survey, const Subject& subject) {
  const Outline& outline = subject.outline;
  std::vector<bool> is_stored(outline.size());
  std::vector<bool> has_stored_members(outline.size());
  bool is_given_up = false;  // what is left of the root's member
  for (std::size_t i = 0; i < outline.size(); ++i) {
    const std::size_t parent = outline[i].parent;
    if (parent == 0) is_given_up = false;
    const bool is_reached = i == 0 || (has_stored_members[parent] && !is_given_up);
    if (is_reached && outline[i].kind == NodeKind::kBadId) is_given_up = true;
    has_stored_members[i] =
        is_reached && !is_given_up && (!ClaimsKey(outline, i) || IsFirstClaim(survey, subject, i));
    is_stored[i] = i == 0 ? has_stored_members[0] : is_reached && !is_given_up;
  }
  return is_stored;
}

Place PlaceOf(const Survey& survey, const Subject& subject, const std::string& pointer, Spot spot) {
  const TreeFile& file = survey.files[subject.file];
  return {pointer == FileMemberPointer ? file.path : file.text_path, pointer, spot};
}

Place PlaceOf(const Survey& survey, const Subject& subject, std::size_t node, Spot spot) {
  return PlaceOf(survey, subject, PointerOf(subject.outline, node), spot);
}

Place PlaceOf(const Survey& survey, const Claim& claim) {
  const TreeFile& file = survey.files[claim.file];
  if (!claim.pointer.empty()) return {file.text_path, ChildPointer(claim.pointer, IdMember)};
  return {file.path, file.has_id ? ChildPointer("", IdMember) : ""};
}

bool MayHideFile(const Survey& survey, const std::string& path) {
  const auto ignore = [](PathProblem, const std::string&) {};
  return FileNameEquals(path, survey.request.file_name, ignore) ||
         FileNameEquals(path, ".", ignore);
}

bool IsKey(const Survey& survey, const std::string& key) {
  return survey.store.keys.find(key) != survey.store.keys.end() ||
         survey.unread_keys.count(key) != 0;
}

}  // namespace ostrafel
