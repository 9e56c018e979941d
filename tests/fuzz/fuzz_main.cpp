// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// What libFuzzer calls, the same for every target.
#include <jansson.h>

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "fuzz/arena.h"
#include "fuzz/fuzz_target.h"

// Options of AddressSanitizer, which it asks for before anything else runs. A reply may claim to be
// an array of 2^31 - 1 elements, for which hiredis asks for the memory at once: allocations beyond
// this size fail as they do on a small machine, instead of ending the process.
extern "C" const char* __asan_default_options() {
  return "allocator_may_return_null=1:max_allocation_size_mb=24:detect_leaks=1:"
         "quarantine_size_mb=16:malloc_context_size=1";
}

// Called once, before the first input.
extern "C" int LLVMFuzzerInitialize(int* /*argc*/, char*** /*argv*/) {
  UseArenaForJson();
  json_object_seed(1);  // equal inputs then do equal things
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  {
    const AllocateInArena allocate_in_arena(true);
    TestOneInput({reinterpret_cast<const char*>(data), size});
  }
  EmptyArena();
  return 0;
}
