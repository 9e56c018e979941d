// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "support/sockets.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <array>
#include <cstdint>
#include <cstring>
#include <stdexcept>

namespace {

constexpr std::uint16_t kDefaultPort = 6379;

sockaddr_un UnixAddress(const std::string& path) {
  sockaddr_un address = {};
  address.sun_family = AF_UNIX;
  if (path.size() >= sizeof address.sun_path) throw std::runtime_error("path too long: " + path);
  std::memcpy(address.sun_path, path.c_str(), path.size() + 1);
  return address;
}

template <typename Address>
void BindAndListen(int listener, const Address& address, const std::string& name) {
  if (listener < 0 ||
      bind(listener, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0 ||
      listen(listener, 8) != 0) {
    throw std::runtime_error("cannot listen on " + name);
  }
}

}  // namespace

int ListenOnUnixSocket(const std::string& path) {
  (void)unlink(path.c_str());
  const int listener = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
  BindAndListen(listener, UnixAddress(path), path);
  return listener;
}

int ListenOnDefaultPort() {
  sockaddr_in address = {};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  address.sin_port = htons(kDefaultPort);
  const int listener = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  const int on = 1;
  (void)setsockopt(listener, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
  // Inherited by the connections that it accepts.
  (void)setsockopt(listener, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
  BindAndListen(listener, address, "port 6379");
  return listener;
}

int ConnectToUnixSocket(const std::string& path) {
  const sockaddr_un address = UnixAddress(path);
  const int connection = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
  if (connection < 0 ||
      connect(connection, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) {
    throw std::runtime_error("cannot connect to the server at " + path);
  }
  return connection;
}

bool IsReadable(int descriptor, int milliseconds) {
  pollfd wait = {descriptor, POLLIN, 0};
  return poll(&wait, 1, milliseconds) > 0;
}

bool ReadSome(int descriptor, std::string* bytes) {
  static thread_local std::array<char, 1 << 16> buffer;
  const ssize_t size = read(descriptor, buffer.data(), buffer.size());
  if (size <= 0) return false;
  bytes->append(buffer.data(), static_cast<std::size_t>(size));
  return true;
}

bool WriteAll(int descriptor, const std::string& bytes) {
  std::size_t written = 0;
  while (written < bytes.size()) {
    const ssize_t size =
        send(descriptor, bytes.data() + written, bytes.size() - written, MSG_NOSIGNAL);
    if (size <= 0) return false;
    written += static_cast<std::size_t>(size);
  }
  return true;
}
