#include "support/recorder.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <optional>
#include <stdexcept>
#include <utility>

#include "support/resp.h"

namespace {

constexpr char kSleeping = 'S';

sockaddr_un UnixAddress(const std::string& path) {
  sockaddr_un address = {};
  address.sun_family = AF_UNIX;
  if (path.size() >= sizeof address.sun_path) throw std::runtime_error("path too long: " + path);
  std::memcpy(address.sun_path, path.c_str(), path.size() + 1);
  return address;
}

int ListenOnUnixSocket(const std::string& path) {
  const sockaddr_un address = UnixAddress(path);
  (void)unlink(path.c_str());
  const int listener = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
  if (listener < 0 ||
      bind(listener, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0 ||
      listen(listener, 8) != 0) {
    throw std::runtime_error("cannot listen on " + path);
  }
  return listener;
}

int ListenOnTcp() {
  sockaddr_in address = {};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  address.sin_port = htons(6379);
  const int listener = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  const int on = 1;
  (void)setsockopt(listener, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
  if (listener < 0 ||
      bind(listener, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0 ||
      listen(listener, 8) != 0) {
    throw std::runtime_error("cannot listen on port 6379");
  }
  return listener;
}

int ConnectToServer(const std::string& path) {
  const sockaddr_un address = UnixAddress(path);
  const int server = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
  if (server < 0 ||
      connect(server, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) {
    throw std::runtime_error("cannot connect to the server at " + path);
  }
  return server;
}

bool IsReadable(int descriptor, int milliseconds) {
  pollfd wait = {descriptor, POLLIN, 0};
  return poll(&wait, 1, milliseconds) > 0;
}

// Appends what can be read now. Returns false at the end of the stream or on an error.
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

std::string Format(const std::vector<model::Command>& commands) {
  std::string bytes;
  for (const model::Command& command : commands) {
    bytes += "*" + std::to_string(command.size()) + "\r\n";
    for (const std::string& argument : command) {
      bytes += "$" + std::to_string(argument.size()) + "\r\n" + argument + "\r\n";
    }
  }
  return bytes;
}

}  // namespace

Recorder::Recorder(const std::string& client_path, const std::string& server_path,
                   Transport transport)
    : client_path_(transport == Transport::kUnix ? client_path : ""), server_path_(server_path) {
  listener_ = transport == Transport::kUnix ? ListenOnUnixSocket(client_path) : ListenOnTcp();
  thread_ = std::thread(&Recorder::Serve, this);
}

Recorder::~Recorder() { (void)Finish(); }

void Recorder::Watch(int client_id) { client_id_ = client_id; }

void Recorder::CutAfter(std::size_t flight, std::size_t replies) {
  const std::lock_guard<std::mutex> lock(mutex_);
  plans_[flight].is_cut = true;
  plans_[flight].replies_before_cut = replies;
}

void Recorder::Answer(std::size_t flight, const std::string& bytes) {
  const std::lock_guard<std::mutex> lock(mutex_);
  plans_[flight].has_answer = true;
  plans_[flight].answer = bytes;
}

int Recorder::ClosedByClient() {
  const std::lock_guard<std::mutex> lock(mutex_);
  return recording_.closed_by_client;
}

Recording Recorder::Finish() {
  is_ending_ = true;
  if (thread_.joinable()) thread_.join();
  if (listener_ >= 0) {
    (void)close(listener_);
    listener_ = -1;
    if (!client_path_.empty()) (void)unlink(client_path_.c_str());
  }
  return recording_;
}

void Recorder::Serve() {
  // Connections that wait to be accepted when the recording ends are still counted.
  while (IsReadable(listener_, 1) || !is_ending_) {
    if (!IsReadable(listener_, 0)) continue;
    const int client = accept4(listener_, nullptr, nullptr, SOCK_CLOEXEC);
    if (client < 0) continue;
    {
      const std::lock_guard<std::mutex> lock(mutex_);
      ++recording_.connections;
    }
    ServeConnection(client);
    (void)close(client);
  }
}

void Recorder::ServeConnection(int client) {
  const int server = ConnectToServer(server_path_);
  std::string bytes;
  std::vector<model::Command> commands;
  bool is_open = true;
  while (is_open) {
    if (IsReadable(client, commands.empty() ? 1 : 0)) {
      if (ReadSome(client, &bytes)) {
        while (std::optional<model::Command> command = TakeCommand(&bytes)) {
          commands.push_back(std::move(*command));
        }
        continue;
      }
      const std::lock_guard<std::mutex> lock(mutex_);
      if (commands.empty() && bytes.empty()) ++recording_.closed_by_client;
      // What the client did not wait for was sent all the same.
      if (!commands.empty()) recording_.flights.push_back({commands, {}, true});
      break;
    }
    if (commands.empty()) {
      is_open = !is_ending_;
    } else if (bytes.empty() && ClientState() == kSleeping && !IsReadable(client, 0)) {
      is_open = PassOn(client, server, std::exchange(commands, {}));
    } else {
      std::this_thread::yield();  // the client is at work
    }
  }
  (void)close(server);
}

bool Recorder::PassOn(int client, int server, std::vector<model::Command> commands) {
  const std::lock_guard<std::mutex> lock(mutex_);
  const std::size_t count = commands.size();
  const Plan plan = plans_[recording_.flights.size()];
  model::Flight& flight = recording_.flights.emplace_back();
  flight.commands = std::move(commands);

  std::string incoming = plan.answer;
  if (!plan.has_answer && !WriteAll(server, Format(flight.commands))) return false;
  std::string outgoing;
  std::size_t replies = 0;
  bool is_answered = true;
  while (replies < count) {
    if (std::optional<ReceivedReply> received = TakeReply(&incoming)) {
      ++replies;
      if (plan.is_cut && replies > plan.replies_before_cut) continue;
      outgoing += received->bytes;
      flight.replies.push_back(std::move(received->reply));
    } else if (plan.has_answer || !ReadSome(server, &incoming)) {
      is_answered = false;
      break;
    }
  }
  flight.cut_short = plan.is_cut || !is_answered;
  if (!flight.cut_short && WriteAll(client, outgoing)) return true;
  SendAndCutOff(client, outgoing);
  return false;
}

void Recorder::SendAndCutOff(int client, const std::string& bytes) const {
  const bool is_process = client_id_ != getpid();
  if (is_process) (void)kill(client_id_, SIGSTOP);
  while (is_process && ClientState() == kSleeping) std::this_thread::yield();
  (void)WriteAll(client, bytes);
  (void)shutdown(client, SHUT_RDWR);
  if (is_process) (void)kill(client_id_, SIGCONT);
}

// The state of the client's thread, as proc(5) has it; 0 when there is none. One that sleeps, with
// nothing of it left to read, waits for replies.
char Recorder::ClientState() const {
  std::ifstream file("/proc/" + std::to_string(client_id_) + "/stat");
  std::string status;
  std::getline(file, status);
  const std::size_t name_end = status.rfind(')');  // the name may hold anything
  if (name_end == std::string::npos || name_end + 2 >= status.size()) return 0;
  return status[name_end + 2];
}

std::string Describe(const std::vector<model::Flight>& flights) {
  std::string text;
  for (const model::Flight& flight : flights) {
    if (!text.empty()) text += "--\n";
    for (const model::Command& command : flight.commands) text += model::Describe(command) + "\n";
  }
  return text;
}
