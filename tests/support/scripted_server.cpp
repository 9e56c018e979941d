// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "support/scripted_server.h"

#include <stdexcept>
#include <utility>

#include "support/resp.h"

namespace {

// The replies that these bytes hold, up to the first that is not whole or no reply at all.
std::vector<model::Reply> WholeReplies(std::string bytes) {
  std::vector<model::Reply> replies;
  try {
    while (std::optional<ReceivedReply> received = TakeReply(&bytes)) {
      replies.push_back(std::move(received->reply));
    }
  } catch (const std::exception&) {
    // Garbage is what the test wants to see sent.
  }
  return replies;
}

}  // namespace

ScriptedServer::ScriptedServer(const std::string& path, model::Store store)
    : store_(std::move(store)), listener_(path, this) {}

ScriptedServer::~ScriptedServer() { (void)Finish(); }

void ScriptedServer::Watch(int client_id) { listener_.Watch(client_id); }

void ScriptedServer::AnswerCommand(std::size_t command, const std::string& bytes) {
  const std::lock_guard<std::mutex> lock(mutex_);
  answers_[command] = bytes;
}

void ScriptedServer::CloseBeforeReply(std::size_t command, Ending ending) {
  const std::lock_guard<std::mutex> lock(mutex_);
  close_before_ = command;
  ending_ = ending;
}

void ScriptedServer::CloseAfterReply(std::size_t command, Ending ending) {
  const std::lock_guard<std::mutex> lock(mutex_);
  close_after_ = command;
  ending_ = ending;
}

void ScriptedServer::CloseAfterBytes(std::size_t bytes, Ending ending) {
  const std::lock_guard<std::mutex> lock(mutex_);
  close_at_byte_ = bytes;
  ending_ = ending;
}

void ScriptedServer::KillClientAfter(std::size_t command) {
  const std::lock_guard<std::mutex> lock(mutex_);
  kill_after_ = command;
}

void ScriptedServer::KillClientWhileItSends(std::size_t flight) {
  const std::lock_guard<std::mutex> lock(mutex_);
  kill_in_flight_ = flight;
}

void ScriptedServer::DeliverByteByByte() {
  const std::lock_guard<std::mutex> lock(mutex_);
  is_byte_by_byte_ = true;
}

Recording ScriptedServer::Finish() {
  listener_.Finish();
  return recording_;
}

void ScriptedServer::Connected() {
  const std::lock_guard<std::mutex> lock(mutex_);
  ++recording_.connections;
}

Delivery ScriptedServer::Answer(const std::vector<model::Command>& commands) {
  const std::lock_guard<std::mutex> lock(mutex_);
  Delivery delivery;
  if (kill_after_ && *kill_after_ < commands_seen_ + commands.size()) {
    std::vector<model::Command> sent = commands;
    sent.resize(*kill_after_ + 1 - commands_seen_);
    CarryOutUnanswered(sent);
    delivery.kills_client = true;
    return delivery;
  }
  delivery.is_byte_by_byte = is_byte_by_byte_;
  delivery.ending = ending_;
  for (const model::Command& command : commands) {
    const std::size_t index = commands_seen_;
    delivery.is_last = delivery.is_last || close_before_ == index;
    const std::string reply = ReplyTo(command);
    if (!delivery.is_last) delivery.bytes += reply;
    delivery.is_last = delivery.is_last || close_after_ == index;
  }
  if (close_at_byte_ && bytes_sent_ + delivery.bytes.size() >= *close_at_byte_) {
    delivery.bytes.resize(*close_at_byte_ - bytes_sent_);
    delivery.is_last = true;
  }
  bytes_sent_ += delivery.bytes.size();
  recording_.flights.push_back({commands, WholeReplies(delivery.bytes), delivery.is_last});
  return delivery;
}

void ScriptedServer::LeftUnanswered(const std::vector<model::Command>& commands) {
  const std::lock_guard<std::mutex> lock(mutex_);
  CarryOutUnanswered(commands);
}

void ScriptedServer::CarryOutUnanswered(const std::vector<model::Command>& commands) {
  for (const model::Command& command : commands) (void)ReplyTo(command);
  recording_.flights.push_back({commands, {}, true});
}

bool ScriptedServer::KillsWhileItSends() {
  const std::lock_guard<std::mutex> lock(mutex_);
  return kill_in_flight_ == recording_.flights.size();
}

void ScriptedServer::LeftInOrder() {
  const std::lock_guard<std::mutex> lock(mutex_);
  ++recording_.closed_by_client;
}

// Carries out the next command, unless it has an answer already.
std::string ScriptedServer::ReplyTo(const model::Command& command) {
  const std::size_t index = commands_seen_++;
  if (const auto planned = answers_.find(index); planned != answers_.end()) return planned->second;
  if (command.front() == "AUTH") return "+OK\r\n";
  return Format(model::Execute(store_, command));
}
