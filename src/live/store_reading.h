// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// Reading a live store as it is at one moment.
#ifndef OSTRAFEL_LIVE_STORE_READING_H_
#define OSTRAFEL_LIVE_STORE_READING_H_

#include <hiredis/hiredis.h>

#include <cstddef>
#include <string>
#include <vector>

#include "memory/memory_server.h"

namespace ostrafel {

/// What is read.
struct ReadingScope {
  std::vector<std::string> patterns;  ///< All keys that match one of these (globs),
  std::vector<std::string> keys;      ///< and these keys, if they exist.
};

/// Up to so many keys are read in one transaction.
inline constexpr std::size_t kKeysAtOnce = 10000;

/// So often a store that changes is read again.
inline constexpr int kMostReadings = 5;

struct Reading {
  Server store;  ///< The keys of the scope, with what they hold.
  /// The keys that were changed while they were read, and still were when reading was given up.
  /// When there is none, the store was like this at one moment or, when it was read in parts, no
  /// reading tells of a change.
  std::vector<std::string> unsteady;
};

/// Reads what the scope names. likely is a store that holds much the same: its types are asked for
/// first, which saves a round trip where they are right.
///
/// Up to keys_at_once keys: their names and contents in one MULTI ... EXEC, again when the keys or
/// their types were others than expected. More: in pipelines that block the server for short times
/// only, and then again; what differs is read until two readings agree. Either is tried
/// kMostReadings times.
///
/// Raises runtime_error when the connection breaks or the server refuses a command.
[[nodiscard]] Reading ReadStore(redisContext* context, const ReadingScope& scope,
                                const Server& likely, std::size_t keys_at_once = kKeysAtOnce);

/// Reads these keys, in one pipeline, without a transaction.
[[nodiscard]] Server ReadKeys(redisContext* context, const std::vector<std::string>& keys,
                              const Server& likely);

}  // namespace ostrafel

#endif  // OSTRAFEL_LIVE_STORE_READING_H_
