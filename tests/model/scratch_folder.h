// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#ifndef OSTRAFEL_TESTS_MODEL_SCRATCH_FOLDER_H_
#define OSTRAFEL_TESTS_MODEL_SCRATCH_FOLDER_H_

#include <stdlib.h>

#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>
#include <system_error>

namespace model {

/// A new, empty folder of a test's own, removed with all that is in it at the end.
class ScratchFolder {
 public:
  ScratchFolder() {
    std::string path = (std::filesystem::temp_directory_path() / "model-XXXXXX").string();
    if (mkdtemp(path.data()) == nullptr) throw std::runtime_error("cannot make " + path);
    path_ = path;
  }
  ~ScratchFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }
  ScratchFolder(const ScratchFolder&) = delete;
  ScratchFolder& operator=(const ScratchFolder&) = delete;

  /// The folder's path, without a slash at its end.
  const std::string& Path() const { return path_; }

  /// Writes a file at a path below the folder, with the folders on its way, and returns its whole
  /// path.
  std::string Write(const std::string& below, const std::string& text) const {
    const std::filesystem::path path = std::filesystem::path(path_) / below;
    std::filesystem::create_directories(path.parent_path());
    std::ofstream file(path, std::ios::binary);
    file << text;
    file.close();
    if (!file) throw std::runtime_error("cannot write " + path.string());
    return path.string();
  }

 private:
  std::string path_;
};

}  // namespace model

#endif  // OSTRAFEL_TESTS_MODEL_SCRATCH_FOLDER_H_
