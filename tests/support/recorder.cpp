// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "support/recorder.h"

#include <unistd.h>

#include <utility>

#include "support/resp.h"
#include "support/sockets.h"

namespace {

std::string FormatAll(const std::vector<model::Command>& commands) {
  std::string bytes;
  for (const model::Command& command : commands) bytes += Format(command);
  return bytes;
}

}  // namespace

Recorder::Recorder(const std::string& client_path, const std::string& server_path,
                   Transport transport)
    : server_path_(server_path),
      listener_(transport == Transport::kUnix ? client_path : "", this) {}

Recorder::~Recorder() { (void)Finish(); }

void Recorder::Watch(int client_id) { listener_.Watch(client_id); }

void Recorder::CutAfter(std::size_t flight, std::size_t replies) {
  const std::lock_guard<std::mutex> lock(mutex_);
  plans_[flight].is_cut = true;
  plans_[flight].replies_before_cut = replies;
}

void Recorder::CutAfterBytes(std::size_t flight, std::size_t bytes) {
  const std::lock_guard<std::mutex> lock(mutex_);
  plans_[flight].bytes_before_cut = bytes;
}

void Recorder::KillAfter(std::size_t flight, std::size_t commands) {
  const std::lock_guard<std::mutex> lock(mutex_);
  plans_[flight].is_kill = true;
  plans_[flight].commands_before_kill = commands;
}

void Recorder::Before(std::size_t flight, const std::function<void()>& function) {
  const std::lock_guard<std::mutex> lock(mutex_);
  plans_[flight].before = function;
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
  listener_.Finish();
  Disconnect();
  return recording_;
}

void Recorder::Connected() {
  Disconnect();
  server_ = ConnectToUnixSocket(server_path_);
  const std::lock_guard<std::mutex> lock(mutex_);
  ++recording_.connections;
}

void Recorder::Disconnect() {
  if (server_ >= 0) (void)close(server_);
  server_ = -1;
}

Delivery Recorder::Answer(const std::vector<model::Command>& commands) {
  const std::lock_guard<std::mutex> lock(mutex_);
  const Plan plan = plans_[recording_.flights.size()];
  model::Flight& flight = recording_.flights.emplace_back();
  flight.commands = commands;
  if (plan.is_kill) flight.commands.resize(plan.commands_before_kill);
  if (plan.before) plan.before();

  std::string incoming = plan.answer;
  bool is_answered = plan.has_answer || WriteAll(server_, FormatAll(flight.commands));
  Delivery delivery;
  std::size_t replies = 0;
  while (is_answered && replies < flight.commands.size()) {
    if (std::optional<ReceivedReply> received = TakeReply(&incoming)) {
      ++replies;
      if (plan.is_cut && replies > plan.replies_before_cut) continue;
      delivery.bytes += received->bytes;
      flight.replies.push_back(std::move(received->reply));
    } else {
      is_answered = !plan.has_answer && ReadSome(server_, &incoming);
    }
  }
  if (plan.bytes_before_cut) delivery.bytes.resize(*plan.bytes_before_cut);
  flight.cut_short = plan.is_cut || plan.bytes_before_cut || plan.is_kill || !is_answered;
  delivery.is_last = flight.cut_short;
  delivery.kills_client = plan.is_kill;
  return delivery;
}

// What the client did not wait for was sent all the same.
void Recorder::LeftUnanswered(const std::vector<model::Command>& commands) {
  const std::lock_guard<std::mutex> lock(mutex_);
  recording_.flights.push_back({commands, {}, true});
}

void Recorder::LeftInOrder() {
  const std::lock_guard<std::mutex> lock(mutex_);
  ++recording_.closed_by_client;
}

std::string Describe(const std::vector<model::Flight>& flights) {
  std::string text;
  for (const model::Flight& flight : flights) {
    if (!text.empty()) text += "--\n";
    for (const model::Command& command : flight.commands) text += model::Describe(command) + "\n";
  }
  return text;
}
