// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "export/plan.h"

#include <algorithm>
#include <cstdint>
#include <optional>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <utility>

#include "export/document.h"
#include "text/json_text.h"

namespace ostrafel {

namespace {

// Documents that are not needed end where the tree holds so many times what the store holds, and so
// many bytes more. Beyond that, records lead around in circles.
constexpr std::uint64_t kMostCopies = 16;
constexpr std::uint64_t kFreeBytes = 1000000;

// Copies that are needed end here: a tree may grow with the square of a store.
constexpr std::uint64_t kMostNeededCopies = 64;

// True when a document would be of use to somebody, though the resource stands in another one.
bool IsOfUse(const KeyEntry& resource) {
  return resource.first.find_first_of("#?") == std::string::npos && !resource.second.includes_file;
}

// What stands again in a document has its key and a member more, between braces.
constexpr std::uint64_t kLinesAgain = 4;

class Planner {
 public:
  Planner(StoreKeys* keys, const ExportScope& scope, Folders* folders)
      : keys_(*keys), scope_(scope), folders_(*folders) {}

  Plan Make() {
    FindResources();
    if (!scope_.is_whole) {
      for (KeyEntry* resource : resources_) AddDocument(resource, {"", true, false});
      return std::move(plan_);
    }
    TakeFolders();
    // First what stands in no other, then what somebody may ask for, then whatever is left.
    for (KeyEntry* resource : resources_) {
      if (!IsWithin(*resource)) AddOwn(resource);
    }
    for (KeyEntry* resource : resources_) {
      const bool is_spared = IsPlaced(*resource) && !HasRoom(kMostCopies);
      if (IsWithin(*resource) && IsOfUse(*resource) && !is_spared) AddOwn(resource);
    }
    for (KeyEntry* resource : resources_) {
      if (!IsPlaced(*resource)) AddOwn(resource);
    }
    for (KeyEntry* resource : resources_) {
      if (!IsPlaced(*resource) && resource->second.takes_own_key) {
        AddDocument(resource, folders_.TakeSpare());
      }
    }
    return std::move(plan_);
  }

 private:
  static bool IsPlaced(const KeyEntry& entry) { return entry.second.document != 0; }

  [[nodiscard]] bool IsWithin(const KeyEntry& entry) const { return within_.count(&entry) != 0; }

  // Sorted: the same store makes the same tree.
  void FindResources() {
    for (KeyEntry& entry : keys_) {
      size_ += entry.second.size;
      for (const Child& child : entry.second.children) {
        const bool is_resource = child.is_object && child.entry->second.takes_own_key;
        if (is_resource && child.entry != &entry) within_.insert(child.entry);
      }
      const bool is_top = entry.first == scope_.uri && entry.second.type == KeyType::kHash;
      if (entry.second.is_in_scope && (is_top || IsResource(entry))) resources_.push_back(&entry);
    }
    std::sort(resources_.begin(), resources_.end(), ComesBefore);
  }

  // First for resources that a load brings back by nothing but their folder.
  void TakeFolders() {
    for (const bool tells_key : {false, true}) {
      for (KeyEntry* resource : resources_) {
        if (own_folders_.count(resource) != 0) continue;
        if (tells_key && !resource->second.takes_own_key) continue;
        std::optional<Folder> folder = folders_.TakeOwn(resource->first, tells_key);
        if (folder) own_folders_.emplace(resource, *std::move(folder));
      }
    }
  }

  // Adds the document in the folder of the resource's own path, if it has one.
  void AddOwn(KeyEntry* resource) {
    const auto folder = own_folders_.find(resource);
    if (folder != own_folders_.end()) AddDocument(resource, folder->second);
  }

  void AddDocument(KeyEntry* root, Folder folder) {
    ++documents_;
    const std::size_t begin = plan_.keys.size();
    AddKeys(root);
    plan_.documents.push_back({root, std::move(folder), begin, plan_.keys.size()});
  }

  struct Visit {
    KeyEntry* entry;
    KeyEntry* resource;  // that it is a part of, or itself
    std::size_t level;
  };

  // Adds the resource's key, those of its parts and those of what stands in it, in the order in
  // which they are written: what stands in it twice is taken to be where it comes first.
  void AddKeys(KeyEntry* root) {
    std::vector<Visit> rest = {{root, root, 1}};
    while (!rest.empty()) {
      const Visit visit = rest.back();
      rest.pop_back();
      if (!Add(visit) || visit.level + 2 > kMostLevels) continue;
      const std::vector<Child>& children = visit.entry->second.children;
      for (auto child = children.rbegin(); child != children.rend(); ++child) {
        KeyEntry* const entry = child->entry;
        entry->second.is_reached = true;
        if (child->is_object && IsResource(*entry)) {
          rest.push_back({entry, entry, visit.level + 1});
        } else if (IsAbsent(*entry) || StandsHere(*entry, child->is_object, child->is_in_place)) {
          rest.push_back({entry, visit.resource, visit.level + 1});
        }
      }
    }
  }

  // The blanks before a line.
  static std::uint64_t IndentAt(std::size_t level) {
    return std::min(level, JsonWriter::kMostIndented) * kIndent;
  }

  static bool IsAbsent(const KeyEntry& entry) { return entry.second.type == KeyType::kNone; }

  // Adds a key, unless it is there already or belongs elsewhere.
  bool Add(const Visit& visit) {
    KeyEntry& entry = *visit.entry;
    KeyFacts& facts = entry.second;
    if (facts.document == documents_) {
      planned_size_ += facts.takes_own_key ? kLinesAgain * IndentAt(visit.level) : 0;
      return false;
    }
    if (visit.level > 1) {
      // That it holds nothing is looked at again where no pattern tells of new keys.
      const bool is_told = scope_.is_whole && IsInScope(scope_, entry.first);
      if (IsAbsent(entry) && is_told) return false;
      if (visit.resource == &entry && !IsWanted(entry)) return false;
    }
    if (visit.resource != &entry) {
      if (facts.owner != nullptr && facts.owner != visit.resource) return false;
      facts.owner = visit.resource;
    }
    facts.document = documents_;
    planned_size_ += facts.size + (facts.records + 1) * IndentAt(visit.level);
    plan_.keys.push_back(&entry);
    return true;
  }

  [[nodiscard]] bool HasRoom(std::uint64_t copies) const {
    return planned_size_ < copies * size_ + kFreeBytes;
  }

  // Copies of copies come to an end: what has a place already is left out then.
  [[nodiscard]] bool IsWanted(const KeyEntry& child) const {
    return child.second.takes_own_key && (!IsPlaced(child) || HasRoom(kMostNeededCopies));
  }

  StoreKeys& keys_;
  const ExportScope& scope_;
  Folders& folders_;
  std::vector<KeyEntry*> resources_;
  std::unordered_set<const KeyEntry*> within_;  // has a record in another key
  std::unordered_map<const KeyEntry*, Folder> own_folders_;
  std::uint64_t size_ = 0;          // of the store
  std::uint64_t planned_size_ = 0;  // of the tree
  std::uint32_t documents_ = 0;
  Plan plan_;
};

}  // namespace

Plan PlanTree(StoreKeys* keys, const ExportScope& scope, Folders* folders) {
  return Planner(keys, scope, folders).Make();
}

}  // namespace ostrafel
