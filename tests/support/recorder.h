// A proxy between one client and the real server that sees every command and reply, in order, and
// which of them travelled together.
#ifndef OSTRAFEL_TESTS_SUPPORT_RECORDER_H_
#define OSTRAFEL_TESTS_SUPPORT_RECORDER_H_

#include <atomic>
#include <cstddef>
#include <map>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "model/endpoint.h"

/// What a Recorder saw.
struct Recording {
  std::vector<model::Flight> flights;
  int connections = 0;       ///< Connections accepted.
  int closed_by_client = 0;  ///< Of these, closed by the client with nothing of it unanswered.
};

/// Listens on a Unix socket (or on TCP port 6379 of the loopback interface) and passes on to the
/// server what a client sends, a whole flight at a time: everything that the client sent before it
/// began to wait. That it waits is read from the state of its thread, so the division into flights
/// does not depend on the clock.
class Recorder {
 public:
  enum class Transport { kUnix, kTcp };

  /// Starts to listen at once. client_path is where the client connects (unused with kTcp),
  /// server_path is the real server's socket.
  Recorder(const std::string& client_path, const std::string& server_path,
           Transport transport = Transport::kUnix);
  ~Recorder();
  Recorder(const Recorder&) = delete;
  Recorder& operator=(const Recorder&) = delete;

  /// Names the client: a process or thread id.
  void Watch(int client_id);

  /// Sends only the first replies of a flight (counted from 0) and then closes the connection. The
  /// server gets the commands all the same. A client process is stopped meanwhile, so that it finds
  /// both done: what it sends next meets a peer that is gone.
  void CutAfter(std::size_t flight, std::size_t replies);

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
  };

  void Serve();
  void ServeConnection(int client);
  bool PassOn(int client, int server, std::vector<model::Command> commands);
  void SendAndCutOff(int client, const std::string& bytes) const;
  char ClientState() const;

  const std::string client_path_;
  const std::string server_path_;
  int listener_ = -1;
  std::atomic<bool> is_ending_{false};
  std::atomic<int> client_id_{0};
  std::mutex mutex_;  // guards plans_ and recording_
  std::map<std::size_t, Plan> plans_;
  Recording recording_;
  std::thread thread_;
};

/// The commands of the flights as text, one a line, with "--" between two flights.
std::string Describe(const std::vector<model::Flight>& flights);

#endif  // OSTRAFEL_TESTS_SUPPORT_RECORDER_H_
