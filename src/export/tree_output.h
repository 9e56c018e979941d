// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// Files of a tree on disk.
#ifndef OSTRAFEL_EXPORT_TREE_OUTPUT_H_
#define OSTRAFEL_EXPORT_TREE_OUTPUT_H_

#include <string>
#include <unordered_set>
#include <vector>

namespace ostrafel {

/// Owns a file descriptor; -1 when it has none.
class Descriptor {
 public:
  explicit Descriptor(int number = -1) : number_(number) {}
  Descriptor(Descriptor&& other) noexcept;
  Descriptor& operator=(Descriptor&& other) noexcept;
  ~Descriptor();

  [[nodiscard]] int Number() const { return number_; }

  /// Closes what it owns. False, with errno set, when that failed: it is closed all the same.
  [[nodiscard]] bool Close();

 private:
  int number_;
};

/// A folder that a tree is written to. The files are written to a folder inside of it that nobody
/// else may enter, and moved to their places when all of them are there: each is there whole or not
/// at all. No symbolic link is followed but those in the folder's own path. What cannot be done
/// raises runtime_error with a sentence that names the file.
class TreeOutput {
 public:
  /// Makes the folder if there is none. One that holds something is refused unless is_forced, and
  /// one that is another's at the moment, as far as the file system can tell.
  TreeOutput(std::string directory, bool is_forced);
  TreeOutput(const TreeOutput&) = delete;
  TreeOutput& operator=(const TreeOutput&) = delete;
  /// Takes away what was not moved, and the folder if it was made and is empty.
  ~TreeOutput();

  /// Begins a tree, in place of one that was begun before.
  void Begin();

  /// Writes the file of that folder, which is a path below the top, in place of what was written
  /// there before.
  void Write(const std::string& folder, const std::string& text);

  /// True when the file of that folder is there.
  [[nodiscard]] bool Has(const std::string& folder) const { return folders_.count(folder) != 0; }

  /// Takes the file of that folder away again, and folders that are empty then.
  void Remove(const std::string& folder);

  /// Where the file of that folder stands until it is moved.
  [[nodiscard]] std::string PathOf(const std::string& folder) const;

  /// Moves all to its place. Where there is a file it is replaced; where there is a folder it
  /// stays. Moves nothing when something is in the way.
  void Finish();

  /// Regular files of that name, symbolic links to such, and links to folders, that are in the
  /// folder beside what was moved there: a load would take them. Their paths, sorted. To be asked
  /// after Finish.
  [[nodiscard]] std::vector<std::string> Strangers() const;

 private:
  void Open();
  void CheckWay() const;
  void Move(int from, int to, const std::string& path);
  void RemoveScratch();

  std::string directory_;
  bool is_forced_;
  bool is_made_ = false;  // the folder was not there before
  bool is_done_ = false;
  Descriptor top_;
  std::string scratch_name_;
  Descriptor scratch_;
  std::unordered_set<std::string> folders_;  // that were written to
};

}  // namespace ostrafel

#endif  // OSTRAFEL_EXPORT_TREE_OUTPUT_H_
