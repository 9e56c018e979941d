// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// The store of store/server.h that is a Redis server, spoken to with hiredis. Names are sent as
// NUL-terminated strings.
#ifndef OSTRAFEL_REDIS_REDIS_SERVER_H_
#define OSTRAFEL_REDIS_REDIS_SERVER_H_

#include "connection/store_connection.h"

namespace ostrafel {

struct Server {
  StoreConnection connection;  ///< Never empty while an operation runs.
};

}  // namespace ostrafel

#endif  // OSTRAFEL_REDIS_REDIS_SERVER_H_
