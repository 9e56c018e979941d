// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include <benchmark/benchmark.h>

#include <string>

#include "layout/layout.h"
#include "pieces/expect.h"

namespace ostrafel {

namespace {

// The key is assigned again each time, into memory that it has already.
void MeasureNormalizeKey(benchmark::State& state, const std::string& path,
                         const std::string& normalized) {
  std::string key;
  for ([[maybe_unused]] auto _ : state) {
    key = path;
    NormalizeKey(key);
    benchmark::DoNotOptimize(key);
  }
  Expect(key == normalized, "the key is normalized");
}

BENCHMARK_CAPTURE(MeasureNormalizeKey, single_slashes,
                  "/redfish/v1/Systems/Node1/Storage/Nvme/Status",
                  "&&/redfish/v1/Systems/Node1/Storage/Nvme/Status")
    ->Name("NormalizeKey/single_slashes");
BENCHMARK_CAPTURE(MeasureNormalizeKey, prefixed, "&&/redfish/v1/Systems/Node1/Storage/Nvme/Status",
                  "&&/redfish/v1/Systems/Node1/Storage/Nvme/Status")
    ->Name("NormalizeKey/prefixed");
BENCHMARK_CAPTURE(MeasureNormalizeKey, runs_of_slashes,
                  "/redfish/v1//Systems/Node1///Storage/Nvme//Status",
                  "&&/redfish/v1/Systems/Node1/Storage/Nvme/Status")
    ->Name("NormalizeKey/runs_of_slashes");

void MeasureDerivedKey(benchmark::State& state, const std::string& parent_key,
                       const std::string& name, const std::string& derived) {
  Expect(DerivedKey(parent_key, name) == derived, "the key is derived");
  for ([[maybe_unused]] auto _ : state) benchmark::DoNotOptimize(DerivedKey(parent_key, name));
}

BENCHMARK_CAPTURE(MeasureDerivedKey, of_resource, "/redfish/v1/Systems/Node1/Storage/Nvme",
                  "Status", "&&/redfish/v1/Systems/Node1/Storage/Nvme/Status")
    ->Name("DerivedKey/of_resource");
BENCHMARK_CAPTURE(MeasureDerivedKey, of_derived_key,
                  "&&/redfish/v1/Systems/Node1/Storage/Nvme/Status", "Conditions",
                  "&&/redfish/v1/Systems/Node1/Storage/Nvme/Status/Conditions")
    ->Name("DerivedKey/of_derived_key");
BENCHMARK_CAPTURE(MeasureDerivedKey, runs_of_slashes, "/redfish/v1//Systems/Node1/Storage/Nvme/",
                  "Status", "&&/redfish/v1/Systems/Node1/Storage/Nvme/Status")
    ->Name("DerivedKey/runs_of_slashes");

}  // namespace

}  // namespace ostrafel
