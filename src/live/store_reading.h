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

/// Up to so many keys are read in one transaction, during which the server serves nobody else.
inline constexpr std::size_t kKeysAtOnce = 10000;

/// So often a store that changes is read again.
inline constexpr int kMostReadings = 5;

struct Reading {
  Server store;  ///< The keys of the scope, with what they hold.
  /// The keys that others changed while they were read, each time until reading was given up:
  /// sorted. When there is none, the store was like this at one moment.
  std::vector<std::string> unsteady;
};

/// Reads what the scope names. likely is a store that holds much the same: what it has of a key
/// decides how the key is read first, which saves a round trip where it is right. Nothing is
/// written.
///
/// Up to keys_at_once keys: their names and contents in one MULTI ... EXEC, again when the keys or
/// their types were others than expected.
///
/// More, and all where the server's memory is full: in pipelines that block the server for short
/// times only, and then again, until no key differs. Those that differ are read in one MULTI ...
/// EXEC between two readings from then on, as long as they are no more than keys_at_once. No
/// reading tells of a key that is changed and changed back between two of them.
///
/// Either is tried kMostReadings times. Raises runtime_error when the connection breaks, the server
/// refuses a command or answers with what is no answer to it, or the type of a key is another each
/// time that a pipeline reads it.
[[nodiscard]] Reading ReadStore(redisContext* context, const ReadingScope& scope,
                                const Server& likely, std::size_t keys_at_once = kKeysAtOnce);

/// What is said of a store that did not hold still: so many keys changed, first among them.
[[nodiscard]] std::string UnsteadyMessage(std::size_t count, const std::string& first);

/// Reads these keys, if they exist, each at a moment of its own. likely and what is raised: as
/// above.
[[nodiscard]] Server ReadKeys(redisContext* context, const std::vector<std::string>& keys,
                              const Server& likely);

}  // namespace ostrafel

#endif  // OSTRAFEL_LIVE_STORE_READING_H_
