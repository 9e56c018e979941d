// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include <benchmark/benchmark.h>
#include <sys/stat.h>

#include "document/json_file.h"
#include "pieces/expect.h"

namespace ostrafel {

namespace {

constexpr const char* kFile = OSTRAFEL_SOURCE_DIR "/examples/rackmount/Systems/Node1/index.json";

// From the opening of a file that the system holds in memory to the release of the document.
void MeasureLoadJsonFile(benchmark::State& state) {
  struct stat status = {};
  Expect(stat(kFile, &status) == 0 && status.st_size > 2000, "the example is there");
  bool are_all_objects = true;
  for ([[maybe_unused]] auto _ : state) {
    const JsonFile file = LoadJsonFile(kFile);
    are_all_objects = are_all_objects && json_object_size(file.root.get()) > 20;
  }
  Expect(are_all_objects, "the document was read");
  state.SetBytesProcessed(state.iterations() * status.st_size);
}
BENCHMARK(MeasureLoadJsonFile)->Name("LoadJsonFile");

}  // namespace

}  // namespace ostrafel
