// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// The commands that make away with differences.
#ifndef OSTRAFEL_DIFF_CHANGE_PLAN_H_
#define OSTRAFEL_DIFF_CHANGE_PLAN_H_

#include <cstddef>
#include <string>
#include <vector>

#include "diff/difference.h"
#include "memory/memory_server.h"

namespace ostrafel {

/// The differences of one key: some of all, side by side.
struct KeyChange {
  const Difference* begin;
  const Difference* end;
};

/// The differences by key, in order.
[[nodiscard]] std::vector<KeyChange> GroupByKey(const Differences& differences);

/// The fields and elements that a change writes, changes and removes.
[[nodiscard]] std::size_t CountRecords(const KeyChange& change, const Server& stored,
                                       const Server& wanted);

using Command = std::vector<std::string>;

/// Short commands, few of them, that take these differences, and no others, out of what
/// a key holds in stored:
///
///   a whole key  DEL, if there is one, and HSET or RPUSH
///   a hash       HSET of all fields that are missing or changed, HDEL of those that are extra
///   a list       LSET of each element when all are changed; LREM or LINSERT of a single one; or
///                LTRIM to what is right at one end (DEL when nothing is), and RPUSH or LPUSH
[[nodiscard]] std::vector<Command> CommandsFor(const KeyChange& change, const Server& stored,
                                               const Server& wanted);

/// A command that would be longer is cut into several.
inline constexpr std::size_t kMostWords = 1000;

}  // namespace ostrafel

#endif  // OSTRAFEL_DIFF_CHANGE_PLAN_H_
