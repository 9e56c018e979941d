// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// The outline of a document: which record or key of the store each of its values becomes, when the
// resource writer writes it.
#ifndef OSTRAFEL_TREE_OUTLINE_H_
#define OSTRAFEL_TREE_OUTLINE_H_

#include <jansson.h>

#include <cstddef>
#include <string>
#include <vector>

#include "layout/layout.h"

namespace ostrafel {

enum class NodeKind {
  kScalar,  ///< A field's value, or an element.
  kLink,    ///< Nothing but an "@odata.id" string: a reference record.
  kObject,  ///< A hash.
  kArray,   ///< A list.
  kBadId,   ///< An object whose "@odata.id" is no string: the writer fails at it.
};

/// One value of a document.
struct Node {
  const json_t* value = nullptr;  ///< Borrowed from the document.
  std::size_t parent = 0;         ///< The node that holds it. The root's is the root, node 0.
  const char* name = nullptr;     ///< A member's name, borrowed; null for an element and the root.
  std::size_t index = 0;          ///< An element's place in its array.
  NodeKind kind = NodeKind::kScalar;
  std::string key = {};     ///< Of an object or array its own; of a link its target; else empty.
  bool has_own_id = false;  ///< An object, not the root, that says its key in "@odata.id".
};

/// The values of a document in the order in which the writer comes to them, a parent before what it
/// holds. Empty when the root is no object.
using Outline = std::vector<Node>;

/// The outline of root (borrowed, must outlive the outline) as a resource at key. What a kBadId
/// node holds is left out.
[[nodiscard]] Outline OutlineOf(const json_t* root, const std::string& key);

/// The JSON pointer (RFC 6901) of a node; empty for the root.
[[nodiscard]] std::string PointerOf(const Outline& outline, std::size_t node);

/// Where a node, which is not the root, is recorded in its parent.
struct Record {
  ParentKind parent;  ///< What the parent's key holds.
  std::string field;  ///< The field of the hash; empty in a list.
  std::string value;  ///< The field's value, or the element of the list.
};

/// The record of a node: its name or index with its rendered value, or its reference record. Of a
/// kBadId node that with an empty target.
[[nodiscard]] Record RecordOf(const Outline& outline, std::size_t node);

}  // namespace ostrafel

#endif  // OSTRAFEL_TREE_OUTLINE_H_
