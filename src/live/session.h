// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// Commands of any bytes and their replies. Whatever keeps a reply from being read raises
// runtime_error with what the connection says.
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

  /// Appends a command. Raises runtime_error when it cannot be sent.
  void Append(const Words& words);

  /// The reply to the next command, in order; an error reply is one. Never empty.
  [[nodiscard]] Reply Next();

 private:
  void Send();

  redisContext* context_;
  std::size_t waiting_ = 0;  // bytes appended since the last piece went out
  bool is_sent_ = true;
};

/// Sends one command and waits for its reply, which is never empty.
[[nodiscard]] Reply AskServer(redisContext* context, const Words& words);

/// The string, status or error of a reply; empty for others.
[[nodiscard]] std::string_view TextOf(const redisReply& reply);

/// Raises runtime_error with the server's words if reply is an error, and of what was asked.
void RefuseError(const redisReply& reply, const std::string& command);

}  // namespace ostrafel

#endif  // OSTRAFEL_LIVE_SESSION_H_
