// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include <benchmark/benchmark.h>

#include <string>

#include "document/document.h"
#include "layout/value_rendering.h"
#include "pieces/expect.h"

namespace ostrafel {

namespace {

void MeasureRenderValue(benchmark::State& state, const char* json, const std::string& text) {
  json_error_t error;
  const Document array(json_loads((std::string("[") + json + "]").c_str(), 0, &error));
  const json_t* value = json_array_get(array.get(), 0);
  Expect(RenderValue(value) == text, "the value is rendered");
  for ([[maybe_unused]] auto _ : state) benchmark::DoNotOptimize(RenderValue(value));
}

BENCHMARK_CAPTURE(MeasureRenderValue, short_string, R"("Enabled")", R"("Enabled")")
    ->Name("RenderValue/short_string");
BENCHMARK_CAPTURE(MeasureRenderValue, string,
                  R"("/redfish/v1/Systems/Node1/Storage/Nvme/Drives/Drive0")",
                  R"("/redfish/v1/Systems/Node1/Storage/Nvme/Drives/Drive0")")
    ->Name("RenderValue/string");
BENCHMARK_CAPTURE(MeasureRenderValue, escaped_string,
                  R"("The value \"C:\\boot\" is not in the list of \"BootSource\" values.")",
                  R"("The value \"C:\\boot\" is not in the list of \"BootSource\" values.")")
    ->Name("RenderValue/escaped_string");
BENCHMARK_CAPTURE(MeasureRenderValue, integer, "-131072", "-131072")->Name("RenderValue/integer");
BENCHMARK_CAPTURE(MeasureRenderValue, clamped_integer, "549755813888", "2147483647")
    ->Name("RenderValue/clamped_integer");
BENCHMARK_CAPTURE(MeasureRenderValue, real, "38.25", "38.25")->Name("RenderValue/real");
BENCHMARK_CAPTURE(MeasureRenderValue, true, "true", "true")->Name("RenderValue/true");
BENCHMARK_CAPTURE(MeasureRenderValue, false, "false", "false")->Name("RenderValue/false");
BENCHMARK_CAPTURE(MeasureRenderValue, null, "null", "null")->Name("RenderValue/null");

// The string is assigned again each time, into memory that it has already.
void MeasureReplaceAll(benchmark::State& state, const std::string& text,
                       const std::string& replaced) {
  const std::string from = "\"";
  const std::string to = "\\\"";
  std::string result;
  for ([[maybe_unused]] auto _ : state) {
    result = text;
    ReplaceAll(result, from, to);
    benchmark::DoNotOptimize(result);
  }
  Expect(result == replaced, "every occurrence is replaced");
}

BENCHMARK_CAPTURE(MeasureReplaceAll, no_occurrence,
                  "The value BootSource is not in the list of acceptable values.",
                  "The value BootSource is not in the list of acceptable values.")
    ->Name("ReplaceAll/no_occurrence");
BENCHMARK_CAPTURE(MeasureReplaceAll, four_occurrences,
                  R"(The value "None" is not in the list of "BootSource" values.)",
                  R"(The value \"None\" is not in the list of \"BootSource\" values.)")
    ->Name("ReplaceAll/four_occurrences");

}  // namespace

}  // namespace ostrafel
