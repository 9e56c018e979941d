// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#ifndef OSTRAFEL_CONNECTION_REPLY_H_
#define OSTRAFEL_CONNECTION_REPLY_H_

#include <hiredis/hiredis.h>

#include <memory>

namespace ostrafel {

struct ReplyDeleter {
  void operator()(redisReply* reply) const { freeReplyObject(reply); }
};
/// The owner of a server's reply (hiredis); empty when none was received.
using Reply = std::unique_ptr<redisReply, ReplyDeleter>;

}  // namespace ostrafel

#endif  // OSTRAFEL_CONNECTION_REPLY_H_
