// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "support/flight_listener.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <optional>
#include <utility>

#include "support/resp.h"
#include "support/sockets.h"

namespace {

constexpr char kSleeping = 'S';

bool IsGone(char state) { return state == 0 || state == 'Z' || state == 'X'; }

}  // namespace

// What a client sends, read to the last byte but one: that stays in the socket until it is taken.
class FlightListener::Inbox {
 public:
  explicit Inbox(int client) : client_(client) {}

  // True when there are bytes that were not read yet.
  bool HasNews() const {
    int count = 0;
    return ioctl(client_, FIONREAD, &count) == 0 && count > (holds_byte_ ? 1 : 0);
  }

  // True when the client has left and everything of it was read.
  bool HasEnded() const {
    pollfd wait = {client_, POLLRDHUP, 0};
    return poll(&wait, 1, 0) > 0 && !HasNews();
  }

  // Appends what can be read now. Returns false on an error.
  bool Read(std::string* bytes) {
    static thread_local std::array<char, 1 << 16> buffer;
    const ssize_t seen = recv(client_, buffer.data(), buffer.size(), MSG_PEEK);
    if (seen <= 0) return false;
    bytes->append(buffer.data() + (holds_byte_ ? 1 : 0), buffer.data() + seen);
    holds_byte_ = true;
    return seen == 1 || recv(client_, buffer.data(), static_cast<std::size_t>(seen) - 1, 0) > 0;
  }

  void TakeLastByte() {
    char byte = 0;
    if (std::exchange(holds_byte_, false)) (void)recv(client_, &byte, 1, 0);
  }

 private:
  const int client_;
  bool holds_byte_ = false;
};

FlightListener::FlightListener(const std::string& path, FlightHandler* handler)
    : path_(path),
      handler_(handler),
      listener_(path.empty() ? ListenOnDefaultPort() : ListenOnUnixSocket(path)),
      thread_(&FlightListener::Serve, this) {}

FlightListener::~FlightListener() { Finish(); }

void FlightListener::Watch(int client_id) { client_id_ = client_id; }

void FlightListener::Finish() {
  is_ending_ = true;
  if (thread_.joinable()) thread_.join();
  if (listener_ < 0) return;
  (void)close(listener_);
  listener_ = -1;
  if (!path_.empty()) (void)unlink(path_.c_str());
}

void FlightListener::Serve() {
  // Connections that wait to be accepted when the listening ends still count.
  while (IsReadable(listener_, 1) || !is_ending_) {
    if (!IsReadable(listener_, 0)) continue;
    const int client = accept4(listener_, nullptr, nullptr, SOCK_CLOEXEC);
    if (client < 0) continue;
    handler_->Connected();
    ServeConnection(client);
    (void)close(client);
  }
}

void FlightListener::ServeConnection(int client) {
  Inbox inbox(client);
  std::string bytes;
  std::vector<model::Command> commands;
  while (true) {
    if (commands.empty() && !IsReadable(client, 1)) {
      if (is_ending_) return;
    } else if (inbox.HasNews()) {
      if (commands.empty() && bytes.empty() && handler_->KillsWhileItSends()) KillClient();
      if (!inbox.Read(&bytes)) return;
      while (std::optional<model::Command> command = TakeCommand(&bytes)) {
        commands.push_back(std::move(*command));
      }
    } else if (inbox.HasEnded()) {
      if (!commands.empty()) {
        handler_->LeftUnanswered(commands);
      } else if (bytes.empty()) {
        handler_->LeftInOrder();
      }
      return;
    } else if (commands.empty() && is_ending_) {
      return;  // with a piece of a command
    } else if (!commands.empty() && bytes.empty() && ClientState() == kSleeping &&
               !inbox.HasNews()) {
      if (!Deliver(client, &inbox, handler_->Answer(std::exchange(commands, {})))) return;
    } else {
      std::this_thread::yield();  // the client is at work
    }
  }
}

bool FlightListener::Deliver(int client, Inbox* inbox, const Delivery& delivery) const {
  if (delivery.kills_client) KillClient();
  if (!delivery.is_last || delivery.ending == Ending::kFin) inbox->TakeLastByte();
  if (delivery.kills_client) return false;
  if (delivery.is_last) {
    SendAndClose(client, delivery);
    return false;
  }
  if (!delivery.is_byte_by_byte) return WriteAll(client, delivery.bytes);
  for (const char byte : delivery.bytes) {
    if (!WriteAll(client, std::string(1, byte))) return false;
    // The send has woken the client; when it sleeps again it has read the byte.
    while (ClientState() != kSleeping && !inbox->HasNews() && !inbox->HasEnded()) {
      std::this_thread::yield();
    }
  }
  return true;
}

// Kills the client where it sleeps.
void FlightListener::KillClient() const {
  while (ClientState() != kSleeping && !IsGone(ClientState())) std::this_thread::yield();
  (void)kill(client_id_, SIGKILL);
  while (!IsGone(ClientState())) std::this_thread::yield();
}

void FlightListener::SendAndClose(int client, const Delivery& delivery) const {
  const bool is_process = client_id_ != getpid();
  if (is_process) (void)kill(client_id_, SIGSTOP);
  while (is_process && ClientState() == kSleeping) std::this_thread::yield();
  (void)WriteAll(client, delivery.bytes);
  if (delivery.ending == Ending::kRst) {
    // With nothing to linger for, close(2) sends RST instead of FIN. The descriptor's number stays
    // in use until the caller closes it, so that nobody else gets it meanwhile.
    const linger at_once = {1, 0};
    (void)setsockopt(client, SOL_SOCKET, SO_LINGER, &at_once, sizeof at_once);
    const int nothing = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    (void)dup3(nothing, client, O_CLOEXEC);
    (void)close(nothing);
  } else {
    (void)shutdown(client, SHUT_RDWR);
  }
  if (is_process) (void)kill(client_id_, SIGCONT);
}

// The state of the client's thread, as proc(5) has it; 0 when there is none. One that sleeps, with
// nothing of it left to read, waits for replies. The longer path is the thread's own entry: of a
// process that asks for itself, qemu-user answers the shorter one without a state.
char FlightListener::ClientState() const {
  const std::string id = std::to_string(client_id_);
  const std::string path = "/proc/" + id + "/task/" + id + "/stat";
  const int file = open(path.c_str(), O_RDONLY | O_CLOEXEC);
  if (file < 0) return 0;
  std::string status;
  (void)ReadSome(file, &status);
  (void)close(file);
  const std::size_t name_end = status.rfind(')');  // the name may hold anything
  if (name_end == std::string::npos || name_end + 2 >= status.size()) return 0;
  return status[name_end + 2];
}
