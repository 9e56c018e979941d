// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// The way into the batches. Writes and removals wait there and go to the server together: a round
// trip for every command would cost more than the command.
//
// An operation that finds BatchLimit items queued since its last flush flushes before it queues,
// removals always before writes, so that what is stale is gone before the new values come. A failed
// flush gives 0, queues nothing and leaves the count, so that the next call flushes again;
// otherwise the result is 1. Nothing flushes a batch at the end of the process: what still waits
// then was never sent. Strings are copied; a NUL ends them.
#ifndef OSTRAFEL_STORE_QUEUE_H_
#define OSTRAFEL_STORE_QUEUE_H_

#include <string>
#include <string_view>

#include "layout/layout.h"
#include "store/server.h"

namespace ostrafel {

/// Queues value as the last element of the list at key. When ListBatch is full, flushes
/// RemovalBatch and then ListBatch first. What is too long for the standard library (length_error)
/// gives 0, after PrintLengthError.
[[nodiscard]] unsigned PutListItem(Server* server, const std::string& key, const Pieces& value);

/// Queues value for field of the hash at key; likewise, with HashBatch. A field that waits already
/// gets the new value and is sent once. Length errors go to the caller.
[[nodiscard]] unsigned PutHashField(Server* server, const std::string& key, const Pieces& field,
                                    std::string_view value);

/// What a queued removal removes.
enum RemovalKind {
  RemoveField = 0,      ///< A field of a hash: "HDEL key field".
  RemoveListValue = 1,  ///< All equal elements of a list: "LREM key 0 value".
  RemoveKey = 2,        ///< A whole key: "UNLINK key".
};

/// Queues one removal; value is the field or the list value, and RemoveKey does not use it.
/// Duplicates are kept. When RemovalBatch is full, flushes it first. Length errors as with
/// PutListItem.
[[nodiscard]] unsigned QueueRemoval(Server* server, const std::string& key, const Pieces& value,
                                    RemovalKind kind);

}  // namespace ostrafel

#endif  // OSTRAFEL_STORE_QUEUE_H_
