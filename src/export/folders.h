// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// The folders of a tree: a load makes a resource's key of the path of its folder.
#ifndef OSTRAFEL_EXPORT_FOLDERS_H_
#define OSTRAFEL_EXPORT_FOLDERS_H_

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <utility>

namespace ostrafel {

/// The file of each folder.
inline constexpr const char* kDocumentName = "index.json";

/// A folder for a resource.
struct Folder {
  std::string path;  ///< Below the top, without slashes at its ends; empty for the top itself.
  /// A load makes the resource's key of the path. Otherwise the document must say it.
  bool has_key = false;
  bool is_spare = false;  ///< Not of the key's path (TakeSpare).
};

/// Gives each resource a folder of its own. Which one depends on those given before.
class Folders {
 public:
  /// For keys at or below uri. With windows_names, what Windows forbids in a name is replaced by
  /// "%" and two hexadecimal digits for each byte, and no two names differ in case only.
  Folders(std::string uri, bool windows_names)
      : uri_(std::move(uri)), windows_names_(windows_names) {}

  /// The folder of the key's own path, also one that makes another key, if the document tells_key.
  /// Nothing when the key is not at or below the URI, a step of its path can be no folder's name
  /// (empty, "." and "..", with a NUL, too long, the name of the files), there are too many of
  /// them, or the folder is taken. A slash that ends the key is no step.
  [[nodiscard]] std::optional<Folder> TakeOwn(const std::string& key, bool tells_key);

  /// A folder in the top one that is neither taken nor on the way to one that is, where somebody
  /// may look for another key: "%1", "%2" and so on. After all that take their own.
  [[nodiscard]] Folder TakeSpare();

 private:
  [[nodiscard]] std::optional<std::string> StepName(const std::string& step) const;
  /// The path of steps with slashes between.
  [[nodiscard]] std::optional<std::string> PathOf(std::string_view rest) const;
  [[nodiscard]] bool Take(const std::string& path);

  std::string uri_;
  bool windows_names_;
  std::unordered_set<std::string> taken_;
  /// Of the paths of several steps that are taken.
  std::unordered_set<std::string> first_steps_;
  /// With windows_names: a path in lower case -> the path that has it.
  std::unordered_map<std::string, std::string> spellings_;
  std::size_t spares_ = 0;
};

}  // namespace ostrafel

#endif  // OSTRAFEL_EXPORT_FOLDERS_H_
