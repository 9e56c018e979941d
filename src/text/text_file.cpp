// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "text/text_file.h"

#include <sys/stat.h>

#include <array>
#include <cstddef>
#include <cstdio>

#include "base/files.h"

namespace ostrafel {

namespace {

bool IsRegularFile(const std::string& path) {
  struct stat status = {};
  return stat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode);
}

}  // namespace

std::string ReadTextFile(const std::string& path) {
  std::string text;
  if (!IsRegularFile(path)) return text;
  const File file(std::fopen(path.c_str(), "r"));
  if (!file) return text;
  static std::array<char, 32768> buffer;  // cleared once, not for every file
  // The whole buffer at a time: stdio's own would only be copied from.
  (void)std::setvbuf(file.get(), nullptr, _IONBF, 0);
  while (const std::size_t size = std::fread(buffer.data(), 1, buffer.size(), file.get())) {
    text.append(buffer.data(), size);
  }
  return text;
}

}  // namespace ostrafel
