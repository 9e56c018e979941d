// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// Writes and removals go to the server in batches, each sent as one pipeline: a round trip for
// every command would cost more than the command. What waits where: store_state.h.
//
// Every operation here returns 1 for success and 0 for failure. Removals always go before writes,
// so that what is stale is gone before the new values come. Nothing flushes a batch at the end of
// the process: what still waits then was never sent.
#ifndef OSTRAFEL_STORE_COMMAND_BATCHES_H_
#define OSTRAFEL_STORE_COMMAND_BATCHES_H_

#include <hiredis/hiredis.h>

namespace ostrafel {

/// Sends all of RemovalBatch as one pipeline: an "UNLINK key" for each key, in queue order; then
/// for each list in ascending byte order an "LREM key 0 value" (0: every equal element) for each
/// value; then for each hash in ascending byte order an "HDEL key field" for each field.
///
/// All commands are appended before the first reply is read, and every reply is read even after a
/// bad one, so that the connection stays in step. A long pipeline is sent piece by piece meanwhile
/// (pipeline.h). Returns 1 when every reply is an integer, 0 included (there was nothing to
/// remove), or nothing was pending. Prints "Failed to get reply\n" for each reply that cannot be
/// read and, once, at the first bad reply, "Some errors occur while removing data from database\n"
/// and "The data in database would be incorrect\n". The batch is empty afterwards in every case;
/// what the server had already carried out stays carried out.
[[nodiscard]] unsigned FlushRemovalBatch(redisContext* context);

/// Sends all of HashBatch, likewise: one "HSET key field value" per field, keys and fields in
/// ascending byte order. Its message: "Some errors occur while creating hash data into database\n".
[[nodiscard]] unsigned FlushHashBatch(redisContext* context);

/// Sends all of ListBatch, likewise: one "RPUSH key value" per value, keys in ascending byte order,
/// the values of a key in queue order. A reply below 1 is bad, because RPUSH answers with the
/// list's new length. Its message: "Some errors occur while creating list data into database\n".
[[nodiscard]] unsigned FlushListBatch(redisContext* context);

/// Queues value as the last element of the list at key. When BatchLimit values were queued since
/// the last time, flushes RemovalBatch and then ListBatch first; a failed flush gives 0, queues
/// nothing and leaves the count, so that the next call flushes again. All texts are NUL-terminated
/// and copied; a null one is an error of the caller, for which libstdc++ raises logic_error. A text
/// too long for the standard library gives 0 and prints "Failed to push data: %s.\n".
[[nodiscard]] unsigned PutListItem(redisContext* context, const char* key, const char* value);

/// Queues value for field of the hash at key; likewise, with HashBatch. A field that waits already
/// gets the new value and is sent once. No error of the standard library is caught.
[[nodiscard]] unsigned PutHashField(redisContext* context, const char* key, const char* field,
                                    const char* value);

}  // namespace ostrafel

#endif  // OSTRAFEL_STORE_COMMAND_BATCHES_H_
