// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// Commands of any bytes and their replies. Whatever keeps a reply from being read raises
// runtime_error with what the connection says. Whoever raises it, before all replies are read or
// after, the connection is of no use from then on.
#ifndef OSTRAFEL_LIVE_SESSION_H_
#define OSTRAFEL_LIVE_SESSION_H_

#include <hiredis/hiredis.h>

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "connection/reply.h"

namespace ostrafel {

/// The words of a command, borrowed.
using Words = std::vector<std::string_view>;

/// Commands that travel together. Until all their replies are read, nothing else may be sent. What
/// is appended goes out in pieces, so that the server works meanwhile; the replies are read after
/// the last piece.
class LivePipeline {
 public:
  explicit LivePipeline(redisContext* context) : context_(context) {}

  /// Appends a command, at least its name. Raises runtime_error when it cannot be sent.
  void Append(const Words& words);

  /// The reply to the next command, in order; an error reply is one. Never empty.
  [[nodiscard]] Reply Next();

 private:
  void Send();

  redisContext* context_;
  std::size_t waiting_ = 0;  // bytes appended since the last piece went out, or some more
};

/// Sends one command and waits for its reply, which is never empty.
[[nodiscard]] Reply AskServer(redisContext* context, const Words& words);

/// The string, status or error of a reply; empty for others.
[[nodiscard]] std::string_view TextOf(const redisReply& reply);

/// Raises runtime_error, with what was asked and the server's words, if reply is an error.
void RefuseError(const redisReply& reply, const std::string& command);

/// Raises runtime_error, which says that what was asked cannot be answered like this.
[[noreturn]] void RefuseReply(const std::string& command);

/// Raises runtime_error, likewise, unless reply is this status.
void RequireStatus(const redisReply& reply, std::string_view status, const std::string& command);

}  // namespace ostrafel

#endif  // OSTRAFEL_LIVE_SESSION_H_
