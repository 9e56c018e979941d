// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "document/json_file.h"

#include <cstdio>
#include <cstdlib>
#include <new>

#include "base/files.h"
#include "base/message.h"

namespace ostrafel {

namespace {

void* Allocate(std::size_t size) {
  void* memory = std::malloc(size);
  if (memory == nullptr) Documents.is_memory_exhausted = true;
  return memory;
}

JsonFile ReadJsonFile(const char* path) {
  JsonFile result;
  const File file(std::fopen(path, "r"));
  if (!file) return result;
  result.is_open = true;
  auto& buffer = Documents.file_buffer;
  (void)std::setvbuf(file.get(), buffer.data(), _IOFBF, buffer.size());

  constexpr std::array<unsigned char, 3> byte_order_mark = {0xEF, 0xBB, 0xBF};
  std::array<unsigned char, 3> start = {};
  result.is_short = std::fread(start.data(), 1, start.size(), file.get()) < start.size();
  if (start != byte_order_mark) std::rewind(file.get());

  Documents.is_memory_exhausted = false;
  result.root.reset(json_loadf(file.get(), 0, &result.error));
  result.is_refused = result.root == nullptr;
  // A document that lacks a character must not be stored.
  if (result.root && Documents.is_memory_exhausted) throw std::bad_alloc();
  return result;
}

JsonFile Copy(const JsonFile& file) {
  return {Document(json_copy(file.root.get())), file.is_open, file.is_refused, file.is_short,
          file.error};
}

}  // namespace

DocumentState Documents;

void WatchJsonMemory() { json_set_alloc_funcs(Allocate, std::free); }

JsonFile LoadJsonFile(const char* path) {
  if (Documents.kept_files == nullptr) return ReadJsonFile(path);
  const auto [entry, is_new] = Documents.kept_files->try_emplace(path);
  if (is_new) entry->second = ReadJsonFile(path);
  return Copy(entry->second);
}

void PrintJsonFileMessages(const JsonFile& file) {
  if (file.is_short) PrintMessage("error: Failed to read file.\n");
  if (file.is_refused) {
    PrintMessage("error: on line %d: %s\n", file.error.line, file.error.text);
  }
}

}  // namespace ostrafel
