// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// The accepting side of a connection, seen a whole flight at a time.
#ifndef OSTRAFEL_TESTS_SUPPORT_FLIGHT_LISTENER_H_
#define OSTRAFEL_TESTS_SUPPORT_FLIGHT_LISTENER_H_

#include <atomic>
#include <string>
#include <thread>
#include <vector>

#include "model/reply.h"

/// How a server leaves: politely (FIN), or abruptly (RST; what a server that is killed, or a
/// machine that lost its state, answers). The client reads what was sent before either; then it
/// finds the end of the stream, or ECONNRESET.
///
/// Over TCP, RST is a close with nothing to linger for. A Unix socket has no such thing, but there
/// a client gets ECONNRESET when the server closes with something of the client's left unread. So
/// the last byte of a flight stays unread until it is known how the flight is answered.
enum class Ending { kFin, kRst };

/// What is sent for a flight.
struct Delivery {
  std::string bytes;
  bool is_byte_by_byte = false;  ///< Each byte when the client has read the one before.
  bool is_last = false;          ///< The connection is closed after the bytes.
  Ending ending = Ending::kFin;
  /// Nothing is sent; the client, which must be a process of its own, is killed where it waits.
  bool kills_client = false;
};

/// What answers the flights. Called from the listener's own thread, one call after the other.
class FlightHandler {
 public:
  virtual ~FlightHandler() = default;

  /// A client has connected.
  virtual void Connected() = 0;

  /// The client waits for the replies of these commands.
  virtual Delivery Answer(const std::vector<model::Command>& commands) = 0;

  /// Asked before anything of a flight is read: true kills the client, which must be a process of
  /// its own, as soon as it sleeps. It may then have sent a part of the flight only.
  virtual bool KillsWhileItSends() { return false; }

  /// The client has left without waiting for the replies of these commands.
  virtual void LeftUnanswered(const std::vector<model::Command>& commands) = 0;

  /// The client has left with nothing of it unanswered.
  virtual void LeftInOrder() = 0;
};

/// Listens on a Unix socket, or on TCP port 6379 of the loopback interface, and gives what a client
/// sends to a handler, a flight at a time: everything that the client sent before it began to wait.
/// That it waits is read from the state of its thread, so the division into flights does not depend
/// on the clock.
///
/// When the connection is to be closed, a client process is stopped meanwhile, so that it finds
/// both done, bytes and end: what it sends next meets a peer that is gone.
class FlightListener {
 public:
  /// Starts to listen at once. path is where the client connects; empty: TCP port 6379. The handler
  /// must outlive the listener.
  FlightListener(const std::string& path, FlightHandler* handler);
  ~FlightListener();
  FlightListener(const FlightListener&) = delete;
  FlightListener& operator=(const FlightListener&) = delete;

  /// Names the client: a process or thread id.
  void Watch(int client_id);

  /// Stops listening and ends open connections. Connections that wait to be accepted still are.
  void Finish();

 private:
  class Inbox;

  void Serve();
  void ServeConnection(int client);
  bool Deliver(int client, Inbox* inbox, const Delivery& delivery) const;
  void SendAndClose(int client, const Delivery& delivery) const;
  void KillClient() const;
  char ClientState() const;

  const std::string path_;
  FlightHandler* const handler_;
  int listener_ = -1;
  std::atomic<bool> is_ending_{false};
  std::atomic<int> client_id_{0};
  std::thread thread_;
};

#endif  // OSTRAFEL_TESTS_SUPPORT_FLIGHT_LISTENER_H_
