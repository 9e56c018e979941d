// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// What an update of the unchanged tree loses, and which values of the tree that was.
#ifndef OSTRAFEL_CHECK_UPDATE_LOSSES_H_
#define OSTRAFEL_CHECK_UPDATE_LOSSES_H_

#include <cstddef>
#include <string>
#include <unordered_set>
#include <utility>
#include <vector>

#include "check/finding.h"
#include "check/survey.h"

namespace ostrafel {

/// A value in the order of the load: the index of its file, then its node in the file's outline.
using LoadOrder = std::pair<std::size_t, std::size_t>;

/// A value that an update loses.
struct Loss {
  LoadOrder at;
  Place place;
  NodeKind kind = NodeKind::kScalar;
  std::string key;        ///< The lost key, or the one that stays but for this record.
  bool is_key = false;    ///< The whole key is lost: what it holds is not listed.
  std::string name = {};  ///< Of the member that the record is of; empty for an element.
  Record record = {};     ///< The lost record, unless the key is lost.
};

struct Losses {
  /// In the order of the load: each lost key once, at the object or array that is stored there, and
  /// each record of the keys that stay. What lies at one of mixed_keys is left out.
  std::vector<Loss> values;
  /// Keys that are to be a hash and a list: not the update is to blame for what they lose.
  std::unordered_set<std::string> mixed_keys;
};

/// What the update of survey.updated loses; nothing when that is not set.
[[nodiscard]] Losses FindLosses(const Survey& survey);

}  // namespace ostrafel

#endif  // OSTRAFEL_CHECK_UPDATE_LOSSES_H_
