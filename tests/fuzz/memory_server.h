// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// Both ends of the protocol in memory: a server that works on a model::Store, and one that answers
// with given bytes.
#ifndef OSTRAFEL_TESTS_FUZZ_MEMORY_SERVER_H_
#define OSTRAFEL_TESTS_FUZZ_MEMORY_SERVER_H_

#include <cstddef>
#include <limits>
#include <string>
#include <string_view>
#include <vector>

#include "fuzz/machine.h"
#include "model/memory_store.h"
#include "model/reply.h"

/// Keeps the commands that it receives, whole ones only.
class CommandReader {
 public:
  /// Takes bytes as they come. Returns how many commands are complete with them.
  std::size_t Add(std::string_view bytes);

  /// All commands so far.
  const std::vector<model::Command>& commands() const { return commands_; }

 private:
  std::string pending_;
  std::vector<model::Command> commands_;
};

/// A server that carries out every command at once, as model::Execute does, and keeps its answers
/// until they are read. Every password is right.
class MemoryServer : public Peer {
 public:
  /// Works on the caller's store, which must outlive the server.
  explicit MemoryServer(model::Store* store) : store_(*store) {}

  bool Receive(std::string_view bytes) override;
  std::size_t Send(char* buffer, std::size_t size) override;

  const std::vector<model::Command>& commands() const { return reader_.commands(); }

  /// Every byte that was answered, or still waits to be read.
  const std::string& answers() const { return answers_; }

 private:
  model::Store& store_;
  CommandReader reader_;
  std::string answers_;
  std::size_t sent_ = 0;
};

/// A server that answers with these bytes, whatever it is asked, and closes the connection after
/// them.
class ByteServer : public Peer {
 public:
  static constexpr std::size_t kNoLimit = std::numeric_limits<std::size_t>::max();

  /// Hands over at most so many bytes at once. Once it has handed over all of them and got as many
  /// commands as may_be_sent, what the program sends fails.
  ByteServer(std::string_view bytes, std::size_t bytes_at_once, std::size_t may_be_sent = kNoLimit)
      : bytes_(bytes), bytes_at_once_(bytes_at_once), may_be_sent_(may_be_sent) {}

  bool Receive(std::string_view bytes) override;
  std::size_t Send(char* buffer, std::size_t size) override;

  const std::vector<model::Command>& commands() const { return reader_.commands(); }

 private:
  std::string_view bytes_;
  const std::size_t bytes_at_once_;
  const std::size_t may_be_sent_;
  CommandReader reader_;
};

/// The commands as text, one a line.
std::string Describe(const std::vector<model::Command>& commands);

#endif  // OSTRAFEL_TESTS_FUZZ_MEMORY_SERVER_H_
