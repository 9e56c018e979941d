// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "store/resource_writer.h"

#include <cstddef>
#include <string_view>

#include "base/message.h"
#include "layout/layout.h"
#include "layout/resource_id.h"
#include "layout/value_rendering.h"
#include "store/pruning.h"
#include "store/queue.h"
#include "store/store_state.h"

namespace ostrafel {

namespace {

// Sets the key's flag in VisitedResourceMap and returns what it was.
bool MarkVisited(const std::string& key) {
  bool& visited = Store->VisitedResourceMap[key];
  const bool was_visited = visited;
  visited = true;
  return was_visited;
}

// Returns name, or raises for a null one the logic_error that std::string raises.
const char* RequiredName(const char* name) {
  // NOLINTNEXTLINE(clang-analyzer-cplusplus.StringChecker): that is the purpose
  if (name == nullptr) (void)std::string(name);
  return name;
}

unsigned WriteMember(Server* server, const std::string& key, const char* name, json_t* value) {
  if (json_is_object(value)) {
    return WriteObjectProperty(server, key, name, value, ParentKind::kHash);
  }
  if (json_is_array(value)) {
    return WriteArrayProperty(server, key, name, value, ParentKind::kHash);
  }
  // A reserved member that could not be queued is tried once more, as a plain scalar.
  if (WriteReservedProperty(server, key, name, value) != 0) return 1;
  return WriteScalarProperty(server, key, name, value);
}

unsigned WriteElement(Server* server, const std::string& list_key, std::size_t index,
                      json_t* element) {
  const std::string name = std::to_string(index);
  if (json_is_object(element)) {
    return WriteObjectProperty(server, list_key, name, element, ParentKind::kList);
  }
  if (json_is_array(element)) {
    return WriteArrayProperty(server, list_key, name, element, ParentKind::kList);
  }
  return WriteScalarProperty(server, list_key, nullptr, element);
}

// Queues the record in the parent that points to target.
unsigned PutReference(Server* server, const std::string& parent_key, std::string_view marker,
                      const std::string& name, std::string_view target, ParentKind parent) {
  const Pieces record = ReferenceRecord(parent, marker, name, target);
  if (parent == ParentKind::kList) return PutListItem(server, parent_key, record);
  return PutHashField(server, parent_key, record, "");
}

// Queues the removal of what the member was before it became a link.
unsigned PruneBeforeLink(Server* server, const std::string& parent_key, const std::string& name,
                         ParentKind parent) {
  const std::string derived_key = DerivedKey(parent_key, name);
  bool was_inline = false;
  if (parent == ParentKind::kHash) {
    const Pieces record = ReferenceRecord(parent, ObjectMarker, name, derived_key);
    was_inline = AskFieldExists(server, parent_key, Join(record));
    // Pruning keeps a stored hash for an object that will be merged into it; a link needs none.
    if (was_inline && QueueRemoval(server, derived_key, {}, RemoveKey) == 0) return 0;
  }
  if (PruneProperty(server, parent_key, name, derived_key, parent, StoredHash) == 0) return 0;
  const std::string pattern = SubtreePattern(derived_key);
  if (was_inline && !IsUnderPrunedPrefix(pattern)) return UnlinkMatchingKeys(server, pattern);
  return 1;
}

}  // namespace

unsigned WriteResource(Server* server, const std::string& key, json_t* root) {
  if (MarkVisited(key)) return 1;
  unsigned result = 1;
  for (void* member = json_object_iter(root); member != nullptr;
       member = json_object_iter_next(root, member)) {
    json_t* value = json_object_iter_value(member);
    if (value == nullptr) break;
    result = WriteMember(server, key, json_object_iter_key(member), value);
  }
  return result;
}

unsigned WriteObjectProperty(Server* server, const std::string& parent_key, const std::string& name,
                             json_t* value, ParentKind parent) {
  // A link that could not be written goes on as an object: the two failures look alike.
  if (WriteObjectReference(server, parent_key, name, value, parent) != 0) return 1;

  std::string target_key;
  bool is_written = false;
  if (const json_t* id = json_object_get(value, IdMember); id != nullptr) {
    if (!json_is_string(id)) return 0;
    target_key = json_string_value(id);
    is_written = MarkVisited(target_key);
  } else {
    target_key = DerivedKey(parent_key, name);
  }
  if (Store->MergeMode &&
      PruneProperty(server, parent_key, name, target_key, parent, StoredHash) == 0) {
    return 0;
  }
  // Before the members; an array's record comes after its elements.
  if (PutReference(server, parent_key, ObjectMarker, name, target_key, parent) == 0) return 0;
  if (is_written) return 1;

  for (void* member = json_object_iter(value); member != nullptr;
       member = json_object_iter_next(value, member)) {
    json_t* member_value = json_object_iter_value(member);
    if (member_value == nullptr) break;
    if (WriteMember(server, target_key, json_object_iter_key(member), member_value) == 0) return 0;
  }
  return 1;
}

unsigned WriteArrayProperty(Server* server, const std::string& parent_key, const std::string& name,
                            json_t* value, ParentKind parent) {
  const std::string array_key = DerivedKey(parent_key, name);
  if (Store->MergeMode &&
      PruneProperty(server, parent_key, name, array_key, parent, StoredList) == 0) {
    return 0;
  }
  for (std::size_t i = 0; i < json_array_size(value); ++i) {
    json_t* element = json_array_get(value, i);
    if (element == nullptr) break;
    if (WriteElement(server, array_key, i, element) == 0) return 0;
  }
  return PutReference(server, parent_key, ArrayMarker, name, array_key, parent);
}

unsigned WriteObjectReference(Server* server, const std::string& parent_key,
                              const std::string& name, json_t* value, ParentKind parent) {
  if (!IsLink(value)) return 0;
  if (Store->MergeMode && PruneBeforeLink(server, parent_key, name, parent) == 0) return 0;
  const std::string id = json_string_value(json_object_get(value, IdMember));
  return PutReference(server, parent_key, ObjectRefMarker, name, id, parent);
}

unsigned WriteScalarProperty(Server* server, const std::string& key, const char* name,
                             const json_t* value) {
  const std::string text = RenderValue(value);
  if (text.empty()) {
    PrintMessage("get value of %s/%s fail", key.c_str(), name == nullptr ? "(null)" : name);
    return 0;
  }
  if (name == nullptr) return PutListItem(server, key, {text});
  // A scalar is written even when its older shape cannot be removed.
  if (Store->MergeMode) {
    (void)PruneProperty(server, key, name, "", ParentKind::kHash, StoredNone);
  }
  return PutHashField(server, key, {name}, text);
}

unsigned WriteReservedProperty(Server* server, const std::string& key, const char* name,
                               const json_t* value) {
  if (!IsReservedProperty(RequiredName(name)) || !json_is_string(value)) return 0;
  std::string text = json_string_value(value);
  EscapeText(text);
  return PutHashField(server, key, {name}, text);
}

}  // namespace ostrafel
