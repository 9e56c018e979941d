// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "loading/static_data_walk.h"

#include <dirent.h>
#include <sys/stat.h>

#include <cerrno>
#include <cstddef>
#include <stdexcept>

#include "base/equals_ignore_case.h"
#include "base/files.h"
#include "base/message.h"

// Or stat and readdir would take a large file or a long inode number for an error.
static_assert(sizeof(off_t) == 8 && sizeof(ino_t) == 8, "compile with _FILE_OFFSET_BITS=64");

namespace ostrafel {

bool AppendToLoadList(const std::string& path, const std::string& key, LoadList* list,
                      const TakeProblem& tell) {
  try {
    list->paths.push_back(path);
    list->keys.push_back(key);
  } catch (const std::length_error& error) {
    tell(PathProblem::kNotListed, error.what());
    return false;
  }
  return true;
}

bool IsDirectory(const std::string& path) {
  struct stat status = {};
  return stat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
}

bool IsJsonFile(const std::string& path, const TakeProblem& tell) {
  struct stat status = {};
  if (stat(path.c_str(), &status) != 0) {
    tell(PathProblem::kNotChecked, path);
    return false;
  }
  const std::size_t point = path.rfind('.');
  return S_ISREG(status.st_mode) && point != std::string::npos &&
         EqualsIgnoreCase(path.c_str() + point, ".json");
}

bool FileNameEquals(const std::string& path, const std::string& name, const TakeProblem& tell) {
  const std::size_t slash = path.rfind('/');
  if (slash == std::string::npos) return false;
  try {
    return path.substr(slash + 1) == name;
  } catch (const std::out_of_range& error) {
    tell(PathProblem::kNoName, error.what());
    return false;
  }
}

std::string ChildKey(const std::string& key, const std::string& name) {
  std::string child_key = key;
  if (key.empty() || key.back() != '/') child_key += '/';
  return child_key += name;
}

bool WalkStaticData(const std::string& directory, const std::string& key,
                    const std::string& file_name, LoadList* list, const TakeProblem& tell) {
  const Directory opened(opendir(directory.c_str()));
  while (opened) {
    errno = 0;
    const dirent* entry = readdir(opened.get());
    if (entry == nullptr && errno == 0) return true;
    // A listing cut short by an error must not pass for a whole one.
    if (entry == nullptr) break;

    const std::string name = entry->d_name;
    std::string path = directory;
    path.append("/").append(name);
    // Before "." and ".." are left out: of a folder that cannot be searched both are told, too.
    if (IsJsonFile(path, tell) && FileNameEquals(path, file_name, tell)) {
      if (!AppendToLoadList(path, key, list, tell)) return false;
    } else if (name != "." && name != ".." && IsDirectory(path)) {
      if (!WalkStaticData(path, ChildKey(key, name), file_name, list, tell)) return false;
    }
  }
  tell(PathProblem::kNotOpened, directory);
  return false;
}

void PrintPathProblem(PathProblem problem, const std::string& text) {
  switch (problem) {
    case PathProblem::kNotChecked:
      return PrintMessage("Failed to check path %s.\n", text.c_str());
    case PathProblem::kNoName:
      return PrintMessage("Failed to get sub string %s.\n", text.c_str());
    case PathProblem::kNotListed:
      return PrintLengthError(text.c_str());
    case PathProblem::kNotOpened:
      return;
  }
}

}  // namespace ostrafel
