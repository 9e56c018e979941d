// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// A Redis server that does what a test says and a real one will not do on demand.
#ifndef OSTRAFEL_TESTS_SUPPORT_SCRIPTED_SERVER_H_
#define OSTRAFEL_TESTS_SUPPORT_SCRIPTED_SERVER_H_

#include <cstddef>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "model/memory_store.h"
#include "support/flight_listener.h"
#include "support/recorder.h"

/// Listens on a Unix socket, or on TCP port 6379 of the loopback interface, and plays a Redis
/// server over a store in memory: every command gets the reply that a real server gives
/// (model::Execute; AUTH gets OK), except where a fault is planned. It waits with its replies until
/// the client waits for them (see FlightListener), so that which commands travelled as one
/// pipeline, and what was sent before a fault, does not depend on the clock.
///
/// Faults are planned before the client connects. Commands and bytes of replies are counted over
/// all connections, commands from 0.
class ScriptedServer : private FlightHandler {
 public:
  /// Starts to listen at once. path is where the client connects; empty: TCP port 6379.
  explicit ScriptedServer(const std::string& path, model::Store store = {});
  ~ScriptedServer() override;
  ScriptedServer(const ScriptedServer&) = delete;
  ScriptedServer& operator=(const ScriptedServer&) = delete;

  /// Names the client: a process or thread id.
  void Watch(int client_id);

  /// Answers one command with these bytes, whatever they are; the store does not get the command.
  /// With less than one reply the client waits for ever, unless the connection is then closed.
  void AnswerCommand(std::size_t command, const std::string& bytes);

  /// Closes the connection when this command has come, after the replies of those before it. The
  /// store gets it, and what travelled with it, all the same, as from a server that loses the way
  /// back.
  void CloseBeforeReply(std::size_t command, Ending ending);

  /// Closes the connection after the reply of this command, without waiting for another. Later
  /// commands that travelled with it reach the store.
  void CloseAfterReply(std::size_t command, Ending ending);

  /// Closes the connection when so many bytes of replies were sent.
  void CloseAfterBytes(std::size_t bytes, Ending ending);

  /// Kills the client, which must be a process of its own, when this command has come. The store
  /// gets the commands up to this one and none of those that travelled after it, as if the client
  /// had come no further with sending.
  void KillClientAfter(std::size_t command);

  /// Kills the client while it sends this flight (counted from 0): when it can send no more because
  /// nobody reads, or else when it waits for the replies. The store gets the commands that were
  /// sent whole.
  void KillClientWhileItSends(std::size_t flight);

  /// Sends replies one byte at a time, each when the client has read the one before and waits
  /// again. Those before a close are sent together.
  void DeliverByteByByte();

  /// Stops listening, ends open connections and returns what was seen. A flight's replies are those
  /// that were sent whole.
  Recording Finish();

  /// What is stored. To be asked after Finish.
  const model::Store& Contents() const { return store_; }

 private:
  void Connected() override;
  Delivery Answer(const std::vector<model::Command>& commands) override;
  bool KillsWhileItSends() override;
  void LeftUnanswered(const std::vector<model::Command>& commands) override;
  void LeftInOrder() override;
  void CarryOutUnanswered(const std::vector<model::Command>& commands);
  std::string ReplyTo(const model::Command& command);

  std::mutex mutex_;  // guards everything below but the listener
  model::Store store_;
  std::map<std::size_t, std::string> answers_;
  std::optional<std::size_t> close_before_;
  std::optional<std::size_t> close_after_;
  std::optional<std::size_t> close_at_byte_;
  std::optional<std::size_t> kill_after_;
  std::optional<std::size_t> kill_in_flight_;
  Ending ending_ = Ending::kFin;
  bool is_byte_by_byte_ = false;
  std::size_t commands_seen_ = 0;
  std::size_t bytes_sent_ = 0;
  Recording recording_;
  FlightListener listener_;
};

#endif  // OSTRAFEL_TESTS_SUPPORT_SCRIPTED_SERVER_H_
