// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// Which files a load takes, and the key that each one's resource goes to.
#ifndef OSTRAFEL_LOADING_STATIC_DATA_WALK_H_
#define OSTRAFEL_LOADING_STATIC_DATA_WALK_H_

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

struct PathNote {
  PathProblem problem;
  std::string text;  ///< The path; for the library's refusals, what the library says.
};

/// The work of a load, in order: entry i of paths is the file to read, entry i of keys the key that
/// its root object goes to. With what was found to be wrong on the way.
struct LoadList {
  std::vector<std::string> paths;
  std::vector<std::string> keys;
  std::vector<PathNote> notes;
};

/// Appends one entry. Returns false, with a note, when the standard library raises a length error.
[[nodiscard]] bool AppendToLoadList(const std::string& path, const std::string& key,
                                    LoadList* list);

/// True when path leads to a directory; symbolic links are followed.
[[nodiscard]] bool IsDirectory(const std::string& path);

/// True when path leads to a regular file and what follows its last "." is "json", in any case.
/// Adds a note when stat fails.
[[nodiscard]] bool IsJsonFile(const std::string& path, std::vector<PathNote>* notes);

/// True when what follows the last "/" of path is name; false without a "/". Adds a note if the
/// standard library cannot take it.
[[nodiscard]] bool FileNameEquals(const std::string& path, const std::string& name,
                                  std::vector<PathNote>* notes);

/// Lists every file named file_name, with the extension .json, in directory and below it, depth
/// first and in the order that readdir yields them. The file of directory itself goes to key, that
/// of a folder to the folder's parent's key + "/" (unless it ends with one) + the folder's name.
///
/// Entries that cannot be examined are passed over, with a note; symbolic links to directories are
/// followed, without a guard against cycles other than the system's own limits. Returns false, with
/// a note, when a directory cannot be opened or read to its end or an entry cannot be appended;
/// what was listed before stays in the list. Prints nothing.
[[nodiscard]] bool WalkStaticData(const std::string& directory, const std::string& key,
                                  const std::string& file_name, LoadList* list);

/// Prints what the loader says of these, in order:
///   "Failed to check path %s.\n"       kNotChecked
///   "Failed to get sub string %s.\n"   kNoName
///   "Failed to push data: %s.\n"       kNotListed
/// and nothing of kNotOpened, of which the caller speaks.
void PrintPathNotes(const std::vector<PathNote>& notes);

}  // namespace ostrafel

#endif  // OSTRAFEL_LOADING_STATIC_DATA_WALK_H_
