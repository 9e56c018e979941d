// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "store/pruning.h"

#include <cstddef>
#include <functional>
#include <optional>
#include <string_view>

#include "store/queue.h"
#include "store/store_state.h"

namespace ostrafel {

unsigned UnlinkMatchingKeys(Server* server, const std::string& pattern) {
  const auto unlink = [&](const std::string& key) {
    return QueueRemoval(server, key, {}, RemoveKey);
  };
  // By reference, because std::function would copy it to the heap.
  if (FindKeys(server, pattern, std::ref(unlink)) == 0) return 0;
  // Less "/*", whatever the key ended with; a pattern that is shorter is its own mark.
  const std::size_t kept = pattern.size() < 2 ? pattern.size() : pattern.size() - 2;
  Store->PrunedPrefixes.insert(pattern.substr(0, kept));
  return 1;
}

unsigned RemoveMatchingFields(Server* server, const std::string& key, const std::string& pattern) {
  const auto remove = [&](const std::string& field) {
    return QueueRemoval(server, key, {field}, RemoveField);
  };
  return FindFields(server, key, pattern, std::ref(remove));
}

bool IsUnderPrunedPrefix(const std::string& pattern) {
  const auto& prefixes = Store->PrunedPrefixes;
  const std::string_view text = pattern;
  for (std::size_t slash = text.find('/'); slash != std::string_view::npos;
       slash = text.find('/', slash + 1)) {
    if (prefixes.count(text.substr(0, slash)) != 0) return true;
  }
  return false;
}

unsigned IsPlainList(Server* server, const std::string& key) {
  const std::optional<std::string> first = AskFirstElement(server, key);
  return first && !IsReferenceRecord(*first) ? 1 : 0;
}

unsigned PruneStaleKey(Server* server, const std::string& child_key, ExpectedKind expected) {
  const std::optional<KeyType> stored = AskType(server, child_key);
  if (!stored) return 0;
  if (stored == KeyType::kNone) return 1;
  if (stored == KeyType::kHash && expected == StoredHash) return 1;

  if (QueueRemoval(server, child_key, {}, RemoveKey) == 0) return 0;
  const std::string pattern = SubtreePattern(child_key);
  if (stored == KeyType::kList && IsPlainList(server, child_key) == 1) return 1;
  if (IsUnderPrunedPrefix(pattern)) return 1;
  if (UnlinkMatchingKeys(server, pattern) == 0) return 0;
  if (IsTwinPattern(pattern)) return 1;
  // The objects and arrays of resources lie below their keys' "&&" twins. These are searched
  // whatever PrunedPrefixes says of them; the pattern's own mark, looked up above, covers both.
  return UnlinkMatchingKeys(server, TwinPattern(pattern));
}

unsigned PruneProperty(Server* server, const std::string& parent_key, const std::string& name,
                       const std::string& child_key, ParentKind parent, ExpectedKind expected) {
  const std::string derived_key = child_key.empty() ? DerivedKey(parent_key, name) : "";
  const std::string& stale_key = child_key.empty() ? derived_key : child_key;
  if (PruneStaleKey(server, stale_key, expected) == 0) return 0;

  // From a list, elements equal to the index go, as a field of that name would. A number of the new
  // list that a flush in mid-array has sent already goes with them.
  const RemovalKind kind = parent == ParentKind::kList ? RemoveListValue : RemoveField;
  if (QueueRemoval(server, parent_key, {name}, kind) == 0) return 0;
  for (const char* marker : {ArrayMarker, ObjectRefMarker, ObjectMarker}) {
    const Pieces record = ReferenceRecord(parent, marker, name, stale_key);
    if (QueueRemoval(server, parent_key, record, kind) == 0) return 0;
  }
  if (parent == ParentKind::kList) return 1;
  return RemoveMatchingFields(server, parent_key, LinkPattern(name));
}

}  // namespace ostrafel
