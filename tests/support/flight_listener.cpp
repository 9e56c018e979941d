#include "support/flight_listener.h"

#include <fcntl.h>
#include <sys/socket.h>
#include <unistd.h>

#include <csignal>
#include <fstream>
#include <optional>
#include <utility>

#include "support/resp.h"
#include "support/sockets.h"

namespace {

constexpr char kSleeping = 'S';

}  // namespace

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
  std::string bytes;
  std::vector<model::Command> commands;
  while (true) {
    if (IsReadable(client, commands.empty() ? 1 : 0)) {
      if (ReadSome(client, &bytes)) {
        while (std::optional<model::Command> command = TakeCommand(&bytes)) {
          commands.push_back(std::move(*command));
        }
        continue;
      }
      if (!commands.empty()) {
        handler_->LeftUnanswered(commands);
      } else if (bytes.empty()) {
        handler_->LeftInOrder();
      }
      return;
    }
    if (commands.empty()) {
      if (is_ending_) return;
    } else if (bytes.empty() && ClientState() == kSleeping && !IsReadable(client, 0)) {
      if (!Deliver(client, handler_->Answer(std::exchange(commands, {})))) return;
    } else {
      std::this_thread::yield();  // the client is at work
    }
  }
}

bool FlightListener::Deliver(int client, const Delivery& delivery) const {
  if (delivery.is_last) {
    SendAndClose(client, delivery);
    return false;
  }
  return delivery.is_byte_by_byte ? WriteByteByByte(client, delivery.bytes)
                                  : WriteAll(client, delivery.bytes);
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
  std::ifstream file("/proc/" + id + "/task/" + id + "/stat");
  std::string status;
  std::getline(file, status);
  const std::size_t name_end = status.rfind(')');  // the name may hold anything
  if (name_end == std::string::npos || name_end + 2 >= status.size()) return 0;
  return status[name_end + 2];
}
