// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// Which documents a tree consists of, and which keys each of them is made of.
#ifndef OSTRAFEL_EXPORT_PLAN_H_
#define OSTRAFEL_EXPORT_PLAN_H_

#include <cstddef>
#include <vector>

#include "export/folders.h"
#include "export/store_keys.h"

namespace ostrafel {

/// A resource that has a file.
struct PlannedDocument {
  KeyEntry* root;
  Folder folder;
  std::size_t begin;  ///< Of its keys in the plan's,
  std::size_t end;    ///< and what they end before.
};

/// Every resource has a document of its own. An object that has a key of its own choice stands in
/// each document that has a record of it, too, and a part stands with the one resource that owns
/// it: the first one that has a record of it, where several could.
struct Plan {
  std::vector<PlannedDocument> documents;
  std::vector<KeyEntry*> keys;  ///< Of one document after the other.
};

/// Plans the tree of what keys has in the scope.
///
/// What stands within others has no document of its own where nobody could ask for it, as its key
/// has a "#" or "?"; where it has "&&File", which has no effect but in a document of its own; and
/// where documents that hold each other would make a tree of very many times the keys.
[[nodiscard]] Plan PlanTree(StoreKeys* keys, const ExportScope& scope, Folders* folders);

}  // namespace ostrafel

#endif  // OSTRAFEL_EXPORT_PLAN_H_
