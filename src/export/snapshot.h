// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// Reading a store document by document, as it is at one moment.
#ifndef OSTRAFEL_EXPORT_SNAPSHOT_H_
#define OSTRAFEL_EXPORT_SNAPSHOT_H_

#include <hiredis/hiredis.h>

#include <functional>
#include <string>
#include <vector>

#include "export/document.h"
#include "export/plan.h"
#include "export/store_keys.h"

namespace ostrafel {

/// Who takes the documents.
struct DocumentTaker {
  /// Is told that a reading begins: what was taken before counts no more.
  std::function<void()> begin;
  /// Takes a document, and tells which keys it has now.
  std::function<WrittenKeys(const PlannedDocument& document, const StoreKeys& keys,
                            const Contents& contents)>
      take;
};

/// What was read, but for the documents.
struct Snapshot {
  StoreKeys keys;
  std::vector<const KeyEntry*> lost;  ///< Keys that are in no document (IsLost); sorted.
};

/// Reads the scope and gives one document after the other away; no more than one is in memory.
///
/// First learns of all keys (LearnKeys), and plans. Up to kKeysAtOnce keys, one that stands in
/// several documents counted with each, are then read in one MULTI ... EXEC, and must still lead to
/// each other as before. More, and all where the server's memory is full, are read in pipelines,
/// and must hold what they held at the first reading; those that did not are read in one MULTI ...
/// EXEC between the two readings the next time, and kept in memory, as long as they are no more
/// than kKeysAtOnce. So what is given away was in the store at one moment; but no reading tells of
/// a key that changes and changes back between two of them.
///
/// Tried kMostReadings times. Raises runtime_error when the store never held still, and as
/// StreamKeys does; what the taker raises ends the reading.
[[nodiscard]] Snapshot ReadDocuments(redisContext* context, const ExportScope& scope,
                                     bool windows_names, const DocumentTaker& taker);

}  // namespace ostrafel

#endif  // OSTRAFEL_EXPORT_SNAPSHOT_H_
