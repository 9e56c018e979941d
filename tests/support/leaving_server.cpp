// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "support/leaving_server.h"

#include <strings.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <cstring>
#include <optional>
#include <utility>

#include "support/resp.h"
#include "support/sockets.h"

namespace {

bool ReadExactly(int client, std::size_t size, std::string* bytes) {
  std::string part(size, 0);
  if (recv(client, part.data(), size, MSG_WAITALL) != static_cast<ssize_t>(size)) return false;
  *bytes += part;
  return true;
}

// Reads a line such as "*3" or "$12". Returns its number; none when the client is gone.
std::optional<std::size_t> ReadCount(int client, std::string* bytes) {
  std::string line;
  while (line.empty() || line.back() != '\n') {
    if (!ReadExactly(client, 1, &line)) return std::nullopt;
  }
  *bytes += line;
  return std::stoul(line.substr(1));
}

// Reads one command and not a byte of the next. None when the client is gone.
std::optional<model::Command> ReadCommand(int client) {
  std::string bytes;
  const std::optional<std::size_t> arguments = ReadCount(client, &bytes);
  for (std::size_t i = 0; arguments && i < *arguments; ++i) {
    const std::optional<std::size_t> size = ReadCount(client, &bytes);
    if (!size || !ReadExactly(client, *size + 2, &bytes)) return std::nullopt;
  }
  return TakeCommand(&bytes);
}

// Waits for a command and tells whether it has this name, without reading it.
bool NextCommandIs(const std::string& name, int client) {
  std::array<char, 64> buffer = {};
  if (recv(client, buffer.data(), buffer.size() - 1, MSG_PEEK) <= 0) return false;
  return strcasestr(buffer.data(), ("\r\n" + name + "\r\n").c_str()) != nullptr;
}

// What a client can send without a reader must not depend on the machine: without a size of its
// own, a receive buffer grows with what was read, up to tens of megabytes (tcp(7), tcp_rmem).
int WithSmallReceiveBuffer(int listener) {
  constexpr int size = 1 << 16;
  (void)setsockopt(listener, SOL_SOCKET, SO_RCVBUF, &size, sizeof size);
  return listener;
}

}  // namespace

LeavingServer::LeavingServer(const std::string& path, model::Store store, Departure departure)
    : departure_(std::move(departure)),
      store_(std::move(store)),
      listener_(
          WithSmallReceiveBuffer(path.empty() ? ListenOnDefaultPort() : ListenOnUnixSocket(path))),
      thread_(&LeavingServer::Serve, this) {}

LeavingServer::~LeavingServer() { (void)Join(); }

std::size_t LeavingServer::Join() {
  if (thread_.joinable()) thread_.join();
  return read_;
}

void LeavingServer::Serve() {
  constexpr int most_milliseconds = 60000;  // for a client that does not come
  if (IsReadable(listener_, most_milliseconds)) {
    const int client = accept4(listener_, nullptr, nullptr, SOCK_CLOEXEC);
    while (AnswerNext(client)) continue;
    (void)close(client);
  }
  (void)close(listener_);
}

// Returns false when the connection is to be closed.
bool LeavingServer::AnswerNext(int client) {
  const bool is_leaving = departure_.read == 0 && NextCommandIs(departure_.command, client);
  const std::optional<model::Command> command = is_leaving ? std::nullopt : ReadCommand(client);
  if (command && strcasecmp(command->front().c_str(), departure_.command.c_str()) != 0) {
    return WriteAll(client, Format(model::Execute(store_, *command)));
  }
  if (command && ++read_ < departure_.read) return true;
  if (is_leaving || command) (void)WriteAll(client, departure_.last_words);
  return false;
}
