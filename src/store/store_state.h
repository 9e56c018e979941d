// All that the store remembers during a run. One thread uses it, without locks.
#ifndef OSTRAFEL_STORE_STORE_STATE_H_
#define OSTRAFEL_STORE_STORE_STATE_H_

#include <cstdint>
#include <map>
#include <string>
#include <vector>

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

/// Fields waiting for FlushHashBatch: key -> field -> value. Queuing a field again replaces its
/// value.
extern std::map<std::string, std::map<std::string, std::string>> HashBatch;
/// PutHashField calls since PutHashField last flushed. A replaced field counts again.
extern std::uint32_t HashBatchCount;

/// Values waiting for FlushListBatch: key -> values in queue order, duplicates kept.
extern std::map<std::string, std::vector<std::string>> ListBatch;
/// Values queued since PutListItem last flushed.
extern std::uint32_t ListBatchCount;

/// Removals waiting for FlushRemovalBatch, duplicates kept.
struct PendingRemovals {
  std::vector<std::string> keys;                                ///< Whole keys, in queue order.
  std::map<std::string, std::vector<std::string>> list_values;  ///< List key -> equal values.
  std::map<std::string, std::vector<std::string>> hash_fields;  ///< Hash key -> field names.
};
extern PendingRemovals RemovalBatch;
/// Removals of all three kinds queued since QueueRemoval last flushed. The flushes that the puts
/// and the driver make do not reset it.
extern std::uint32_t RemovalBatchCount;

/// Returns everything above to its state at program start. For tests; a run never calls it.
void ResetStoreState();

#endif  // OSTRAFEL_STORE_STORE_STATE_H_
