// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// A create only queues until a batch is full, so the writing of a resource can be measured without
// a connection: the document is written as one resource after the other while there is room in the
// batches, which are then thrown away. The times are those of one resource.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdint>
#include <string>
#include <vector>

#include "document/json_file.h"
#include "pieces/expect.h"
#include "store/resource_writer.h"
#include "store/store_state.h"

namespace ostrafel {

namespace {

void BeginCreate() {
  Store.emplace();
  Store->MergeMode = false;
}

void MeasureWriteResource(benchmark::State& state, const char* file) {
  const JsonFile document =
      LoadJsonFile((std::string(OSTRAFEL_SOURCE_DIR "/examples/rackmount/") + file).c_str());
  BeginCreate();
  Expect(
      document.root && WriteResource(nullptr, "/redfish/v1/Copies/1000", document.root.get()) == 1,
      "the document can be written");
  const std::uint32_t fields = Store->HashBatchCount;
  const std::uint32_t values = Store->ListBatchCount;
  Expect(fields > 10, "a resource has fields");

  std::vector<std::string> keys;
  for (std::uint32_t i = 0; i < BatchLimit / std::max(fields, values); ++i) {
    keys.push_back("/redfish/v1/Copies/" + std::to_string(1000 + i));
  }
  unsigned result = 1;
  while (state.KeepRunningBatch(static_cast<benchmark::IterationCount>(keys.size()))) {
    BeginCreate();
    for (const std::string& key : keys) result &= WriteResource(nullptr, key, document.root.get());
  }
  Expect(result == 1 && Store->HashBatchCount == fields * keys.size() &&
             Store->ListBatchCount == values * keys.size(),
         "each resource was queued whole");
  Store.emplace();
  state.counters["fields"] = fields;
  state.counters["values"] = values;
}
BENCHMARK_CAPTURE(MeasureWriteResource, system, "Systems/Node1/index.json")
    ->Name("WriteResource/system");
BENCHMARK_CAPTURE(MeasureWriteResource, sensor, "Chassis/Twin/Sensors/Fan1Speed/index.json")
    ->Name("WriteResource/sensor");

}  // namespace

}  // namespace ostrafel
