// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "support/temp_directory.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <stdexcept>

TempDirectory::TempDirectory() : TempDirectory(std::filesystem::temp_directory_path().string()) {}

TempDirectory::TempDirectory(const std::string& parent) : path_(parent + "/ostrafel-test.XXXXXX") {
  if (mkdtemp(path_.data()) == nullptr) throw std::runtime_error("cannot make " + path_);
}

TempDirectory::~TempDirectory() {
  std::error_code ignored;
  std::filesystem::remove_all(path_, ignored);
}

std::string TempDirectory::Write(const std::string& name, const std::string& content) const {
  const std::filesystem::path file = path(name);
  std::filesystem::create_directories(file.parent_path());
  std::ofstream stream(file, std::ios::binary);
  stream << content;
  if (!stream.flush()) throw std::runtime_error("cannot write " + file.string());
  return file.string();
}

std::string TempDirectory::MakeFolder(const std::string& name) const {
  std::filesystem::create_directories(path(name));
  return path(name);
}
