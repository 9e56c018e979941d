// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#ifndef OSTRAFEL_TESTS_MODEL_RANDOM_TREE_H_
#define OSTRAFEL_TESTS_MODEL_RANDOM_TREE_H_

#include <cstddef>
#include <optional>
#include <random>
#include <string>
#include <vector>

namespace model {

/// What random static data looks like. One-in-so-many figures of 0 mean never.
struct RandomTreeOptions {
  /// The key of the top folder; the "@odata.id" texts are made from it, so that they collide with
  /// the keys of other folders.
  std::string uri = "/redfish";

  /// The name of the files.
  std::string file_name = "index.json";

  /// At most so many folders, the top one included.
  std::size_t folders = 8;

  /// At most so many members or elements per object or array, outside the bulk.
  std::size_t members = 6;

  /// Objects and arrays are nested at most so deep below the root object.
  std::size_t depth = 5;

  /// When not 0, one document of the tree has an extra member with at least so many members and
  /// elements in all. Beyond 2000 the batches are flushed in the middle of a run.
  std::size_t bulk = 0;

  /// One "@odata.id" in so many is not a string, which makes the object that holds it fail.
  std::size_t bad_id_one_in = 0;

  /// One "@odata.id" in so many is the empty text.
  std::size_t empty_id_one_in = 25;

  /// One folder in so many that could hold a file has none.
  std::size_t bare_folder_one_in = 5;

  /// Names below the include folder that a root's "&&File" may hold; none: no "&&File" at all.
  std::vector<std::string> include_files;

  /// One root in so many has a "&&File", when there are names for it.
  std::size_t include_one_in = 4;
};

/// One random JSON object that is to be loaded to `key`. Names, ids and kinds come from
/// small pools, so that two documents for one key often meet in the same names with other kinds.
/// With options.bulk the object has the bulk member.
///
/// Equal generators and options give equal texts on every platform: only the generator's own
/// numbers are used.
std::string RandomDocument(std::mt19937_64& generator, const RandomTreeOptions& options,
                           const std::string& key);

/// One folder of static data.
struct TreeFolder {
  std::string path;                     ///< Below the top folder: "" for that one, else "/A/B".
  std::optional<std::string> document;  ///< What its file holds, when it has one.
};

/// A tree of static data as a value, its folders in the order in which they are made.
using Tree = std::vector<TreeFolder>;

/// A random tree of folders and documents. Folder names come from the pool of member names as far
/// as they can name a folder.
Tree RandomTree(std::mt19937_64& generator, const RandomTreeOptions& options);

/// Writes the tree into the directory, which must exist, each document under this file name.
/// Documents that a former tree left in the directory are overwritten or stay.
void WriteTree(const Tree& tree, const std::string& directory, const std::string& file_name);

/// Writes a random tree into the directory.
void WriteRandomTree(std::mt19937_64& generator, const std::string& directory,
                     const RandomTreeOptions& options);

}  // namespace model

#endif  // OSTRAFEL_TESTS_MODEL_RANDOM_TREE_H_
