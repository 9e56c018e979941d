// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "fuzz/memory_server.h"

#include <algorithm>
#include <cstring>
#include <optional>
#include <utility>

#include "model/endpoint.h"
#include "support/resp.h"

std::size_t CommandReader::Add(std::string_view bytes) {
  pending_.append(bytes);
  std::size_t count = 0;
  while (!pending_.empty()) {
    std::optional<model::Command> command = TakeCommand(&pending_);
    if (!command) break;
    commands_.push_back(std::move(*command));
    ++count;
  }
  return count;
}

bool MemoryServer::Receive(std::string_view bytes) {
  const std::size_t count = reader_.Add(bytes);
  const std::vector<model::Command>& commands = reader_.commands();
  for (std::size_t i = commands.size() - count; i < commands.size(); ++i) {
    const bool is_login = commands[i][0] == "AUTH";
    answers_ += Format(is_login ? model::StatusReply("OK") : model::Execute(store_, commands[i]));
  }
  return true;
}

std::size_t MemoryServer::Send(char* buffer, std::size_t size) {
  const std::size_t count = std::min(size, answers_.size() - sent_);
  std::memcpy(buffer, answers_.data() + sent_, count);
  sent_ += count;
  return count;
}

bool ByteServer::Receive(std::string_view bytes) {
  if (bytes_.empty() && commands().size() >= may_be_sent_) return false;
  (void)reader_.Add(bytes);
  return true;
}

std::size_t ByteServer::Send(char* buffer, std::size_t size) {
  const std::size_t count = std::min({size, bytes_at_once_, bytes_.size()});
  std::copy_n(bytes_.begin(), count, buffer);
  bytes_.remove_prefix(count);
  return count;
}

std::string Describe(const std::vector<model::Command>& commands) {
  std::string text;
  for (const model::Command& command : commands) text += model::Describe(command) + "\n";
  return text;
}
