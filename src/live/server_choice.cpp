// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "live/server_choice.h"

#include <cerrno>
#include <charconv>
#include <cstddef>
#include <cstdio>
#include <cstring>
#include <new>
#include <stdexcept>
#include <system_error>

#include "base/files.h"
#include "live/session.h"

namespace ostrafel {

namespace {

constexpr std::int32_t kLastPort = 65535;

// Some files, such as /dev/zero, have no end.
constexpr std::size_t kLongestPassword = std::size_t{64} * 1024;

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
  const bool is_address = config.host.find(':') != std::string::npos;
  return (is_address ? "[" + config.host + "]" : config.host) + ":" + std::to_string(config.port);
}

// Like ConnectStore, but says why there is no connection.
StoreConnection Connect(const ConnectionConfig& config) {
  StoreConnection connection(config.type == UnixSocket
                                 ? redisConnectUnix(config.socket_path.c_str())
                                 : redisConnect(config.host.c_str(), config.port));
  if (!connection) throw std::bad_alloc();
  if (connection->err != 0) {
    throw std::runtime_error("no connection to Redis at " + NameOf(config) + ": " +
                             connection->errstr);
  }
  return connection;
}

void Login(redisContext* context, const std::string& password) {
  RequireStatus(*AskServer(context, {"AUTH", password}), "OK", "AUTH");
}

// A host as it stands before a port. Empty when it is none: only an address in brackets has colons.
std::string WithoutBrackets(const std::string& host) {
  const bool has_brackets = host.size() > 2 && host.front() == '[' && host.back() == ']';
  const std::string inner = has_brackets ? host.substr(1, host.size() - 2) : host;
  const bool is_host = inner.find_first_of(has_brackets ? "[]" : "[]:") == std::string::npos;
  return is_host ? inner : "";
}

}  // namespace

bool ParseEndpoint(const std::string& text, ServerChoice* choice) {
  const std::size_t colon = text.rfind(':');
  std::string host;
  std::string port = text;
  if (colon != std::string::npos) {
    host = WithoutBrackets(text.substr(0, colon));
    port = text.substr(colon + 1);
    if (host.empty()) return false;
  }
  std::int32_t number = 0;
  const char* const end = port.data() + port.size();
  const auto [rest, error] = std::from_chars(port.data(), end, number);
  if (error != std::errc() || rest != end || number < 1 || number > kLastPort) return false;
  choice->host = host;
  choice->port = number;
  return true;
}

std::string ReadPassword(const std::string& path) {
  const File file(std::fopen(path.c_str(), "r"));
  if (!file) throw std::runtime_error(path + ": " + std::strerror(errno));
  std::string password;
  for (int c = std::getc(file.get()); c != EOF && c != '\n'; c = std::getc(file.get())) {
    if (password.size() == kLongestPassword) {
      throw std::runtime_error(path + ": its first line is too long for a password");
    }
    password += static_cast<char>(c);
  }
  if (std::ferror(file.get()) != 0) throw std::runtime_error(path + ": " + std::strerror(errno));
  if (!password.empty() && password.back() == '\r') password.pop_back();
  return password;
}

StoreConnection ConnectTo(const ServerChoice& choice) {
  std::optional<ConnectionConfig> config = ConfigOf(choice);
  if (!config) throw std::runtime_error("no Redis server is found where the loader looks for it");
  if (config->host.empty()) config->host = "127.0.0.1";
  StoreConnection connection = Connect(*config);
  const std::string password = choice.password.value_or(config->password);
  if (!password.empty()) Login(connection.get(), password);
  return connection;
}

}  // namespace ostrafel
