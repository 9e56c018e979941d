// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// What differs between the store and the store that is wanted.
#ifndef OSTRAFEL_DIFF_DIFFERENCE_H_
#define OSTRAFEL_DIFF_DIFFERENCE_H_

#include <cstddef>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "store/server.h"
#include "text/json_positions.h"

namespace ostrafel {

enum class Change {
  kMissing,  ///< Only the wanted store has it.
  kExtra,    ///< Only the store has it.
  kChanged,
};

/// Stands for a whole key.
struct WholeKey {};

/// An element of both lists. One that is missing stands before stored_index in the stored list,
/// one that is extra before wanted_index in the wanted list.
struct Element {
  std::size_t stored_index;
  std::size_t wanted_index;
};

using RecordOfKey = std::variant<WholeKey, std::string, Element>;  ///< The string is a field.

/// Where in the tree something stands.
struct TreePlace {
  std::string path;     ///< The file, as the loader opens it.
  std::string pointer;  ///< In that file.
  Position position;    ///< {0, 0} where the file has nothing of it.
};

struct Difference {
  Change change;
  std::string key;
  KeyType type;  ///< Of the wanted key, or of the stored one when that is extra.
  RecordOfKey record;
  /// The record's value. Of a whole key that changes, the name of what it holds (NameOf); of one
  /// that is missing or extra, nothing.
  std::optional<std::string> stored;
  std::optional<std::string> wanted;
  /// Where the wanted record comes from. Of an extra record, where it would stand if it was in the
  /// tree, which has what it belongs to: the file, the pointer that it would have and, if something
  /// stands there, its position.
  std::optional<TreePlace> place = std::nullopt;
};

/// Sorted by key and record.
using Differences = std::vector<Difference>;

}  // namespace ostrafel

#endif  // OSTRAFEL_DIFF_DIFFERENCE_H_
