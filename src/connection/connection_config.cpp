// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "connection/connection_config.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "base/files.h"
#include "base/message.h"
#include "connection/connection_state.h"

namespace ostrafel {

namespace {

// Lines are read and paths are formed in buffers of this size, the closing NUL included.
constexpr std::size_t kLineSize = 1024;

// The only TCP port that is accepted: Redis's own default.
constexpr std::int32_t kDefaultPort = 6379;

// Prints the directory part of the path on the first "unixsocket " line, without a line end. The
// run of spaces stays: rules of an audit may hold the whole command line.
constexpr const char* kRuntimeDirectoryCommand =
    "dirname $(grep -m 1 '^unixsocket ' /etc/redis/redis.conf |                 "
    "awk '{print $2}') | tr -d '\\n'";

// Reads one line of at most kLineSize - 1 bytes; nothing at the end of the file or on an error.
std::optional<std::string> ReadLine(std::FILE* file) {
  std::array<char, kLineSize> line = {};
  if (std::fgets(line.data(), static_cast<int>(line.size()), file) == nullptr) return std::nullopt;
  return std::string(line.data());
}

// Nothing when the shell cannot be started. Without a "unixsocket " line the directory is the
// empty string, and the runtime files are then looked for in the root directory.
std::optional<std::string> FindRuntimeDirectory() {
  // The server's own configuration is the one place that says where its files are.
  const Pipe pipe(popen(kRuntimeDirectoryCommand, "r"));  // NOLINT(cert-env33-c)
  if (!pipe) return std::nullopt;
  return ReadLine(pipe.get()).value_or("");
}

// The port as a number; nothing when it is not one.
std::optional<std::int32_t> ParsePort(const std::string& text) {
  const auto is_accepted = [](char c) { return (c >= '0' && c <= '9') || c == '\n'; };
  if (text.empty() || !std::all_of(text.begin(), text.end(), is_accepted)) return std::nullopt;
  errno = 0;
  const long port = std::strtol(text.c_str(), nullptr, 10);
  if (port < 0) return std::nullopt;
  if (errno == ERANGE && port == LONG_MAX) {
    PrintMessage("strtol: %s\n", std::strerror(errno));
    return std::nullopt;
  }
  // Where long has 64 bits, only the low 32 count.
  return static_cast<std::int32_t>(port);
}

}  // namespace

std::optional<std::string> ReadConfigValue(const char* key, const std::string& directory) {
  if (key == nullptr || std::strlen(key) + directory.size() >= kLineSize) return std::nullopt;
  std::string path = directory + "/redis." + key;
  path.resize(std::min(path.size(), kLineSize - 1));
  const File file(std::fopen(path.c_str(), "r"));
  if (!file) {
    PrintMessage("fopen: %s\n", std::strerror(errno));
    return std::nullopt;
  }
  return ReadLine(file.get());
}

std::optional<ConnectionConfig> ReadConnectionConfig() {
  if (Connection.ConnectionConfigCopy) return Connection.ConnectionConfigCopy;

  const std::optional<std::string> directory = FindRuntimeDirectory();
  if (!directory) return std::nullopt;
  const std::optional<std::string> port_text = ReadConfigValue("port", *directory);
  if (!port_text) return std::nullopt;
  const std::optional<std::int32_t> port = ParsePort(*port_text);
  if (!port) return std::nullopt;

  ConnectionConfig config;
  const std::optional<std::string> socket_path = ReadConfigValue("unixsocket", *directory);
  if (!socket_path && *port >= 1) {
    if (*port != kDefaultPort) return std::nullopt;
    config.type = Tcp;
    config.port = kDefaultPort;
  } else {
    config.type = UnixSocket;
    config.socket_path = socket_path.value_or("(null)");
  }
  config.password = ReadConfigValue("requirepass", *directory).value_or("");

  Connection.ConnectionConfigCopy = config;
  return config;
}

}  // namespace ostrafel
