// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// Reading keys one after the other, each given away as it comes: no more of a store is in memory
// than what the reader keeps.
#ifndef OSTRAFEL_LIVE_KEY_STREAM_H_
#define OSTRAFEL_LIVE_KEY_STREAM_H_

#include <hiredis/hiredis.h>

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "memory/memory_server.h"
#include "store/server.h"

namespace ostrafel {

/// A key that is to be read, and what it is taken to hold.
struct KeyToRead {
  const std::string* key;  ///< Borrowed.
  KeyType type;
};

/// Is told what the key at this place of those to be read holds: an empty hash or list when it is
/// gone, nothing when it is of another type than was thought.
using TakeKey = std::function<void(std::size_t place, std::optional<Stored> value)>;

/// Is told a name of a key.
using TakeKeyName = std::function<void(std::string_view name)>;

/// Reads the keys in their order, each at a moment of its own: in pipelines that block the server
/// for short times only. Raises runtime_error when the connection breaks or the server answers with
/// what is no answer; what take raises ends the reading.
void StreamKeys(redisContext* context, const std::vector<KeyToRead>& keys, const TakeKey& take);

/// Reads at one moment, in one MULTI ... EXEC, the names of all keys that match one of the patterns
/// (KEYS) and then the keys. The server serves nobody else meanwhile, and keeps its whole answer
/// until it is taken. Raises MemoryIsFull when its memory is full, else as StreamKeys does.
void StreamKeysAtOnce(redisContext* context, const std::vector<std::string>& patterns,
                      const std::vector<KeyToRead>& keys, const TakeKeyName& take_name,
                      const TakeKey& take);

}  // namespace ostrafel

#endif  // OSTRAFEL_LIVE_KEY_STREAM_H_
