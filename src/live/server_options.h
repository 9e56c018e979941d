// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// The options with which a companion is told its server.
#ifndef OSTRAFEL_LIVE_SERVER_OPTIONS_H_
#define OSTRAFEL_LIVE_SERVER_OPTIONS_H_

#include <string>

#include "live/server_choice.h"
#include "tool/command_line.h"

namespace ostrafel {

/// What the line has said of the server.
struct ServerOptions {
  ServerChoice choice;
  std::string password_file;
};

/// Take the arguments of --socket, --tcp and --password-file.
[[nodiscard]] Step TakeSocket(const std::string& text, ServerOptions* server);
[[nodiscard]] Step TakeEndpoint(const std::string& text, ServerOptions* server);
[[nodiscard]] Step TakePasswordFile(const std::string& text, ServerOptions* server);

/// True when one of them was given.
[[nodiscard]] bool HasServer(const ServerOptions& server);

/// Refuses a line that names two servers.
[[nodiscard]] Step CheckServer(const ServerOptions& server);

/// The choice, with the password of the file or else of OSTRAFEL_PASSWORD in the environment, if it
/// has one. Raises runtime_error when the file cannot be read.
[[nodiscard]] ServerChoice FinishServer(const ServerOptions& server);

}  // namespace ostrafel

#endif  // OSTRAFEL_LIVE_SERVER_OPTIONS_H_
