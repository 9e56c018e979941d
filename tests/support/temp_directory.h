// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#ifndef OSTRAFEL_TESTS_SUPPORT_TEMP_DIRECTORY_H_
#define OSTRAFEL_TESTS_SUPPORT_TEMP_DIRECTORY_H_

#include <string>

/// A directory of the test's own, removed with everything in it at the end.
class TempDirectory {
 public:
  /// Made in the directory for temporary files.
  TempDirectory();
  /// Made in this directory.
  explicit TempDirectory(const std::string& parent);
  ~TempDirectory();
  TempDirectory(const TempDirectory&) = delete;
  TempDirectory& operator=(const TempDirectory&) = delete;

  /// Its absolute path, without a slash at the end.
  const std::string& path() const { return path_; }

  /// The absolute path of something in it.
  std::string path(const std::string& name) const { return path_ + "/" + name; }

  /// Writes a file, making the folders that lead to it. Returns its path.
  std::string Write(const std::string& name, const std::string& content) const;

  /// Makes a folder with those that lead to it. Returns its path.
  std::string MakeFolder(const std::string& name) const;

 private:
  std::string path_;
};

#endif  // OSTRAFEL_TESTS_SUPPORT_TEMP_DIRECTORY_H_
