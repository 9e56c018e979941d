// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// Asking a server for keys and for what they hold: the commands and their replies. What the server
// answers amiss raises runtime_error.
#ifndef OSTRAFEL_LIVE_KEY_READING_H_
#define OSTRAFEL_LIVE_KEY_READING_H_

#include <hiredis/hiredis.h>

#include <cstddef>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "live/session.h"
#include "memory/memory_server.h"
#include "store/server.h"

namespace ostrafel {

/// So many keys are asked for in one pipeline: what the server keeps of its answers stays small.
inline constexpr std::size_t kKeysInPipeline = 1000;

/// Appends the keys that match the pattern (SCAN), some of them again and again. Does not block the
/// server, however many it has.
void ScanKeys(redisContext* context, const std::string& pattern, std::vector<std::string>* keys);

/// Appends the command that reads a key which is taken to be of this type: HGETALL, LRANGE or, of
/// other types, of which only the type is read, TYPE. One that is taken not to be there is asked
/// for like a hash.
void AppendRead(const std::string& key, KeyType type, LivePipeline* pipeline);

/// Takes what AppendRead has asked for: an empty hash or list for a key that is gone. False when it
/// is of another type.
[[nodiscard]] bool TakeRead(const redisReply& reply, KeyType type, Stored* value);

/// True of what TakeRead has of a key that is gone.
[[nodiscard]] bool IsEmpty(const Stored& value);

/// True of the error that a command gets which is meant for another type.
[[nodiscard]] bool IsWrongType(std::string_view error);

/// The fields and values of a reply to HGETALL, one after the other.
[[nodiscard]] Hash HashOf(std::vector<std::string> strings);

/// The strings of an array. command is what was asked.
[[nodiscard]] std::vector<std::string> StringsOf(const redisReply& reply,
                                                 const std::string& command);

/// What a reply to TYPE says, as the server has it; "none" for a key that is not there.
[[nodiscard]] std::string TypeOf(const redisReply& reply);

/// The type of that name.
[[nodiscard]] KeyType TypeNamed(std::string_view name);

/// A server whose memory is full queues no commands, though it would carry these out.
class MemoryIsFull : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// Reads the replies to MULTI and to so many commands behind it; that to EXEC is left. Returns the
/// first error among them; EXEC is refused then. Empty when there is none.
[[nodiscard]] std::string TakeQueued(LivePipeline* pipeline, std::size_t commands);

/// Raises runtime_error with an error that TakeQueued has returned, MemoryIsFull where it says so.
void RefuseQueued(const std::string& error);

}  // namespace ostrafel

#endif  // OSTRAFEL_LIVE_KEY_READING_H_
