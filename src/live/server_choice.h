// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// Which server a companion speaks to.
#ifndef OSTRAFEL_LIVE_SERVER_CHOICE_H_
#define OSTRAFEL_LIVE_SERVER_CHOICE_H_

#include <cstdint>
#include <optional>
#include <string>

#include "connection/store_connection.h"

namespace ostrafel {

/// What the user says of the server. Without a socket and a port it is the one that the loader
/// finds.
struct ServerChoice {
  std::optional<std::string> socket_path;  ///< Wins over a port.
  std::optional<std::int32_t> port;
  std::string host;                     ///< Empty: 127.0.0.1.
  std::optional<std::string> password;  ///< Instead of the one that the loader finds.
};

/// Takes "[HOST:]PORT", the port from 1 to 65535; an IPv6 address stands in brackets. False when
/// text is nothing of that kind.
[[nodiscard]] bool ParseEndpoint(const std::string& text, ServerChoice* choice);

/// The first line of the file, without its line end. Raises runtime_error when the file cannot be
/// read, or the line is longer than a password: more than 64 KiB.
[[nodiscard]] std::string ReadPassword(const std::string& path);

/// Connects and, when there is a password, authenticates. Raises runtime_error, with a sentence
/// that names the server, when it cannot; what looking for the loader's server prints is printed.
[[nodiscard]] StoreConnection ConnectTo(const ServerChoice& choice);

}  // namespace ostrafel

#endif  // OSTRAFEL_LIVE_SERVER_CHOICE_H_
