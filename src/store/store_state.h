// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// All that the store remembers during a run.
#ifndef OSTRAFEL_STORE_STORE_STATE_H_
#define OSTRAFEL_STORE_STORE_STATE_H_

#include <cstdint>
#include <functional>
#include <map>
#include <memory_resource>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "store/keyed_batch.h"

namespace ostrafel {

/// The most items queued between two flushes of a batch (queue.h).
inline constexpr std::uint32_t BatchLimit = 2000;

/// Strings that a KeyedBatch keeps.
using KeptStrings = std::pmr::vector<const char*>;

/// A field of a hash; a KeyedBatch keeps the strings.
struct Field {
  const char* name;
  const char* value;
};

/// Removals waiting for FlushRemovalBatch, duplicates kept.
struct PendingRemovals {
  std::vector<std::string> keys;        ///< Whole keys, in queue order.
  KeyedBatch<KeptStrings> list_values;  ///< List key -> equal values.
  KeyedBatch<KeptStrings> hash_fields;  ///< Hash key -> field names.

  /// Empties all three.
  void clear();  // NOLINT(readability-identifier-naming): named as those of the three
};

struct StoreState {
  /// True in an update: a member's older shape is pruned before its new value is written. Cleared
  /// by a create, whose tree starts empty.
  bool MergeMode = true;

  /// Keys of root objects, and of objects with an "@odata.id", -> whether this run has written
  /// their members or is writing them: once, for whichever file comes first.
  std::map<std::string, bool> VisitedResourceMap;

  /// Prefixes whose keys below (prefix + "/...") were all queued for unlinking. Outlives the
  /// flushes, so that a subtree is searched once per run, however many members point into it.
  std::set<std::string, std::less<>> PrunedPrefixes;

  /// Fields waiting for FlushHashBatch: key -> fields in ascending byte order of their names, each
  /// name once. Queuing a field again replaces its value.
  KeyedBatch<std::pmr::vector<Field>> HashBatch;
  /// PutHashField calls since PutHashField last flushed. A replaced field counts again.
  std::uint32_t HashBatchCount = 0;

  /// Values waiting for FlushListBatch: key -> values in queue order, duplicates kept.
  KeyedBatch<KeptStrings> ListBatch;
  /// Values queued since PutListItem last flushed.
  std::uint32_t ListBatchCount = 0;

  PendingRemovals RemovalBatch;
  /// Removals of all three kinds queued since QueueRemoval last flushed. The flushes that the puts
  /// and the end of a load make do not reset it.
  std::uint32_t RemovalBatchCount = 0;
};

/// The state of the run, never empty: optional only so that emplace() begins a new run with a fresh
/// one, which cannot be assigned. One thread uses it, without locks.
extern std::optional<StoreState> Store;

}  // namespace ostrafel

#endif  // OSTRAFEL_STORE_STORE_STATE_H_
