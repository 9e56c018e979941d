// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// A proxy between one client and the real server that sees every command and reply, in order, and
// which of them travelled together.
#ifndef OSTRAFEL_TESTS_SUPPORT_RECORDER_H_
#define OSTRAFEL_TESTS_SUPPORT_RECORDER_H_

#include <cstddef>
#include <functional>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "model/endpoint.h"
#include "support/flight_listener.h"

/// What a Recorder saw.
struct Recording {
  std::vector<model::Flight> flights;
  int connections = 0;       ///< Connections accepted.
  int closed_by_client = 0;  ///< Of these, closed by the client with nothing of it unanswered.
};

/// Listens on a Unix socket (or on TCP port 6379 of the loopback interface) and passes on to the
/// server what a client sends, a whole flight at a time (see FlightListener).
class Recorder : private FlightHandler {
 public:
  enum class Transport { kUnix, kTcp };

  /// Starts to listen at once. client_path is where the client connects (unused with kTcp),
  /// server_path is the real server's socket.
  Recorder(const std::string& client_path, const std::string& server_path,
           Transport transport = Transport::kUnix);
  ~Recorder() override;
  Recorder(const Recorder&) = delete;
  Recorder& operator=(const Recorder&) = delete;

  /// Names the client: a process or thread id.
  void Watch(int client_id);

  /// Sends only the first replies of a flight (counted from 0) and then closes the connection. The
  /// server gets the commands all the same. A client process is stopped meanwhile, so that it finds
  /// both done: what it sends next meets a peer that is gone.
  void CutAfter(std::size_t flight, std::size_t replies);

  /// Likewise, after so many bytes of the replies.
  void CutAfterBytes(std::size_t flight, std::size_t bytes);

  /// Kills the client, which must be a process of its own, when this flight has come. The server
  /// gets only the first commands of the flight, as if the client had come no further with sending.
  void KillAfter(std::size_t flight, std::size_t commands);

  /// Calls a function when this flight has come, before the server gets it: what somebody else does
  /// at that moment. The client waits meanwhile. It is called from a thread of the Recorder's own.
  void Before(std::size_t flight, const std::function<void()>& function);

  /// Answers a flight with these bytes. The server does not get its commands.
  void Answer(std::size_t flight, const std::string& bytes);

  /// How many connections the client has closed so far.
  int ClosedByClient();

  /// Stops listening, ends open connections and returns what was seen.
  Recording Finish();

 private:
  struct Plan {
    bool has_answer = false;
    std::string answer;
    bool is_cut = false;
    std::size_t replies_before_cut = 0;
    std::optional<std::size_t> bytes_before_cut;
    bool is_kill = false;
    std::size_t commands_before_kill = 0;
    std::function<void()> before;
  };

  void Connected() override;
  Delivery Answer(const std::vector<model::Command>& commands) override;
  void LeftUnanswered(const std::vector<model::Command>& commands) override;
  void LeftInOrder() override;
  void Disconnect();

  const std::string server_path_;
  int server_ = -1;   // the connection to the server; only the listener's thread uses it
  std::mutex mutex_;  // guards plans_ and recording_
  std::map<std::size_t, Plan> plans_;
  Recording recording_;
  FlightListener listener_;
};

/// The commands of the flights as text, one a line, with "--" between two flights.
std::string Describe(const std::vector<model::Flight>& flights);

#endif  // OSTRAFEL_TESTS_SUPPORT_RECORDER_H_
