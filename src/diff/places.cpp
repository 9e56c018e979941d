// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "diff/places.h"

#include <algorithm>
#include <cstddef>
#include <map>
#include <set>
#include <string_view>
#include <unordered_map>
#include <utility>

#include "layout/record_parts.h"
#include "layout/resource_id.h"
#include "loading/resource_loading.h"
#include "text/json_pointer.h"
#include "text/text_file.h"
#include "tree/outline.h"

namespace ostrafel {

namespace {

constexpr std::string_view kFilePointer = "/&&File";

// True when a part of value, an object or array, has a key of its own choice.
bool HoldsChosenKey(const json_t* value) {
  std::size_t index = 0;
  json_t* element = nullptr;
  json_array_foreach(value, index, element) {
    if (json_is_object(element) && json_object_get(element, IdMember) != nullptr &&
        !IsLink(element)) {
      return true;
    }
    if (HoldsChosenKey(element)) return true;
  }
  if (!json_is_object(value)) return false;
  // jansson's iterators take no const object, though they change none.
  auto* object = const_cast<json_t*>(value);  // NOLINT(cppcoreguidelines-pro-type-const-cast)
  for (void* member = json_object_iter(object); member != nullptr;
       member = json_object_iter_next(object, member)) {
    const json_t* part = json_object_iter_value(member);
    if (json_is_object(part) && json_object_get(part, IdMember) != nullptr && !IsLink(part)) {
      return true;
    }
    if (HoldsChosenKey(part)) return true;
  }
  return false;
}

// The key less "&&", with one slash where there are several.
std::string PathOf(std::string key) {
  NormalizeKey(key);
  return key.substr(InternalPrefix.size());
}

class PlaceFinder {
 public:
  explicit PlaceFinder(Differences* differences);

  // Finds what comes from a file, unless an earlier one had it.
  void LookInto(const std::string& path, const std::string& listed_key);

  // Finds the positions of what was found.
  void Locate();

 private:
  [[nodiscard]] bool MayWrite(const std::string& key, const json_t* root) const;
  void FindRecord(const Outline& outline, std::size_t node);
  void FindExtra(const Outline& outline, std::size_t node);
  void FindWholeKey(const Outline& outline, std::size_t node);
  void Set(Difference* difference, std::string pointer);

  Differences& differences_;
  std::unordered_map<std::string, std::vector<std::size_t>> by_key_;
  std::set<std::string> paths_;  // PathOf the keys
  std::string own_path_;         // of the file that is looked into
  std::string text_path_;        // of the one that its members stand in
};

PlaceFinder::PlaceFinder(Differences* differences) : differences_(*differences) {
  for (std::size_t i = 0; i < differences_.size(); ++i) {
    by_key_[differences_[i].key].push_back(i);
    paths_.insert(PathOf(differences_[i].key));
  }
}

bool PlaceFinder::MayWrite(const std::string& key, const json_t* root) const {
  const std::string path = PathOf(key);
  const auto first = paths_.lower_bound(path);
  if (first != paths_.end() && first->compare(0, path.size(), path) == 0) return true;
  return HoldsChosenKey(root);
}

void PlaceFinder::Set(Difference* difference, std::string pointer) {
  if (difference->place) return;
  const std::string& path = pointer == kFilePointer ? own_path_ : text_path_;
  difference->place = TreePlace{path, std::move(pointer), {}};
}

void PlaceFinder::FindRecord(const Outline& outline, std::size_t node) {
  const auto found = by_key_.find(outline[outline[node].parent].key);
  if (found == by_key_.end()) return;
  const Record record = RecordOf(outline, node);
  for (const std::size_t i : found->second) {
    Difference& difference = differences_[i];
    if (difference.place || difference.wanted != record.value) continue;
    const std::string* field = std::get_if<std::string>(&difference.record);
    const Element* element = std::get_if<Element>(&difference.record);
    const bool is_it = field != nullptr
                           ? record.parent == ParentKind::kHash && *field == record.field
                           : element != nullptr && record.parent == ParentKind::kList &&
                                 element->wanted_index == outline[node].index;
    if (is_it) Set(&difference, PointerOf(outline, node));
  }
}

void PlaceFinder::FindExtra(const Outline& outline, std::size_t node) {
  const auto found = by_key_.find(outline[node].key);
  if (found == by_key_.end()) return;
  for (const std::size_t i : found->second) {
    Difference& difference = differences_[i];
    if (difference.place || difference.change != Change::kExtra) continue;
    std::string name;
    if (const std::string* field = std::get_if<std::string>(&difference.record)) {
      name = MemberOfField(difference.key, *field);
    } else if (const Element* element = std::get_if<Element>(&difference.record)) {
      name = std::to_string(element->stored_index);
    } else {
      continue;
    }
    Set(&difference, ChildPointer(PointerOf(outline, node), name));
  }
}

void PlaceFinder::FindWholeKey(const Outline& outline, std::size_t node) {
  const auto found = by_key_.find(outline[node].key);
  if (found == by_key_.end()) return;
  Difference& difference = differences_[found->second.front()];
  const bool is_whole = std::holds_alternative<WholeKey>(difference.record);
  if (is_whole && difference.change != Change::kExtra) {
    Set(&difference, PointerOf(outline, node));
  }
}

void PlaceFinder::LookInto(const std::string& path, const std::string& listed_key) {
  Resource resource = ReadResource(path, listed_key);
  if (resource.end != LoadEnd::kDone) return;
  IncludeInResource(&resource);
  const json_t* root = resource.file.root.get();
  if (resource.end != LoadEnd::kDone || !MayWrite(resource.key, root)) return;
  own_path_ = path;
  text_path_ = resource.inclusion.file.root ? resource.inclusion.path : path;
  const Outline outline = OutlineOf(root, resource.key);
  for (std::size_t node = 0; node < outline.size(); ++node) {
    if (node != 0) FindRecord(outline, node);
    const NodeKind kind = outline[node].kind;
    if (kind == NodeKind::kObject || kind == NodeKind::kArray) {
      FindWholeKey(outline, node);
      FindExtra(outline, node);
    }
  }
}

void PlaceFinder::Locate() {
  std::map<std::string, std::set<std::string>> pointers;  // of each file
  for (const Difference& difference : differences_) {
    if (difference.place) pointers[difference.place->path].insert(difference.place->pointer);
  }
  std::map<std::string, std::map<std::string, ValuePosition>> positions;
  for (const auto& [path, of_file] : pointers) {
    positions.emplace(path, LocateValues(ReadTextFile(path), of_file));
  }
  for (Difference& difference : differences_) {
    if (!difference.place) continue;
    const auto& of_file = positions[difference.place->path];
    const auto position = of_file.find(difference.place->pointer);
    if (position != of_file.end()) difference.place->position = position->second.name;
  }
}

}  // namespace

void FindPlaces(const Listing& listing, Differences* differences) {
  if (differences->empty()) return;
  PlaceFinder finder(differences);
  for (std::size_t i = 0; i < listing.list.paths.size(); ++i) {
    finder.LookInto(listing.list.paths[i], listing.list.keys[i]);
  }
  finder.Locate();
}

}  // namespace ostrafel
