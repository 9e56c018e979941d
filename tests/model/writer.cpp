// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "model/writer.h"

#include <cstddef>
#include <optional>

#include "model/batches.h"
#include "model/layout.h"
#include "model/pruning.h"

namespace model {
namespace {

using Kind = JsonValue::Kind;

bool WriteMember(RunState& run, const std::string& key, const JsonMember& member);

// Puts a record that points from the parent to the target.
bool PutReference(RunState& run, const std::string& marker, const std::string& parent_key,
                  const std::string& name, const std::string& target_key, bool in_array) {
  if (in_array) return PutItem(run, parent_key, marker + target_key);
  return PutField(run, parent_key, marker + name + " " + target_key, "");
}

// Removes what an inline object of an earlier load left at the derived key of a new link.
bool PruneForLink(RunState& run, const std::string& parent_key, const std::string& name,
                  bool in_array) {
  const std::string derived_key = DerivedKey(parent_key, name);
  bool inline_removed = false;
  if (!in_array) {
    const std::string field = kObjectMarker + name + " " + derived_key;
    const std::optional<Reply> reply = Ask(run, {"HEXISTS", parent_key, field});
    if (reply && reply->type == Reply::Type::kInteger && reply->integer == 1) {
      if (!QueueRemoval(run, derived_key, "", RemovalKind::kKey)) return false;
      inline_removed = true;
    }
  }
  if (!PruneProperty(run, parent_key, name, derived_key, in_array, ExpectedKind::kHash)) {
    return false;
  }
  const std::string pattern = PatternBelow(derived_key);
  if (inline_removed && !IsUnderPrunedPrefix(run, pattern)) return UnlinkMatchingKeys(run, pattern);
  return true;
}

// False when the value is not a link, and also when writing the link failed.
bool WriteLink(RunState& run, const std::string& parent_key, const std::string& name,
               const JsonValue& value, bool in_array) {
  if (value.members.size() != 1 || value.members[0].name != "@odata.id") return false;
  const JsonValue& id = value.members[0].value;
  if (id.kind != Kind::kString) return false;
  if (run.merge_mode && !PruneForLink(run, parent_key, name, in_array)) return false;
  return PutReference(run, kObjectRefMarker, parent_key, name, id.text, in_array);
}

bool WriteObject(RunState& run, const std::string& parent_key, const std::string& name,
                 const JsonValue& value, bool in_array) {
  if (WriteLink(run, parent_key, name, value, in_array)) return true;

  std::string target_key = DerivedKey(parent_key, name);
  bool already_visited = false;
  if (const JsonValue* id = FindMember(value, "@odata.id")) {
    if (id->kind != Kind::kString) return false;
    target_key = id->text;
    already_visited = run.visited[target_key];
    run.visited[target_key] = true;
  }
  if (run.merge_mode &&
      !PruneProperty(run, parent_key, name, target_key, in_array, ExpectedKind::kHash)) {
    return false;
  }
  if (!PutReference(run, kObjectMarker, parent_key, name, target_key, in_array)) return false;
  if (already_visited) return true;
  for (const JsonMember& member : value.members) {
    if (!WriteMember(run, target_key, member)) return false;
  }
  return true;
}

bool WriteArray(RunState& run, const std::string& parent_key, const std::string& name,
                const JsonValue& value, bool in_array) {
  const std::string array_key = DerivedKey(parent_key, name);
  if (run.merge_mode &&
      !PruneProperty(run, parent_key, name, array_key, in_array, ExpectedKind::kList)) {
    return false;
  }
  for (std::size_t i = 0; i < value.elements.size(); ++i) {
    const JsonValue& element = value.elements[i];
    bool written = false;
    if (element.kind == Kind::kObject) {
      written = WriteObject(run, array_key, std::to_string(i), element, true);
    } else if (element.kind == Kind::kArray) {
      written = WriteArray(run, array_key, std::to_string(i), element, true);
    } else {
      written = PutItem(run, array_key, RenderedValue(element));
    }
    if (!written) return false;
  }
  return PutReference(run, kArrayMarker, parent_key, name, array_key, in_array);
}

bool WriteReserved(RunState& run, const std::string& key, const JsonMember& member) {
  if (!IsReserved(member.name) || member.value.kind != Kind::kString) return false;
  return PutField(run, key, member.name, Escaped(member.value.text));
}

bool WriteScalar(RunState& run, const std::string& key, const JsonMember& member) {
  if (run.merge_mode) {
    // A scalar is written even when its old shape could not be pruned.
    PruneProperty(run, key, member.name, "", false, ExpectedKind::kNone);
  }
  return PutField(run, key, member.name, RenderedValue(member.value));
}

bool WriteMember(RunState& run, const std::string& key, const JsonMember& member) {
  if (member.value.kind == Kind::kObject) {
    return WriteObject(run, key, member.name, member.value, false);
  }
  if (member.value.kind == Kind::kArray) {
    return WriteArray(run, key, member.name, member.value, false);
  }
  return WriteReserved(run, key, member) || WriteScalar(run, key, member);
}

}  // namespace

bool WriteRoot(RunState& run, const std::string& key, const JsonValue& root) {
  bool& visited = run.visited[key];
  if (visited) return true;
  visited = true;
  bool last = true;
  for (const JsonMember& member : root.members) last = WriteMember(run, key, member);
  return last;
}

}  // namespace model
