// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// The Redis protocol (RESP 2) as bytes, both ways, for what sits between a client and a server.
#ifndef OSTRAFEL_TESTS_SUPPORT_RESP_H_
#define OSTRAFEL_TESTS_SUPPORT_RESP_H_

#include <optional>
#include <string>

#include "model/reply.h"

/// Takes one whole command, an array of bulk strings, off the front of bytes; nothing, and bytes
/// stay as they are, while it is not whole. Throws std::runtime_error on anything else.
std::optional<model::Command> TakeCommand(std::string* bytes);

/// The command as a client sends it.
std::string Format(const model::Command& command);

/// The reply as a server sends it; a nil as a null string ("$-1").
std::string Format(const model::Reply& reply);

/// A reply as read and as it came.
struct ReceivedReply {
  model::Reply reply;
  std::string bytes;
};

/// Takes one whole reply off the front of bytes, likewise.
std::optional<ReceivedReply> TakeReply(std::string* bytes);

#endif  // OSTRAFEL_TESTS_SUPPORT_RESP_H_
