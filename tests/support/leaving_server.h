// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// A server that leaves while a pipeline is still being written to it.
#ifndef OSTRAFEL_TESTS_SUPPORT_LEAVING_SERVER_H_
#define OSTRAFEL_TESTS_SUPPORT_LEAVING_SERVER_H_

#include <cstddef>
#include <string>
#include <thread>

#include "model/memory_store.h"

/// When the server leaves, and what it says before.
struct Departure {
  std::string command;          ///< The commands that are counted: "HSET", "DEL" (in any case).
  std::size_t read = 0;         ///< It reads so many of them, and nothing that follows.
  std::string last_words = {};  ///< Sent after these, whatever they are.
};

/// Listens on a Unix socket, or on TCP port 6379 of the loopback interface, for one client. Plays a
/// Redis server over a store in memory until the first command comes that is to be counted; those
/// it does not answer. It closes the connection at once when it has read as many as it should: it
/// does not wait for the client, as ScriptedServer does.
class LeavingServer {
 public:
  /// Starts to listen at once. path is where the client connects; empty: TCP port 6379.
  LeavingServer(const std::string& path, model::Store store, Departure departure);
  ~LeavingServer();
  LeavingServer(const LeavingServer&) = delete;
  LeavingServer& operator=(const LeavingServer&) = delete;

  /// Waits until the server has left, or the client has, which must have connected. Returns how
  /// many of the counted commands it read.
  std::size_t Join();

 private:
  void Serve();
  bool AnswerNext(int client);

  const Departure departure_;
  model::Store store_;
  const int listener_;
  std::size_t read_ = 0;
  std::thread thread_;
};

#endif  // OSTRAFEL_TESTS_SUPPORT_LEAVING_SERVER_H_
