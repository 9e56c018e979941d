// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// Queuing only: a batch is filled up to its limit and then thrown away, so no connection is needed.
// The times are those of one item, a share of throwing the batch away included.
#include <benchmark/benchmark.h>

#include <cstddef>
#include <vector>

#include "pieces/expect.h"
#include "pieces/queue_items.h"
#include "store/queue.h"
#include "store/store_state.h"

namespace ostrafel {

namespace {

constexpr std::size_t kKeys = kBatchItems / 8;

void MeasurePutHashField(benchmark::State& state) {
  const std::vector<QueueItem> items = MakeQueueItems(8);
  unsigned result = 1;
  while (state.KeepRunningBatch(kBatchItems)) result &= QueueFields(nullptr, items);
  Expect(result == 1 && Store->HashBatchCount == kBatchItems && Store->HashBatch.size() == kKeys,
         "the fields were queued");
  Store.emplace();
}
BENCHMARK(MeasurePutHashField)->Name("PutHashField/new");

// Every field of one object again and again.
void MeasurePutHashFieldAgain(benchmark::State& state) {
  std::vector<QueueItem> items = MakeQueueItems(8);
  for (QueueItem& item : items) item.key = items.front().key;
  unsigned result = 1;
  while (state.KeepRunningBatch(kBatchItems)) result &= QueueFields(nullptr, items);
  Expect(result == 1 && Store->HashBatchCount == kBatchItems && Store->HashBatch.size() == 1,
         "the fields were replaced");
  Store.emplace();
}
BENCHMARK(MeasurePutHashFieldAgain)->Name("PutHashField/replaced");

void MeasurePutListItem(benchmark::State& state) {
  const std::vector<QueueItem> items = MakeQueueItems(8);
  unsigned result = 1;
  while (state.KeepRunningBatch(kBatchItems)) result &= QueueValues(nullptr, items);
  Expect(result == 1 && Store->ListBatchCount == kBatchItems && Store->ListBatch.size() == kKeys,
         "the values were queued");
  Store.emplace();
}
BENCHMARK(MeasurePutListItem)->Name("PutListItem");

}  // namespace

}  // namespace ostrafel
