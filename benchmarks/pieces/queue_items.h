// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// What the benchmarks of the batches queue and send: a full batch of strings like those of a tree.
#ifndef OSTRAFEL_BENCHMARKS_PIECES_QUEUE_ITEMS_H_
#define OSTRAFEL_BENCHMARKS_PIECES_QUEUE_ITEMS_H_

#include <cstddef>
#include <string>
#include <vector>

#include "store/queue.h"
#include "store/store_state.h"

namespace ostrafel {

struct QueueItem {
  std::string key;
  std::string field;
  std::string value;
};

/// So many items, queued since the last flush, are the most that none is flushed for.
inline constexpr std::size_t kBatchItems = BatchLimit;

/// kBatchItems items, items_per_key after one another for each key; keys in ascending order, fields
/// in that of documents, which is none. No field of a key and no value is there twice. At most
/// eight items have the same key.
[[nodiscard]] std::vector<QueueItem> MakeQueueItems(std::size_t items_per_key);

/// These empty the state of the store and queue every item: into HashBatch, into ListBatch, or the
/// removal of it into RemovalBatch. Nothing is flushed, so server may be null. Return 1 when each
/// item was queued, else 0.
[[nodiscard]] unsigned QueueFields(Server* server, const std::vector<QueueItem>& items);
[[nodiscard]] unsigned QueueValues(Server* server, const std::vector<QueueItem>& items);
[[nodiscard]] unsigned QueueRemovals(Server* server, const std::vector<QueueItem>& items,
                                     RemovalKind kind);

}  // namespace ostrafel

#endif  // OSTRAFEL_BENCHMARKS_PIECES_QUEUE_ITEMS_H_
