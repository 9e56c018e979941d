// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// Each flush of a full batch, against a server: from the first command that is formatted to the
// last reply that is read. Queuing is not measured. The times are those of one item.
#include <benchmark/benchmark.h>

#include <vector>

#include "pieces/expect.h"
#include "pieces/queue_items.h"
#include "pieces/sandbox_server.h"
#include "redis/redis_server.h"
#include "store/queue.h"
#include "store/store_state.h"

namespace ostrafel {

namespace {

using Queue = unsigned (*)(Server*, const std::vector<QueueItem>&);
using Flush = unsigned (*)(Server*);

// length is the command that tells how much a key of the kind holds.
void MeasureFlushOfWrites(benchmark::State& state, Queue queue, Flush flush, const char* length) {
  Server server = {ConnectSandboxServer(state)};
  redisContext* context = server.connection.get();
  if (context == nullptr) return;
  const std::vector<QueueItem> items = MakeQueueItems(8);
  unsigned result = 1;
  while (state.KeepRunningBatch(kBatchItems)) {
    state.PauseTiming();
    EmptyServer(context);
    result &= queue(&server, items);
    state.ResumeTiming();
    result &= flush(&server);
  }
  Expect(result == 1 && AskForInteger(context, "DBSIZE") == kBatchItems / 8 &&
             AskForInteger(context, length, items.back().key.c_str()) == 8,
         "the server holds what was sent");
}
BENCHMARK_CAPTURE(MeasureFlushOfWrites, hashes, QueueFields, FlushHashBatch, "HLEN")
    ->Name("FlushHashBatch")
    ->UseRealTime();
BENCHMARK_CAPTURE(MeasureFlushOfWrites, lists, QueueValues, FlushListBatch, "LLEN")
    ->Name("FlushListBatch")
    ->UseRealTime();

// Everything that is to be removed is there.
void MeasureFlushRemovalBatch(benchmark::State& state, RemovalKind kind, int items_per_key) {
  Server server = {ConnectSandboxServer(state)};
  redisContext* context = server.connection.get();
  if (context == nullptr) return;
  const std::vector<QueueItem> items = MakeQueueItems(static_cast<std::size_t>(items_per_key));
  EmptyServer(context);
  unsigned result = 1;
  while (state.KeepRunningBatch(kBatchItems)) {
    state.PauseTiming();
    if (kind == RemoveListValue) {
      result &= QueueValues(&server, items) & FlushListBatch(&server);
    } else {
      result &= QueueFields(&server, items) & FlushHashBatch(&server);
    }
    Expect(AskForInteger(context, "DBSIZE") == static_cast<long long>(kBatchItems) / items_per_key,
           "the server holds what will be removed");
    result &= QueueRemovals(&server, items, kind);
    state.ResumeTiming();
    result &= FlushRemovalBatch(&server);
  }
  Expect(result == 1 && AskForInteger(context, "DBSIZE") == 0, "all of it is removed");
}
BENCHMARK_CAPTURE(MeasureFlushRemovalBatch, keys, RemoveKey, 1)
    ->Name("FlushRemovalBatch/keys")
    ->UseRealTime();
BENCHMARK_CAPTURE(MeasureFlushRemovalBatch, list_values, RemoveListValue, 8)
    ->Name("FlushRemovalBatch/list_values")
    ->UseRealTime();
BENCHMARK_CAPTURE(MeasureFlushRemovalBatch, fields, RemoveField, 8)
    ->Name("FlushRemovalBatch/fields")
    ->UseRealTime();

}  // namespace

}  // namespace ostrafel
