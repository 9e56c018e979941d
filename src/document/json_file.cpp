// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "document/json_file.h"

#include <array>
#include <cstdio>
#include <cstdlib>
#include <new>

#include "base/files.h"

namespace ostrafel {

namespace {

// Set when jansson gets no memory. Its parser leaves out, silently, the characters of a text that
// it has no memory for.
bool is_memory_exhausted = false;

void* Allocate(std::size_t size) {
  void* memory = std::malloc(size);
  if (memory == nullptr) is_memory_exhausted = true;
  return memory;
}

// stdio's buffer of the file that is being read, one at a time. Most files fit in and take one
// read.
std::array<char, std::size_t{32} * 1024> file_buffer;

}  // namespace

Document LoadJsonFile(const char* path) {
  const File file(std::fopen(path, "r"));
  if (!file) return nullptr;
  (void)std::setvbuf(file.get(), file_buffer.data(), _IOFBF, file_buffer.size());

  constexpr std::array<unsigned char, 3> byte_order_mark = {0xEF, 0xBB, 0xBF};
  std::array<unsigned char, 3> start = {};
  if (std::fread(start.data(), 1, start.size(), file.get()) < start.size()) {
    (void)std::fputs("error: Failed to read file.\n", stderr);
  }
  if (start != byte_order_mark) std::rewind(file.get());

  json_set_alloc_funcs(Allocate, std::free);
  is_memory_exhausted = false;
  json_error_t error;
  Document document(json_loadf(file.get(), 0, &error));
  if (!document) (void)std::fprintf(stderr, "error: on line %d: %s\n", error.line, error.text);
  // A document that lacks a character must not be stored.
  if (document && is_memory_exhausted) throw std::bad_alloc();
  return document;
}

}  // namespace ostrafel
