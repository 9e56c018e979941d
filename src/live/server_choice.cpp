// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "live/server_choice.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <stdexcept>

#include "base/files.h"
#include "live/session.h"

namespace ostrafel {

namespace {

constexpr unsigned long kLastPort = 65535;

// What the user says of the server, or what the loader finds.
std::optional<ConnectionConfig> ConfigOf(const ServerChoice& choice) {
  ConnectionConfig config;
  if (choice.socket_path) {
    config.type = UnixSocket;
    config.socket_path = *choice.socket_path;
  } else if (choice.port) {
    config.type = Tcp;
    config.port = *choice.port;
    config.host = choice.host;
  } else {
    return ReadConnectionConfig();
  }
  return config;
}

std::string NameOf(const ConnectionConfig& config) {
  if (config.type == UnixSocket) return config.socket_path;
  return (config.host.empty() ? "127.0.0.1" : config.host) + ":" + std::to_string(config.port);
}

}  // namespace

bool ParseEndpoint(const std::string& text, ServerChoice* choice) {
  const std::size_t colon = text.rfind(':');
  const std::string port = colon == std::string::npos ? text : text.substr(colon + 1);
  std::string host = colon == std::string::npos ? "" : text.substr(0, colon);
  if (host.empty() && colon != std::string::npos) return false;
  if (host.size() > 2 && host.front() == '[' && host.back() == ']') {
    host = host.substr(1, host.size() - 2);
  } else if (host.find(':') != std::string::npos) {
    return false;
  }
  if (port.empty() || port.size() > 5 ||
      port.find_first_not_of("0123456789") != std::string::npos) {
    return false;
  }
  const unsigned long number = std::strtoul(port.c_str(), nullptr, 10);
  if (number == 0 || number > kLastPort) return false;
  choice->host = host;
  choice->port = static_cast<std::int32_t>(number);
  return true;
}

std::string ReadPassword(const std::string& path) {
  const File file(std::fopen(path.c_str(), "r"));
  if (!file) throw std::runtime_error(path + ": " + std::strerror(errno));
  std::string password;
  for (int c = std::getc(file.get()); c != EOF && c != '\n'; c = std::getc(file.get())) {
    password += static_cast<char>(c);
  }
  if (std::ferror(file.get()) != 0) throw std::runtime_error(path + ": " + std::strerror(errno));
  if (!password.empty() && password.back() == '\r') password.pop_back();
  return password;
}

StoreConnection ConnectTo(const ServerChoice& choice) {
  const std::optional<ConnectionConfig> config = ConfigOf(choice);
  if (!config) throw std::runtime_error("no Redis server is found");
  StoreConnection connection = ConnectStore(&*config);
  if (!connection) throw std::runtime_error("no connection to Redis at " + NameOf(*config));
  const std::string password = choice.password.value_or(config->password);
  if (!password.empty()) {
    const Reply reply = AskServer(connection.get(), {"AUTH", password});
    RefuseError(*reply, "AUTH");
  }
  return connection;
}

}  // namespace ostrafel
