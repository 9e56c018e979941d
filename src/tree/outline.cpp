// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "tree/outline.h"

#include <algorithm>
#include <string_view>

#include "layout/resource_id.h"
#include "layout/value_rendering.h"
#include "text/json_pointer.h"

namespace ostrafel {

namespace {

std::string NameOf(const Node& node) {
  return node.name != nullptr ? node.name : std::to_string(node.index);
}

// Says what an object, an array or a link is, and its key.
void Classify(const Outline& outline, Node* node) {
  const json_t* value = node->value;
  if (json_is_array(value)) {
    node->kind = NodeKind::kArray;
    node->key = DerivedKey(outline[node->parent].key, NameOf(*node));
    return;
  }
  if (!json_is_object(value)) return;
  const json_t* id = json_object_get(value, IdMember);
  if (id == nullptr) {
    node->kind = NodeKind::kObject;
    node->key = DerivedKey(outline[node->parent].key, NameOf(*node));
  } else if (!json_is_string(id)) {
    node->kind = NodeKind::kBadId;
  } else {
    node->kind = IsLink(value) ? NodeKind::kLink : NodeKind::kObject;
    node->key = json_string_value(id);
    node->has_own_id = node->kind == NodeKind::kObject;
  }
}

void AppendChildren(Outline* outline, std::size_t parent);

void Append(Outline* outline, Node node) {
  Classify(*outline, &node);
  outline->push_back(std::move(node));
  AppendChildren(outline, outline->size() - 1);
}

void AppendChildren(Outline* outline, std::size_t parent) {
  const NodeKind kind = (*outline)[parent].kind;
  const json_t* value = (*outline)[parent].value;
  if (kind == NodeKind::kArray) {
    for (std::size_t i = 0; i < json_array_size(value); ++i) {
      Append(outline, {json_array_get(value, i), parent, nullptr, i});
    }
  } else if (kind == NodeKind::kObject) {
    // jansson's iterators take no const object, though they change none.
    auto* object = const_cast<json_t*>(value);  // NOLINT(cppcoreguidelines-pro-type-const-cast)
    for (void* member = json_object_iter(object); member != nullptr;
         member = json_object_iter_next(object, member)) {
      Append(outline, {json_object_iter_value(member), parent, json_object_iter_key(member)});
    }
  }
}

}  // namespace

Outline OutlineOf(const json_t* root, const std::string& key) {
  Outline outline;
  if (!json_is_object(root)) return outline;
  outline.push_back({root, 0, nullptr, 0, NodeKind::kObject, key});
  AppendChildren(&outline, 0);
  return outline;
}

std::string PointerOf(const Outline& outline, std::size_t node) {
  std::vector<std::size_t> path;
  for (; node != 0; node = outline[node].parent) path.push_back(node);
  std::string pointer;
  for (auto step = path.rbegin(); step != path.rend(); ++step) {
    AppendStep(NameOf(outline[*step]), &pointer);
  }
  return pointer;
}

Record RecordOf(const Outline& outline, std::size_t node) {
  const Node& self = outline[node];
  const ParentKind parent =
      outline[self.parent].kind == NodeKind::kArray ? ParentKind::kList : ParentKind::kHash;
  const bool is_field = parent == ParentKind::kHash;
  const char* marker = ObjectMarker;
  switch (self.kind) {
    case NodeKind::kScalar: {
      std::string value = RenderValue(self.value);
      if (is_field && IsReservedProperty(self.name) && json_is_string(self.value)) {
        value = json_string_value(self.value);
        EscapeText(value);
      }
      return {parent, is_field ? self.name : "", std::move(value)};
    }
    case NodeKind::kLink:
      marker = ObjectRefMarker;
      break;
    case NodeKind::kArray:
      marker = ArrayMarker;
      break;
    case NodeKind::kObject:
    case NodeKind::kBadId:
      break;
  }
  std::string record = Join(ReferenceRecord(parent, marker, NameOf(self), self.key));
  if (is_field) return {parent, std::move(record), ""};
  return {parent, "", std::move(record)};
}

}  // namespace ostrafel
