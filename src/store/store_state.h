// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// All that the store remembers during a run. One thread uses it, without locks.
#ifndef OSTRAFEL_STORE_STORE_STATE_H_
#define OSTRAFEL_STORE_STORE_STATE_H_

#include <cstdint>
#include <map>
#include <memory_resource>
#include <string>
#include <string_view>
#include <vector>

#include "store/keyed_batch.h"

namespace ostrafel {

/// True in an update: a member's older shape is pruned before its new value is written. Cleared by
/// a create, whose tree starts empty.
extern bool MergeMode;

/// Root keys and "@odata.id" keys -> whether the members of the object there were, or are just
/// being, written. They are written once per run, by whichever file comes first.
extern std::map<std::string, bool> VisitedResourceMap;

/// Prefixes -> whether every key below (prefix + "/...") was queued for unlinking. Outlives the
/// flushes, so that a subtree is scanned once per run, however many members point into it. Looking
/// a prefix up adds it as false.
extern std::map<std::string, bool> PrunedPrefixes;

/// A producer that finds this many items queued since its last flush flushes before it queues.
inline constexpr std::uint32_t BatchLimit = 2000;

/// Texts that a KeyedBatch keeps.
using KeptTexts = std::pmr::vector<const char*>;

/// Queues a copy of text as the last for key, of which a new one is copied, too.
void QueueText(const char* key, std::string_view text, KeyedBatch<KeptTexts>* batch);

/// A field of a hash; a KeyedBatch keeps the texts.
struct Field {
  const char* name;
  const char* value;
};

/// Fields waiting for FlushHashBatch: key -> fields in ascending byte order of their names, each
/// name once. Queuing a field again replaces its value.
extern KeyedBatch<std::pmr::vector<Field>> HashBatch;
/// PutHashField calls since PutHashField last flushed. A replaced field counts again.
extern std::uint32_t HashBatchCount;

/// Values waiting for FlushListBatch: key -> values in queue order, duplicates kept.
extern KeyedBatch<KeptTexts> ListBatch;
/// Values queued since PutListItem last flushed.
extern std::uint32_t ListBatchCount;

/// Removals waiting for FlushRemovalBatch, duplicates kept.
struct PendingRemovals {
  std::vector<std::string> keys;      ///< Whole keys, in queue order.
  KeyedBatch<KeptTexts> list_values;  ///< List key -> equal values.
  KeyedBatch<KeptTexts> hash_fields;  ///< Hash key -> field names.

  /// Empties all three.
  void clear();  // NOLINT(readability-identifier-naming): named as those of the three
};
extern PendingRemovals RemovalBatch;
/// Removals of all three kinds queued since QueueRemoval last flushed. The flushes that the puts
/// and the driver make do not reset it.
extern std::uint32_t RemovalBatchCount;

/// Returns everything above to its state at program start. For tests; a run never calls it.
void ResetStoreState();

}  // namespace ostrafel

#endif  // OSTRAFEL_STORE_STORE_STATE_H_
