#include "document/json_file.h"

#include <array>
#include <cstdio>

Document LoadJsonFile(const char* path) {
  const File file(std::fopen(path, "r"));
  if (!file) return nullptr;

  constexpr std::array<unsigned char, 3> byte_order_mark = {0xEF, 0xBB, 0xBF};
  std::array<unsigned char, 3> start = {};
  if (std::fread(start.data(), 1, start.size(), file.get()) < start.size()) {
    (void)std::fputs("error: Failed to read file.\n", stderr);
  }
  if (start != byte_order_mark) std::rewind(file.get());

  json_error_t error;
  Document document(json_loadf(file.get(), 0, &error));
  if (!document) (void)std::fprintf(stderr, "error: on line %d: %s\n", error.line, error.text);
  return document;
}
