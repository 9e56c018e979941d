// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "store/resource_writer.h"

#include <cstddef>
#include <cstdio>

#include "layout/layout.h"
#include "layout/value_rendering.h"
#include "redis/replies.h"
#include "store/command_batches.h"
#include "store/pruning.h"
#include "store/required_text.h"
#include "store/store_state.h"

namespace ostrafel {

namespace {

// Sets the key's flag in VisitedResourceMap and returns what it was.
bool MarkVisited(const std::string& key) {
  bool& visited = VisitedResourceMap[key];
  const bool was_visited = visited;
  visited = true;
  return was_visited;
}

unsigned WriteMember(redisContext* context, const std::string& key, const char* name,
                     json_t* value) {
  if (json_is_object(value)) return WriteObjectProperty(context, key, name, value, false);
  if (json_is_array(value)) return WriteArrayProperty(context, key, name, value, false);
  // A reserved member that could not be queued is tried once more, as a plain scalar.
  if (WriteReservedProperty(context, key, name, value) != 0) return 1;
  return WriteScalarProperty(context, key, name, value);
}

unsigned WriteElement(redisContext* context, const std::string& list_key, std::size_t index,
                      json_t* element) {
  const std::string name = std::to_string(index);
  if (json_is_object(element)) return WriteObjectProperty(context, list_key, name, element, true);
  if (json_is_array(element)) return WriteArrayProperty(context, list_key, name, element, true);
  return WriteScalarProperty(context, list_key, nullptr, element);
}

// Queues the record in the parent that points to target.
unsigned PutReference(redisContext* context, const std::string& parent_key, const char* marker,
                      const std::string& name, const std::string& target, bool in_list) {
  if (in_list) return PutListItem(context, parent_key.c_str(), (marker + target).c_str());
  return PutHashField(context, parent_key.c_str(), ReferenceField(marker, name, target).c_str(),
                      "");
}

bool IsLink(const json_t* value) {
  return json_object_size(value) == 1 && json_is_string(json_object_get(value, IdMember));
}

// Queues the removal of what the member was before it became a link.
unsigned PruneBeforeLink(redisContext* context, const std::string& parent_key,
                         const std::string& name, bool in_list) {
  const std::string derived_key = DerivedKey(parent_key, name);
  bool was_inline = false;
  if (!in_list) {
    const std::string record = ReferenceField(ObjectMarker, name, derived_key);
    const Reply reply = Ask(context, "HEXISTS %s %s", parent_key.c_str(), record.c_str());
    was_inline = reply && reply->type == REDIS_REPLY_INTEGER && reply->integer == 1;
    // Pruning keeps a stored hash for an object that will be merged into it; a link needs none.
    if (was_inline && QueueRemoval(context, derived_key, "", RemoveKey) == 0) return 0;
  }
  if (PruneProperty(context, parent_key, name, derived_key, in_list, StoredHash) == 0) return 0;
  const std::string pattern = SubtreePattern(derived_key);
  if (was_inline && !IsUnderPrunedPrefix(pattern)) return UnlinkMatchingKeys(context, pattern);
  return 1;
}

}  // namespace

unsigned WriteResource(redisContext* context, const std::string& key, json_t* root) {
  if (MarkVisited(key)) return 1;
  unsigned result = 1;
  for (void* member = json_object_iter(root); member != nullptr;
       member = json_object_iter_next(root, member)) {
    json_t* value = json_object_iter_value(member);
    if (value == nullptr) break;
    result = WriteMember(context, key, json_object_iter_key(member), value);
  }
  return result;
}

unsigned WriteObjectProperty(redisContext* context, const std::string& parent_key,
                             const std::string& name, json_t* value, bool in_list) {
  if (WriteObjectReference(context, parent_key, name, value, in_list) != 0) return 1;

  std::string target_key;
  bool is_written = false;
  if (const json_t* id = json_object_get(value, IdMember); id != nullptr) {
    if (!json_is_string(id)) return 0;
    target_key = json_string_value(id);
    is_written = MarkVisited(target_key);
  } else {
    target_key = DerivedKey(parent_key, name);
  }
  if (MergeMode && PruneProperty(context, parent_key, name, target_key, in_list, StoredHash) == 0) {
    return 0;
  }
  // Before the members; an array's record comes after its elements.
  if (PutReference(context, parent_key, ObjectMarker, name, target_key, in_list) == 0) return 0;
  if (is_written) return 1;

  for (void* member = json_object_iter(value); member != nullptr;
       member = json_object_iter_next(value, member)) {
    json_t* member_value = json_object_iter_value(member);
    if (member_value == nullptr) break;
    if (WriteMember(context, target_key, json_object_iter_key(member), member_value) == 0) return 0;
  }
  return 1;
}

unsigned WriteArrayProperty(redisContext* context, const std::string& parent_key,
                            const std::string& name, json_t* value, bool in_list) {
  const std::string array_key = DerivedKey(parent_key, name);
  if (MergeMode && PruneProperty(context, parent_key, name, array_key, in_list, StoredList) == 0) {
    return 0;
  }
  for (std::size_t i = 0; i < json_array_size(value); ++i) {
    json_t* element = json_array_get(value, i);
    if (element == nullptr) break;
    if (WriteElement(context, array_key, i, element) == 0) return 0;
  }
  return PutReference(context, parent_key, ArrayMarker, name, array_key, in_list);
}

unsigned WriteObjectReference(redisContext* context, const std::string& parent_key,
                              const std::string& name, json_t* value, bool in_list) {
  if (!IsLink(value)) return 0;
  if (MergeMode && PruneBeforeLink(context, parent_key, name, in_list) == 0) return 0;
  const char* id = json_string_value(json_object_get(value, IdMember));
  return PutReference(context, parent_key, ObjectRefMarker, name, id, in_list);
}

unsigned WriteScalarProperty(redisContext* context, const std::string& key, const char* name,
                             const json_t* value) {
  const std::string text = RenderValue(value);
  if (text.empty()) {
    (void)std::fprintf(stderr, "get value of %s/%s fail", key.c_str(),
                       name == nullptr ? "(null)" : name);
    return 0;
  }
  if (name == nullptr) return PutListItem(context, key.c_str(), text.c_str());
  // A scalar is written even when its older shape cannot be read.
  if (MergeMode) (void)PruneProperty(context, key, name, "", false, StoredNone);
  return PutHashField(context, key.c_str(), name, text.c_str());
}

unsigned WriteReservedProperty(redisContext* context, const std::string& key, const char* name,
                               const json_t* value) {
  if (!IsReservedProperty(RequiredText(name)) || !json_is_string(value)) return 0;
  std::string text = json_string_value(value);
  EscapeText(text);
  return PutHashField(context, key.c_str(), name, text.c_str());
}

}  // namespace ostrafel
