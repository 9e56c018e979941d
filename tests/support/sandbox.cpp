// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "support/sandbox.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>

namespace {

std::string FromEnvironment(const char* name) {
  const char* value = std::getenv(name);
  if (value == nullptr) throw std::runtime_error(std::string(name) + " is not set");
  return value;
}

}  // namespace

std::string ServerSocket() { return FromEnvironment("OSTRAFEL_SANDBOX_SOCKET"); }

bool DefaultPortIsFree() {
  sockaddr_in address = {};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  address.sin_port = htons(6379);
  const int listener = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  const int on = 1;
  (void)setsockopt(listener, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
  const bool is_free =
      bind(listener, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
  (void)close(listener);
  return is_free;
}

std::string RuntimeDirectory() { return FromEnvironment("OSTRAFEL_SANDBOX_RUNTIME"); }

std::string ReadFile(const std::string& path) {
  std::ifstream stream(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

void WriteFile(const std::string& path, const std::optional<std::string>& content) {
  std::filesystem::remove(path);
  if (!content) return;
  std::ofstream stream(path, std::ios::binary);
  stream << *content;
  if (!stream.flush()) throw std::runtime_error("cannot write " + path);
}

void EmptyIncludeDirectory() {
  for (const auto& entry : std::filesystem::directory_iterator(kIncludeDirectory)) {
    std::filesystem::remove_all(entry.path());
  }
}

void Include(const std::string& name, const std::string& content) {
  const std::filesystem::path path = std::string(kIncludeDirectory) + "/" + name;
  std::filesystem::create_directories(path.parent_path());
  WriteFile(path.string(), content);
}

void Publish(const RuntimeFiles& files) {
  WriteFile(RuntimeDirectory() + "/redis.port", files.port);
  WriteFile(RuntimeDirectory() + "/redis.unixsocket", files.unixsocket);
  WriteFile(RuntimeDirectory() + "/redis.requirepass", files.requirepass);
}
