// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "pieces/sandbox_server.h"

#include <cstdlib>

#include "pieces/expect.h"
#include "redis/replies.h"

namespace ostrafel {

StoreConnection ConnectSandboxServer(benchmark::State& state) {
  const char* socket = std::getenv("OSTRAFEL_SANDBOX_SOCKET");
  if (socket == nullptr) {
    state.SkipWithError("skipped: needs the server of scripts/sandbox");
    return nullptr;
  }
  StoreConnection connection(redisConnectUnix(socket));
  Expect(connection != nullptr && connection->err == 0, "the server can be reached");
  return connection;
}

void EmptyServer(redisContext* context) {
  const Reply reply = Ask(context, "FLUSHALL");
  Expect(reply && reply->type == REDIS_REPLY_STATUS, "the server can be emptied");
}

long long AskForInteger(redisContext* context, const char* command, const char* key) {
  const Reply reply = key == nullptr ? Ask(context, command) : Ask(context, "%s %s", command, key);
  return reply && reply->type == REDIS_REPLY_INTEGER ? reply->integer : -1;
}

}  // namespace ostrafel
