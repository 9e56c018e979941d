// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// Bytes as what the server answers to a whole run. The first byte of the input selects the run, the
// rest are the answers:
//   0x01        create instead of update
//   0x02        the document with one member of each kind instead of a short one
//   0x04        the server asks for a password
//   0x08        the connection breaks for writing, too, when there is no answer left
//   0x30        the program gets 1, 2, 7 or any number of bytes at once
// (so an input that begins with a digit or a letter is an ordinary one, and can be typed).
//
// The model plays the same run on the same replies, cut from the bytes by a reader of its own. Both
// outputs and the status must be the same, and the commands as far as they were sent. Beyond that,
// success is claimed only when it is true: every command was answered, every write by what a write
// that worked answers. The bytes end, so a SCAN that never comes to its end does.
#include <hiredis/hiredis.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "connection/connection_state.h"
#include "fuzz/fuzz_target.h"
#include "fuzz/machine.h"
#include "fuzz/memory_server.h"
#include "fuzz/reply_runs.h"
#include "model/endpoint.h"
#include "model/run_model.h"
#include "support/redis_reply.h"
#include "support/resp.h"

namespace {

// The whole replies in the bytes, up to the first one that is none.
std::vector<model::Reply> CutReplies(std::string_view bytes) {
  const std::unique_ptr<redisReader, decltype(&redisReaderFree)> reader(redisReaderCreate(),
                                                                        redisReaderFree);
  std::vector<model::Reply> replies;
  (void)redisReaderFeed(reader.get(), bytes.data(), bytes.size());
  while (true) {
    void* received = nullptr;
    if (redisReaderGetReply(reader.get(), &received) != REDIS_OK || received == nullptr) break;
    replies.push_back(Convert(*static_cast<redisReply*>(received)));
    freeReplyObject(received);
  }
  return replies;
}

// Arguments are sent as NUL-terminated texts: one taken from a reply may hold a NUL and is then
// cut.
model::Command AsSent(model::Command command) {
  for (std::string& argument : command)
    argument.resize(std::min(argument.find('\0'), argument.size()));
  return command;
}

// A server that gives these replies, one for each command, and none after them.
class ListEndpoint : public model::Endpoint {
 public:
  explicit ListEndpoint(std::vector<model::Reply> replies) : replies_(std::move(replies)) {}

  std::vector<model::Reply> Exchange(const std::vector<model::Command>& flight) override {
    for (const model::Command& command : flight) commands_.push_back(AsSent(command));
    const std::size_t count = std::min(flight.size(), replies_.size() - next_);
    const auto begin = replies_.begin() + static_cast<std::ptrdiff_t>(next_);
    next_ += count;
    return {begin, begin + static_cast<std::ptrdiff_t>(count)};
  }

  const std::vector<model::Command>& commands() const { return commands_; }
  const std::vector<model::Reply>& replies() const { return replies_; }

 private:
  std::vector<model::Reply> replies_;
  std::size_t next_ = 0;
  std::vector<model::Command> commands_;
};

// What a command of a successful run may have been answered.
bool IsAnswerToSuccess(const model::Command& command, const model::Reply& reply) {
  using Type = model::Reply::Type;
  const std::string& name = command[0];
  if (name == "AUTH") return reply == model::StatusReply("OK");
  if (name == "RPUSH") return reply.type == Type::kInteger && reply.integer >= 1;
  const std::array<const char*, 4> writes = {"UNLINK", "LREM", "HDEL", "HSET"};
  if (std::find(writes.begin(), writes.end(), name) == writes.end()) return true;
  return reply.type == Type::kInteger;
}

void CheckSuccess(const std::vector<model::Command>& commands,
                  const std::vector<model::Reply>& replies) {
  for (std::size_t i = 0; i < commands.size(); ++i) {
    const std::string text = model::Describe(commands[i]);
    if (i >= replies.size()) ReportDifference("a success", "an answer to " + text, "none");
    if (!IsAnswerToSuccess(commands[i], replies[i])) {
      ReportDifference("a success", "what answers " + text, Format(replies[i]));
    }
  }
}

// What must be seen of the run.
struct Expected {
  model::Outcome outcome;
  std::vector<model::Command> commands;
};

Expected PlayModel(const ReplyRun& run, Machine* machine, std::vector<model::Reply> replies) {
  ListEndpoint endpoint(std::move(replies));
  Expected expected;
  if (run.has_password) {
    const std::vector<model::Reply> answer = endpoint.Exchange({{"AUTH", kPassword}});
    if (answer.empty() || !(answer[0] == model::StatusReply("OK"))) {
      return {{"", "Failed to connect to Redis\n", 255}, endpoint.commands()};
    }
  }
  const OnMachine on_machine(machine);
  expected.outcome = model::RunModel(endpoint, run.arguments);
  expected.commands = endpoint.commands();
  return expected;
}

}  // namespace

void TestOneInput(std::string_view input) {
  if (input.empty()) return;
  const auto selector = static_cast<unsigned char>(input[0]);
  input.remove_prefix(1);
  const ReplyRun run = SelectReplyRun(selector);
  const std::vector<model::Reply> replies = CutReplies(input);

  Machine machine = MachineOf(run);
  const Expected expected = PlayModel(run, &machine, replies);
  if (expected.outcome.status == 0) CheckSuccess(expected.commands, replies);

  // A reply that has come too early still has a command to come for.
  const std::size_t may_be_sent = run.breaks_at_end ? replies.size() : ByteServer::kNoLimit;
  ByteServer server(input, run.bytes_at_once, may_be_sent);
  machine.server = &server;
  Connect(run);
  const int status = RunProgram(&machine, run.arguments);
  ostrafel::Connection = {};

  ExpectSame("standard error", expected.outcome.err, machine.err);
  ExpectSame("standard output", expected.outcome.out, machine.out);
  ExpectSame("the status", std::to_string(expected.outcome.status), std::to_string(status));
  // For a question, a reply that came before is taken without sending it.
  const std::vector<model::Command>& sent = server.commands();
  const bool is_prefix = sent.size() <= expected.commands.size() &&
                         std::equal(sent.begin(), sent.end(), expected.commands.begin());
  const bool is_whole = sent.size() == expected.commands.size();
  if (!is_prefix || (!is_whole && status == 0 && run.bytes_at_once == 1)) {
    ReportDifference("the commands", Describe(expected.commands), Describe(sent));
  }
}
