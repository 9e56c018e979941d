// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// Which files a load takes, and the key that each one's resource goes to.
#ifndef OSTRAFEL_LOADING_STATIC_DATA_WALK_H_
#define OSTRAFEL_LOADING_STATIC_DATA_WALK_H_

#include <functional>
#include <string>
#include <vector>

namespace ostrafel {

/// What is wrong with a path that is looked at.
enum class PathProblem {
  kNotChecked,  ///< stat failed. A walk passes the path over.
  kNoName,      ///< The standard library refuses its name.
  kNotListed,   ///< The standard library refuses it in the list. A walk ends.
  kNotOpened,   ///< A folder that cannot be opened or read to its end. A walk ends.
};

/// Is told of a problem as soon as it is met, with the path or, where the standard library refuses
/// something, what the library says.
using TakeProblem = std::function<void(PathProblem problem, const std::string& text)>;

/// The work of a load, in order: entry i of paths is the file to read, entry i of keys the key that
/// its root object goes to.
struct LoadList {
  std::vector<std::string> paths;
  std::vector<std::string> keys;
};

/// Appends one entry. Returns false, and tells, when the standard library raises a length error.
[[nodiscard]] bool AppendToLoadList(const std::string& path, const std::string& key, LoadList* list,
                                    const TakeProblem& tell);

/// True when path leads to a directory; symbolic links are followed.
[[nodiscard]] bool IsDirectory(const std::string& path);

/// True when path leads to a regular file and what follows its last "." is "json", in any case.
/// Tells when stat fails.
[[nodiscard]] bool IsJsonFile(const std::string& path, const TakeProblem& tell);

/// True when what follows the last "/" of path is name; false without a "/". Tells if the
/// standard library cannot take it.
[[nodiscard]] bool FileNameEquals(const std::string& path, const std::string& name,
                                  const TakeProblem& tell);

/// The key that the file of the folder name goes to, in a folder whose own goes to key: key + "/"
/// (unless it ends with one) + name.
[[nodiscard]] std::string ChildKey(const std::string& key, const std::string& name);

/// Lists every file named file_name, with the extension .json, in directory and below it, depth
/// first and in the order that readdir yields them. The file of directory itself goes to key, that
/// of a folder below it to the ChildKey.
///
/// Entries that cannot be examined are passed over, once that is told; symbolic links to
/// directories are followed, without a guard against cycles other than the system's own limits.
/// Returns false when a directory cannot be opened or read to its end or an entry cannot be
/// appended, which is told; what was listed before stays in the list. Prints nothing.
[[nodiscard]] bool WalkStaticData(const std::string& directory, const std::string& key,
                                  const std::string& file_name, LoadList* list,
                                  const TakeProblem& tell);

/// Prints what the loader says of a problem:
///   "Failed to check path %s.\n"       kNotChecked
///   "Failed to get sub string %s.\n"   kNoName
///   "Failed to push data: %s.\n"       kNotListed
/// and nothing of kNotOpened, of which the caller speaks.
void PrintPathProblem(PathProblem problem, const std::string& text);

}  // namespace ostrafel

#endif  // OSTRAFEL_LOADING_STATIC_DATA_WALK_H_
