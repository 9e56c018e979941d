// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// Which files a run loads, and the key that each one's resource goes to.
#ifndef OSTRAFEL_LOADING_STATIC_DATA_WALK_H_
#define OSTRAFEL_LOADING_STATIC_DATA_WALK_H_

#include <string>
#include <vector>

namespace ostrafel {

/// The work of a run, in order: entry i of paths is the file to read, entry i of keys the key that
/// its root object goes to.
struct LoadList {
  std::vector<std::string> paths;
  std::vector<std::string> keys;
};

/// Appends one entry. Returns false, and prints "Failed to push data: %s.\n", when the standard
/// library raises a length error.
[[nodiscard]] bool AppendToLoadList(const std::string& path, const std::string& key,
                                    LoadList* list);

/// True when path leads to a directory; symbolic links are followed. Prints nothing.
[[nodiscard]] bool IsDirectory(const std::string& path);

/// True when path leads to a regular file and the text from its last "." on is ".json", in any
/// case. Prints "Failed to check path %s.\n" when stat fails.
[[nodiscard]] bool IsJsonFile(const std::string& path);

/// True when the text after the last "/" of path is name; false without a "/". Prints "Failed to
/// get sub string %s.\n" if the standard library cannot take that text.
[[nodiscard]] bool FileNameEquals(const std::string& path, const std::string& name);

/// Lists every file named file_name, with the extension .json, in directory and below it, depth
/// first and in the order that readdir yields them. The file of directory itself goes to key, that
/// of a folder to the folder's parent's key + "/" (unless it ends with one) + the folder's name.
///
/// Entries that cannot be examined are passed over (IsJsonFile says so); symbolic links to
/// directories are followed, without a guard against cycles other than the system's own limits.
/// Returns false when a directory cannot be opened or read to its end, which prints nothing, or an
/// entry cannot be appended; what was listed before stays in the list.
[[nodiscard]] bool WalkStaticData(const std::string& directory, const std::string& key,
                                  const std::string& file_name, LoadList* list);

}  // namespace ostrafel

#endif  // OSTRAFEL_LOADING_STATIC_DATA_WALK_H_
