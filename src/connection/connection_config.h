// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// Where the local Redis server listens and with what password, read from the server's own files.
#ifndef OSTRAFEL_CONNECTION_CONNECTION_CONFIG_H_
#define OSTRAFEL_CONNECTION_CONNECTION_CONFIG_H_

#include <cstdint>
#include <optional>
#include <string>

namespace ostrafel {

enum ConnectionType : std::int32_t { UnixSocket = 1, Tcp = 2 };

struct ConnectionConfig {
  std::int32_t type = 0;    ///< A ConnectionType; 0 until it is known.
  std::int32_t port = 0;    ///< TCP port; 0 with a Unix socket.
  std::string socket_path;  ///< At most 1023 bytes.
  std::string password;     ///< At most 1023 bytes; empty means no authentication.
  std::string host;         ///< TCP host; empty means 127.0.0.1.
};

/// Finds the server: /etc/redis/redis.conf names the server's runtime directory (that of its
/// "unixsocket" line), where the files redis.port, redis.unixsocket and redis.requirepass are read,
/// in this order. The result of the first success is remembered in ConnectionConfigCopy; later
/// calls return a copy of it and read nothing.
///
/// A socket path with port 0 gives a Unix socket. No socket path with port 6379 gives TCP; no other
/// port is accepted. A socket path wins over any port. With neither, the path is "(null)", where
/// nothing listens, so that connecting fails. Of a port beyond 32 bits the low 32 count; a
/// negative result counts as 0: no port.
///
/// Returns nothing when the shell cannot be started, the port file is missing, empty, cannot
/// be read or holds anything but digits and line feeds, the port overflows, or there is no socket
/// path and the port is 1 or more but not the default one. Prints "fopen: %s\n" for each file
/// that cannot be opened and "strtol: %s\n" when the port overflows, with the system's words for
/// it; what the shell's commands print on standard error passes through.
[[nodiscard]] std::optional<ConnectionConfig> ReadConnectionConfig();

/// Reads the first line, at most 1023 bytes, of the file "redis." + key in directory. Its line end
/// is kept. key is NUL-terminated and may be null. The file's path is cut at 1023 bytes.
///
/// Returns nothing when key is null, key and directory are 1024 bytes or longer together, the file
/// cannot be opened (then "fopen: %s\n" is printed), or nothing can be read from it.
[[nodiscard]] std::optional<std::string> ReadConfigValue(const char* key,
                                                         const std::string& directory);

}  // namespace ostrafel

#endif  // OSTRAFEL_CONNECTION_CONNECTION_CONFIG_H_
