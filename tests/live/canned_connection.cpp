// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "live/canned_connection.h"

#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <optional>
#include <stdexcept>
#include <utility>

#include "support/resp.h"
#include "support/sockets.h"

namespace ostrafel {

CannedConnection::CannedConnection(const std::string& answers) {
  std::array<int, 2> ends = {};
  if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends.data()) != 0) {
    throw std::runtime_error("no socket");
  }
  peer_ = ends[1];
  context_.reset(redisConnectFd(ends[0]));
  if (!context_ || !WriteAll(peer_, answers)) throw std::runtime_error("no connection");
  (void)shutdown(peer_, SHUT_WR);
}

CannedConnection::~CannedConnection() { Leave(); }

void CannedConnection::Leave() {
  if (peer_ >= 0) (void)close(std::exchange(peer_, -1));
}

std::vector<model::Command> CannedConnection::Commands() {
  std::string bytes;
  while (IsReadable(peer_, 0) && ReadSome(peer_, &bytes)) {
  }
  std::vector<model::Command> commands;
  while (std::optional<model::Command> command = TakeCommand(&bytes)) {
    commands.push_back(std::move(*command));
  }
  return commands;
}

}  // namespace ostrafel
