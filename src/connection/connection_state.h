// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// All that the connection remembers during a run. One thread uses it.
#ifndef OSTRAFEL_CONNECTION_CONNECTION_STATE_H_
#define OSTRAFEL_CONNECTION_CONNECTION_STATE_H_

#include <optional>

#include "connection/connection_config.h"

namespace ostrafel {

struct ConnectionState {
  /// What ReadConnectionConfig found on its first success; nothing before that.
  std::optional<ConnectionConfig> ConnectionConfigCopy;
};
extern ConnectionState Connection;

}  // namespace ostrafel

#endif  // OSTRAFEL_CONNECTION_CONNECTION_STATE_H_
