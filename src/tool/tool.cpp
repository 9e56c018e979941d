// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "tool/tool.h"

#include <jansson.h>

#include <cstddef>
#include <cstdlib>
#include <new>

#include "base/message.h"
#include "text/utf8.h"
#include "tool/output.h"

namespace ostrafel {

namespace {

bool is_json_memory_exhausted = false;  // since SurviveJsonMemory

void PrintOutOfMemory() { PrintMessage("%s: out of memory\n", ToolName); }

// For jansson, through which no exception passes.
void* AllocateOrEnd(std::size_t size) {
  void* memory = std::malloc(size);
  if (memory == nullptr) {
    Messages.collector = nullptr;  // of a play, whose messages nobody will see
    PrintOutOfMemory();
    std::_Exit(kTrouble);
  }
  return memory;
}

void* AllocateAndRemember(std::size_t size) {
  void* memory = std::malloc(size);
  if (memory == nullptr) is_json_memory_exhausted = true;
  return memory;
}

}  // namespace

void SurviveJsonMemory() {
  is_json_memory_exhausted = false;
  json_set_alloc_funcs(AllocateAndRemember, std::free);
}

void CheckJsonMemory() {
  if (is_json_memory_exhausted) throw std::bad_alloc();
}

void PrintTrouble(const std::string& message) {
  PrintMessage("%s: %s\n", ToolName, Printable(message).c_str());
}

void PrintFailure(const std::exception& error) {
  if (dynamic_cast<const std::bad_alloc*>(&error) != nullptr) {
    PrintOutOfMemory();
  } else {
    PrintTrouble(error.what());
  }
}

int RunTool(int argc, char** argv, int (*run)(int argc, char** argv)) {
  ReserveStandardDescriptors();
  json_set_alloc_funcs(AllocateOrEnd, std::free);
  try {
    return run(argc, argv);
  } catch (const std::exception& error) {
    PrintFailure(error);
  }
  return kTrouble;
}

}  // namespace ostrafel
