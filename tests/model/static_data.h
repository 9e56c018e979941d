// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#ifndef OSTRAFEL_TESTS_MODEL_STATIC_DATA_H_
#define OSTRAFEL_TESTS_MODEL_STATIC_DATA_H_

#include <string>
#include <vector>

namespace model {

/// One file to load and the key that its root object goes to.
struct LoadEntry {
  std::string path;
  std::string key;
};

/// True when both texts have one length and differ at most in the case of ASCII letters.
bool SameIgnoringCase(const std::string& left, const std::string& right);

/// True for a regular file that ends in ".json" in any case. Adds a line to `err` when the path
/// cannot be examined.
bool IsJsonFile(const std::string& path, std::string& err);

/// True for a directory, symbolic links followed.
bool IsDirectory(const std::string& path);

/// Appends an entry for every file of this name in the directory and below it, in the order of the
/// listings, depth first. False when a directory cannot be opened or read to its end.
bool WalkStaticData(const std::string& directory, const std::string& key,
                    const std::string& file_name, std::vector<LoadEntry>& entries,
                    std::string& err);

}  // namespace model

#endif  // OSTRAFEL_TESTS_MODEL_STATIC_DATA_H_
