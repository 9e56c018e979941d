// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "diff/places.h"

#include <algorithm>
#include <cstddef>
#include <map>
#include <set>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <variant>
#include <vector>

#include "document/file_inclusion.h"
#include "layout/record_parts.h"
#include "layout/resource_id.h"
#include "loading/resource_loading.h"
#include "text/json_pointer.h"
#include "text/text_file.h"
#include "tree/outline.h"

namespace ostrafel {

namespace {

bool HoldsChosenKey(const json_t* value);

// True when value or a part of it is an object with a key of its own choice.
bool HasChosenKey(const json_t* value) {
  if (json_is_object(value) && json_object_get(value, IdMember) != nullptr && !IsLink(value)) {
    return true;
  }
  return HoldsChosenKey(value);
}

// The same of the parts only.
bool HoldsChosenKey(const json_t* value) {
  std::size_t index = 0;
  json_t* element = nullptr;
  json_array_foreach(value, index, element) {
    if (HasChosenKey(element)) return true;
  }
  if (!json_is_object(value)) return false;
  // jansson's iterators take no const object, though they change none.
  auto* object = const_cast<json_t*>(value);  // NOLINT(cppcoreguidelines-pro-type-const-cast)
  for (void* member = json_object_iter(object); member != nullptr;
       member = json_object_iter_next(object, member)) {
    if (HasChosenKey(json_object_iter_value(member))) return true;
  }
  return false;
}

// The key less "&&", with one slash where there are several.
std::string PathOf(std::string key) {
  NormalizeKey(key);
  return key.substr(InternalPrefix.size());
}

// The differences of one key, sorted by record.
struct OfKey {
  Difference* begin;
  Difference* end;
  bool is_met = false;       // a file writes the key
  std::size_t elements = 0;  // of a list that were met

  // The difference of this field of the wanted hash, if there is one.
  [[nodiscard]] Difference* FindField(const std::string& field) const {
    return Find(field, [](const Difference& difference, const std::string& name) {
      const std::string* other = std::get_if<std::string>(&difference.record);
      return other == nullptr ? -1 : other->compare(name);
    });
  }

  // That of this element of the wanted list.
  [[nodiscard]] Difference* FindElement(std::size_t index) const {
    return Find(index, [](const Difference& difference, std::size_t wanted_index) {
      const Element* other = std::get_if<Element>(&difference.record);
      if (other == nullptr || other->wanted_index < wanted_index) return -1;
      return other->wanted_index == wanted_index ? 0 : 1;
    });
  }

 private:
  template <typename Record, typename Compare>
  [[nodiscard]] Difference* Find(const Record& record, const Compare& compare) const {
    Difference* found = std::partition_point(
        begin, end, [&](const Difference& difference) { return compare(difference, record) < 0; });
    return found != end && compare(*found, record) == 0 ? found : nullptr;
  }
};

// Goes through the files as the writer does: of two that claim a key, the first one writes it, and
// where two objects write one field, the last value stays.
class PlaceFinder {
 public:
  explicit PlaceFinder(Differences* differences);

  // Finds what comes from a file.
  void LookInto(const std::string& path, const std::string& listed_key);

  // Finds the positions of what was found.
  void Locate();

 private:
  [[nodiscard]] bool MayWrite(const std::string& key, const json_t* root) const;
  [[nodiscard]] OfKey* FindKey(const std::string& key);
  void LookAtParts(const Outline& outline);
  void FindRecord(const Outline& outline, std::size_t node);
  void FindOthers(const Outline& outline, std::size_t node);
  void Set(Difference* difference, std::string pointer);

  Differences& differences_;
  std::unordered_map<std::string, OfKey> by_key_;
  std::set<std::string> paths_;                // PathOf the keys
  std::unordered_set<std::string> resources_;  // that were written so far
  std::string own_path_;                       // of the file that is looked into
  std::string text_path_;                      // of the one that its members stand in
};

PlaceFinder::PlaceFinder(Differences* differences) : differences_(*differences) {
  for (Difference& difference : differences_) {
    OfKey& of_key = by_key_.emplace(difference.key, OfKey{&difference, nullptr}).first->second;
    of_key.end = &difference + 1;
    if (of_key.begin == &difference) paths_.insert(PathOf(difference.key));
  }
}

bool PlaceFinder::MayWrite(const std::string& key, const json_t* root) const {
  const std::string path = PathOf(key);
  const auto first = paths_.lower_bound(path);
  if (first != paths_.end() && first->compare(0, path.size(), path) == 0) return true;
  return HoldsChosenKey(root);
}

OfKey* PlaceFinder::FindKey(const std::string& key) {
  const auto found = by_key_.find(key);
  return found == by_key_.end() ? nullptr : &found->second;
}

void PlaceFinder::Set(Difference* difference, std::string pointer) {
  const std::string& path = pointer == FileMemberPointer ? own_path_ : text_path_;
  difference->place = TreePlace{path, std::move(pointer), {}};
}

// Finds the difference of a value's record in what holds the value.
void PlaceFinder::FindRecord(const Outline& outline, std::size_t node) {
  OfKey* of_key = FindKey(outline[outline[node].parent].key);
  if (of_key == nullptr) return;
  const Record record = RecordOf(outline, node);
  Difference* difference = record.parent == ParentKind::kList
                               ? of_key->FindElement(of_key->elements++)
                               : of_key->FindField(record.field);
  if (difference != nullptr && difference->wanted == record.value) {
    Set(difference, PointerOf(outline, node));
  }
}

// The name or index that an extra record would have in the tree.
std::string NameOfExtra(const Difference& difference) {
  if (const Element* element = std::get_if<Element>(&difference.record)) {
    return std::to_string(element->stored_index);
  }
  return MemberOfField(difference.key, std::get<std::string>(difference.record));
}

// Finds the difference of the whole key of an object or array, and those of extra records in it.
void PlaceFinder::FindOthers(const Outline& outline, std::size_t node) {
  OfKey* of_key = FindKey(outline[node].key);
  if (of_key == nullptr || of_key->is_met) return;
  of_key->is_met = true;
  const std::string pointer = PointerOf(outline, node);
  for (Difference* at = of_key->begin; at != of_key->end; ++at) {
    if (std::holds_alternative<WholeKey>(at->record)) {
      Set(at, pointer);
    } else if (at->change == Change::kExtra) {
      Set(at, ChildPointer(pointer, NameOfExtra(*at)));
    }
  }
}

void PlaceFinder::LookAtParts(const Outline& outline) {
  std::vector<bool> is_written(outline.size(), false);
  for (std::size_t i = 0; i < outline.size(); ++i) {
    const Node& node = outline[i];
    if (i != 0) {
      if (!is_written[node.parent]) continue;
      FindRecord(outline, i);
    }
    const bool has_key = node.kind == NodeKind::kObject || node.kind == NodeKind::kArray;
    if (!has_key || (node.has_own_id && !resources_.insert(node.key).second)) continue;
    is_written[i] = true;
    FindOthers(outline, i);
  }
}

void PlaceFinder::LookInto(const std::string& path, const std::string& listed_key) {
  Resource resource = ReadResource(path, listed_key);
  if (resource.end != LoadEnd::kDone) return;
  IncludeInResource(&resource);
  const json_t* root = resource.file.root.get();
  if (resource.end != LoadEnd::kDone || !resources_.insert(resource.key).second) return;
  if (!MayWrite(resource.key, root)) return;
  own_path_ = path;
  text_path_ = resource.inclusion.file.root ? resource.inclusion.path : path;
  LookAtParts(OutlineOf(root, resource.key));
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
