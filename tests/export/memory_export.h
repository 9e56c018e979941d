// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// An export of a store that is kept in memory.
#ifndef OSTRAFEL_TESTS_EXPORT_MEMORY_EXPORT_H_
#define OSTRAFEL_TESTS_EXPORT_MEMORY_EXPORT_H_

#include <cstddef>
#include <map>
#include <string>
#include <vector>

#include "export/document.h"
#include "export/loss.h"
#include "export/plan.h"
#include "export/store_keys.h"
#include "memory/memory_server.h"

namespace ostrafel {

/// Learns of a store in memory as LearnKeys does of a server.
[[nodiscard]] StoreKeys LearnKeysOf(const Server& server, const ExportScope& scope);

/// A store with the plan of its export.
struct PlannedExport {
  const Server& server;
  ExportScope scope;
  StoreKeys keys;
  Plan plan;

  PlannedExport(const Server& stored, ExportScope wanted, bool windows_names = false);
  PlannedExport(const PlannedExport&) = delete;
  PlannedExport& operator=(const PlannedExport&) = delete;

  /// What the keys of the plan's document with this number hold.
  [[nodiscard]] Contents ContentsOf(std::size_t document) const;

  /// Makes that document.
  [[nodiscard]] DocumentText Write(std::size_t document, RootForm form) const;

  /// The keys that no document of the plan has; sorted.
  [[nodiscard]] std::vector<std::string> Unplaced() const;
};

/// The text of each folder's file and what does not come back.
struct MemoryExport {
  std::map<std::string, std::string> documents;
  Losses losses;
};

/// Exports all that is at and below the URI. "&&File" of a root is left out, and listed, as the
/// files that a load would include are not there. A key that is in no document is listed as
/// "unplaced", one in a spare folder as "spare".
[[nodiscard]] MemoryExport ExportOf(const Server& server, const std::string& uri,
                                    bool windows_names = false);

/// One line for each: "key | record | reason".
[[nodiscard]] std::vector<std::string> TextsOf(const Losses& losses);

}  // namespace ostrafel

#endif  // OSTRAFEL_TESTS_EXPORT_MEMORY_EXPORT_H_
