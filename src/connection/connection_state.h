// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// All that the connection subsystem remembers during a run. One thread uses it.
#ifndef OSTRAFEL_CONNECTION_CONNECTION_STATE_H_
#define OSTRAFEL_CONNECTION_CONNECTION_STATE_H_

#include <optional>

#include "connection/connection_config.h"

namespace ostrafel {

/// What ReadConnectionConfig found on its first success; nothing before that.
extern std::optional<ConnectionConfig> ConnectionConfigCopy;

/// Returns the above to its state at program start. For tests; a run never calls it.
void ResetConnectionState();

}  // namespace ostrafel

#endif  // OSTRAFEL_CONNECTION_CONNECTION_STATE_H_
