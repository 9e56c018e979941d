// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// Asking the server and reading what it answers.
#ifndef OSTRAFEL_REDIS_REPLIES_H_
#define OSTRAFEL_REDIS_REPLIES_H_

#include <hiredis/hiredis.h>

#include <cstddef>
#include <functional>

#include "connection/reply.h"
#include "store/server.h"

namespace ostrafel {

/// Sends one command, formatted by hiredis, and waits for its reply. Every "%s" takes a
/// NUL-terminated string and every "%d" an int; data is never part of the format. Returns nothing
/// when the connection is broken.
template <typename... Arguments>
[[nodiscard]] Reply Ask(redisContext* context, const char* format, Arguments... arguments) {
  return Reply(static_cast<redisReply*>(redisCommand(context, format, arguments...)));
}

/// True when reply is an array of which every step-th item, from the first on, is a string.
[[nodiscard]] bool IsArrayOfStrings(const redisReply* reply, std::size_t step = 1);

/// Runs a whole SCAN or HSCAN: calls ask with the cursor, 0 at first, and then with each one that
/// the server answers, until that is 0 again; gives every step-th item of each answer, in order, to
/// take (step 2 takes the field names of an HSCAN; the values between them are not looked at).
///
/// The cursor is narrowed to an int, because it is sent with "%d". None is lost by that: a server's
/// cursors are less than the number of buckets of its table, a power of two that passes 2^31 only
/// with billions of keys. (Of a larger cursor the low 32 bits are sent back, after strtol has cut
/// it to the largest long.)
///
/// Returns 1 at the end; 0 at once when take returns 0, or when a reply is missing or not of the
/// shape that SCAN answers, in which case none of its items is taken.
[[nodiscard]] unsigned ScanAll(const std::function<Reply(int cursor)>& ask, std::size_t step,
                               const TakeName& take);

}  // namespace ostrafel

#endif  // OSTRAFEL_REDIS_REPLIES_H_
