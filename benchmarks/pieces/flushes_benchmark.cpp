// Each flush of a full batch, against a server: from the first command that is formatted to the
// last reply that is read. Queuing is not measured. The times are those of one item.
#include <benchmark/benchmark.h>

#include <vector>

#include "pieces/expect.h"
#include "pieces/queue_items.h"
#include "pieces/sandbox_server.h"
#include "store/command_batches.h"
#include "store/store_state.h"

namespace {

void MeasureFlushHashBatch(benchmark::State& state) {
  const StoreConnection connection = ConnectSandboxServer(state);
  if (!connection) return;
  redisContext* context = connection.get();
  const std::vector<QueueItem> items = MakeQueueItems(8);
  unsigned result = 1;
  while (state.KeepRunningBatch(kBatchItems)) {
    state.PauseTiming();
    EmptyServer(context);
    result &= QueueFields(context, items);
    state.ResumeTiming();
    result &= FlushHashBatch(context);
  }
  Expect(result == 1 && AskForInteger(context, "DBSIZE") == kBatchItems / 8 &&
             AskForInteger(context, "HLEN", items.back().key.c_str()) == 8,
         "the server holds the hashes");
}
BENCHMARK(MeasureFlushHashBatch)->Name("FlushHashBatch")->UseRealTime();

void MeasureFlushListBatch(benchmark::State& state) {
  const StoreConnection connection = ConnectSandboxServer(state);
  if (!connection) return;
  redisContext* context = connection.get();
  const std::vector<QueueItem> items = MakeQueueItems(8);
  unsigned result = 1;
  while (state.KeepRunningBatch(kBatchItems)) {
    state.PauseTiming();
    EmptyServer(context);
    result &= QueueValues(context, items);
    state.ResumeTiming();
    result &= FlushListBatch(context);
  }
  Expect(result == 1 && AskForInteger(context, "DBSIZE") == kBatchItems / 8 &&
             AskForInteger(context, "LLEN", items.back().key.c_str()) == 8,
         "the server holds the lists");
}
BENCHMARK(MeasureFlushListBatch)->Name("FlushListBatch")->UseRealTime();

// Everything that is to be removed is there.
void MeasureFlushRemovalBatch(benchmark::State& state, RemovalKind kind, int items_per_key) {
  const StoreConnection connection = ConnectSandboxServer(state);
  if (!connection) return;
  redisContext* context = connection.get();
  const std::vector<QueueItem> items = MakeQueueItems(static_cast<std::size_t>(items_per_key));
  EmptyServer(context);
  unsigned result = 1;
  while (state.KeepRunningBatch(kBatchItems)) {
    state.PauseTiming();
    if (kind == RemoveListValue) {
      result &= QueueValues(context, items) & FlushListBatch(context);
    } else {
      result &= QueueFields(context, items) & FlushHashBatch(context);
    }
    Expect(AskForInteger(context, "DBSIZE") == static_cast<long long>(kBatchItems) / items_per_key,
           "the server holds what will be removed");
    result &= QueueRemovals(context, items, kind);
    state.ResumeTiming();
    result &= FlushRemovalBatch(context);
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
