// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "live/server_options.h"

#include <cstdlib>

namespace ostrafel {

Step TakeSocket(const std::string& text, ServerOptions* server) {
  return TakeFile("socket", text, &server->choice.socket_path);
}

Step TakeEndpoint(const std::string& text, ServerOptions* server) {
  if (ParseEndpoint(text, &server->choice)) return std::nullopt;
  return RefuseLine("--tcp needs a port, or a host and a port with a colon between them, not '" +
                    text + "'");
}

Step TakePasswordFile(const std::string& text, ServerOptions* server) {
  return TakeFile("password-file", text, &server->password_file);
}

bool HasServer(const ServerOptions& server) {
  return server.choice.socket_path || server.choice.port || !server.password_file.empty();
}

Step CheckServer(const ServerOptions& server) {
  if (!server.choice.socket_path || !server.choice.port) return std::nullopt;
  return RefuseLine("--socket and --tcp name two servers");
}

ServerChoice FinishServer(const ServerOptions& server) {
  ServerChoice choice = server.choice;
  // Not an option: everybody may read the command lines of a machine.
  const char* password = std::getenv("OSTRAFEL_PASSWORD");
  if (password != nullptr && *password != '\0') choice.password = password;
  if (!server.password_file.empty()) choice.password = ReadPassword(server.password_file);
  return choice;
}

}  // namespace ostrafel
