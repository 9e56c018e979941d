// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// The one connection of a run to the local Redis server.
#ifndef OSTRAFEL_CONNECTION_STORE_CONNECTION_H_
#define OSTRAFEL_CONNECTION_STORE_CONNECTION_H_

#include <hiredis/hiredis.h>

#include <memory>

#include "connection/connection_config.h"

namespace ostrafel {

/// Closes the connection (redisFree). Returns 0 after closing and 1 when given none: the reverse of
/// the other operations.
unsigned CloseStoreConnection(redisContext* context);

struct StoreConnectionDeleter {
  void operator()(redisContext* context) const { (void)CloseStoreConnection(context); }
};
/// The owner of a connection: closes it once, when it is reset or goes out of scope.
using StoreConnection = std::unique_ptr<redisContext, StoreConnectionDeleter>;

/// Finds the local server (ReadConnectionConfig), connects and, when there is a password,
/// authenticates. Returns nothing when any of these fails; prints only what ReadConnectionConfig
/// prints.
[[nodiscard]] StoreConnection OpenStoreConnection();

/// Connects as config says, without a time-out: over its Unix socket, or over TCP to its host
/// (127.0.0.1 when it names none). Returns nothing when config is null, its type is neither, or the
/// connection cannot be made. Prints nothing.
[[nodiscard]] StoreConnection ConnectStore(const ConnectionConfig* config);

/// Sends AUTH with password as one argument, whatever it contains. Returns 0 when the server
/// answered the status "OK" and 1 otherwise, also when either argument is null: the reverse of the
/// other operations.
[[nodiscard]] unsigned Authenticate(redisContext* context, const char* password);

}  // namespace ostrafel

#endif  // OSTRAFEL_CONNECTION_STORE_CONNECTION_H_
