// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "model/static_data.h"

#include <dirent.h>
#include <sys/stat.h>

#include <cctype>
#include <cerrno>
#include <cstddef>
#include <optional>

namespace model {
namespace {

// The names in the directory as the system lists them, "." and ".." included; none when the
// directory cannot be opened or a read fails.
std::optional<std::vector<std::string>> ListNames(const std::string& directory) {
  DIR* handle = opendir(directory.c_str());
  if (handle == nullptr) return std::nullopt;
  std::vector<std::string> names;
  errno = 0;
  while (const dirent* entry = readdir(handle)) {
    names.push_back(entry->d_name);
    errno = 0;
  }
  const bool complete = errno == 0;
  closedir(handle);
  if (!complete) return std::nullopt;
  return names;
}

}  // namespace

bool SameIgnoringCase(const std::string& left, const std::string& right) {
  if (left.size() != right.size()) return false;
  for (std::size_t i = 0; i < left.size(); ++i) {
    const int a = std::tolower(static_cast<unsigned char>(left[i]));
    const int b = std::tolower(static_cast<unsigned char>(right[i]));
    if (a != b) return false;
  }
  return true;
}

bool IsJsonFile(const std::string& path, std::string& err) {
  struct stat status {};
  if (stat(path.c_str(), &status) != 0) {
    err += "Failed to check path " + path + ".\n";
    return false;
  }
  const std::size_t dot = path.rfind('.');
  return S_ISREG(status.st_mode) && dot != std::string::npos &&
         SameIgnoringCase(path.substr(dot), ".json");
}

bool IsDirectory(const std::string& path) {
  struct stat status {};
  return stat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
}

bool WalkStaticData(const std::string& directory, const std::string& key,
                    const std::string& file_name, std::vector<LoadEntry>& entries,
                    std::string& err) {
  const std::optional<std::vector<std::string>> names = ListNames(directory);
  if (!names) return false;
  for (const std::string& name : *names) {
    const std::string path = directory + "/" + name;
    if (IsJsonFile(path, err) && name == file_name) {
      entries.push_back({path, key});
    } else if (name != "." && name != ".." && IsDirectory(path)) {
      const std::string slash = !key.empty() && key.back() == '/' ? "" : "/";
      if (!WalkStaticData(path, key + slash + name, file_name, entries, err)) return false;
    }
  }
  return true;
}

}  // namespace model
