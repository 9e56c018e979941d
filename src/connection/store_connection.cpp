// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "connection/store_connection.h"

#include <optional>
#include <string_view>

#include "connection/reply.h"

namespace ostrafel {

unsigned CloseStoreConnection(redisContext* context) {
  if (context == nullptr) return 1;
  redisFree(context);
  return 0;
}

StoreConnection ConnectStore(const ConnectionConfig* config) {
  if (config == nullptr) return nullptr;
  StoreConnection connection;
  if (config->type == UnixSocket) {
    connection.reset(redisConnectUnix(config->socket_path.c_str()));
  } else if (config->type == Tcp) {
    const char* host = config->host.empty() ? "127.0.0.1" : config->host.c_str();
    connection.reset(redisConnect(host, config->port));
  }
  // hiredis reports a failed connect in a context of its own.
  if (connection && connection->err != 0) connection.reset();
  return connection;
}

unsigned Authenticate(redisContext* context, const char* password) {
  if (context == nullptr || password == nullptr) return 1;
  const Reply reply(static_cast<redisReply*>(redisCommand(context, "%s %s", "AUTH", password)));
  if (!reply || reply->type != REDIS_REPLY_STATUS) return 1;
  return std::string_view(reply->str, reply->len) == "OK" ? 0 : 1;
}

StoreConnection OpenStoreConnection() {
  const std::optional<ConnectionConfig> config = ReadConnectionConfig();
  if (!config) return nullptr;
  StoreConnection connection = ConnectStore(&*config);
  if (connection && !config->password.empty() &&
      Authenticate(connection.get(), config->password.c_str()) != 0) {
    return nullptr;
  }
  return connection;
}

}  // namespace ostrafel
