// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// The server of these tests is itself tested, with a client of the test's own.
#include "support/scripted_server.h"

#include <hiredis/hiredis.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "connection/reply.h"
#include "faults/fault_fixture.h"
#include "support/redis_reply.h"
#include "support/resp.h"
#include "support/sandbox.h"

namespace {

// A connection of the test's own, over each transport.
class ScriptedServerTest : public FaultTest, public testing::WithParamInterface<bool> {
 protected:
  void SetUp() override {
    if (is_tcp() && !DefaultPortIsFree()) GTEST_SKIP() << "port 6379 is in use on this machine";
    Connect();
  }

  // Starts a server and connects to it.
  void Connect() {
    const std::string path = RuntimeDirectory() + "/scripted.sock";
    server.reset();
    server = std::make_unique<ScriptedServer>(is_tcp() ? "" : path);
    server->Watch(getpid());
    context_.reset(is_tcp() ? redisConnect("127.0.0.1", 6379) : redisConnectUnix(path.c_str()));
    ASSERT_EQ(context_->err, 0) << context_->errstr;
  }

  static bool is_tcp() { return GetParam(); }

  // Sends one command and returns the reply's bytes, or the client's error.
  std::string Ask(const std::string& command) {
    Send({command});
    return NextReply();
  }

  // Sends commands, their arguments separated by spaces, as one pipeline.
  void Send(const std::vector<std::string>& commands) {
    for (const std::string& command : commands) {
      ASSERT_EQ(redisAppendCommand(context_.get(), command.c_str()), REDIS_OK);
    }
    int is_done = 0;
    while (is_done == 0) ASSERT_EQ(redisBufferWrite(context_.get(), &is_done), REDIS_OK);
  }

  std::string NextReply() {
    void* reply = nullptr;
    if (redisGetReply(context_.get(), &reply) != REDIS_OK) return context_->errstr;
    const ostrafel::Reply owner(static_cast<redisReply*>(reply));
    return Format(Convert(*owner));
  }

  // What can be read at once; at the end of the stream "FIN", on a reset "RST".
  std::string Receive() const {
    std::string bytes(100, 0);
    const ssize_t size = recv(context_->fd, bytes.data(), bytes.size(), 0);
    if (size < 0) return errno == ECONNRESET ? "RST" : std::string("errno ") + strerror(errno);
    if (size == 0) return "FIN";
    bytes.resize(static_cast<std::size_t>(size));
    return bytes;
  }

  // Ends the connection, from this side, and the server.
  Recording Finish() {
    context_.reset();
    return server->Finish();
  }

  std::unique_ptr<ScriptedServer> server;

 private:
  struct Deleter {
    void operator()(redisContext* context) const { redisFree(context); }
  };
  std::unique_ptr<redisContext, Deleter> context_;
};

INSTANTIATE_TEST_SUITE_P(OverBoth, ScriptedServerTest, testing::Values(false, true),
                         [](const testing::TestParamInfo<bool>& parameter) {
                           return std::string(parameter.param ? "Tcp" : "UnixSocket");
                         });

TEST_P(ScriptedServerTest, AnswersAsAStoreDoesAndRecordsEverything) {
  EXPECT_EQ(Ask("AUTH secret"), "+OK\r\n");
  Send({"HSET h f v", "RPUSH l a", "RPUSH h a"});
  EXPECT_EQ(NextReply(), ":1\r\n");
  EXPECT_EQ(NextReply(), ":1\r\n");
  EXPECT_EQ(NextReply().substr(0, 10), "-WRONGTYPE");
  EXPECT_EQ(Ask("TYPE l"), "+list\r\n");
  EXPECT_EQ(Ask("LINDEX l 0"), "$1\r\na\r\n");
  EXPECT_EQ(Ask("HSCAN h 0 MATCH *"), "*2\r\n$1\r\n0\r\n*2\r\n$1\r\nf\r\n$1\r\nv\r\n");
  const Recording recording = Finish();
  EXPECT_EQ(recording.connections, 1);
  EXPECT_EQ(recording.closed_by_client, 1);
  EXPECT_EQ(Describe(recording.flights),
            "AUTH | secret\n--\nHSET | h | f | v\nRPUSH | l | a\nRPUSH | h | a\n--\nTYPE | l\n--\n"
            "LINDEX | l | 0\n--\nHSCAN | h | 0 | MATCH | *\n");
  ASSERT_EQ(recording.flights[1].replies.size(), 3U);
  EXPECT_TRUE(recording.flights[1].replies[1] == model::IntegerReply(1));
  EXPECT_EQ(model::Dump(server->Contents()), "hash | h | f | v\nlist | l | a\n");
}

TEST_P(ScriptedServerTest, SendsPlannedAnswersOfEveryKindAndKeepsTheirCommandsFromTheStore) {
  const std::vector<std::string> answers = {"-ERR no\r\n",
                                            "$-1\r\n",
                                            "+OK\r\n",
                                            ":-5\r\n",
                                            "$0\r\n\r\n",
                                            "*0\r\n",
                                            "*1\r\n$1\r\n0\r\n",
                                            "*2\r\n:1\r\n:2\r\n",
                                            "*2\r\n*1\r\n*0\r\n$-1\r\n"};
  for (std::size_t i = 0; i < answers.size(); ++i) server->AnswerCommand(i, answers[i]);
  for (const std::string& answer : answers) EXPECT_EQ(Ask("HSET h f v"), answer);
  EXPECT_EQ(Ask("HSET h f last"), ":1\r\n");
  const Recording recording = Finish();
  EXPECT_EQ(recording.flights.size(), answers.size() + 1);
  EXPECT_EQ(model::Dump(server->Contents()), "hash | h | f | last\n");
}

TEST_P(ScriptedServerTest, SendsGarbage) {
  server->AnswerCommand(0, "garbage\r\n");
  EXPECT_EQ(Ask("TYPE k"), "Protocol error, got \"g\" as reply type byte");
  const Recording recording = Finish();
  ASSERT_EQ(recording.flights.size(), 1U);
  EXPECT_TRUE(recording.flights[0].replies.empty());
}

TEST_P(ScriptedServerTest, DeliversByteByByte) {
  server->DeliverByteByByte();
  Send({"TYPE a", "TYPE b"});
  std::string bytes;
  while (bytes.size() < 14) {
    const std::string received = Receive();
    ASSERT_EQ(received.size(), 1U) << received;
    bytes += received;
  }
  EXPECT_EQ(bytes, "+none\r\n+none\r\n");
  EXPECT_EQ(Finish().closed_by_client, 1);
}

TEST_P(ScriptedServerTest, LeavesBeforeInOrAfterAReplyWithFinOrRst) {
  const struct {
    void (ScriptedServer::*leave)(std::size_t, Ending);
    std::size_t place;
    std::string received;
    std::size_t whole_replies;
  } cases[] = {
      {&ScriptedServer::CloseBeforeReply, 0, "", 0},
      {&ScriptedServer::CloseBeforeReply, 1, ":1\r\n", 1},
      {&ScriptedServer::CloseAfterReply, 0, ":1\r\n", 1},
      {&ScriptedServer::CloseAfterReply, 2, ":1\r\n:2\r\n:3\r\n", 3},
      {&ScriptedServer::CloseAfterBytes, 3, ":1\r", 0},
      {&ScriptedServer::CloseAfterBytes, 6, ":1\r\n:2", 1},
  };
  for (const auto& c : cases) {
    for (const Ending ending : {Ending::kFin, Ending::kRst}) {
      SCOPED_TRACE(c.received + (ending == Ending::kFin ? ", FIN" : ", RST"));
      ASSERT_NO_FATAL_FAILURE(Connect());
      (server.get()->*c.leave)(c.place, ending);
      Send({"RPUSH l a", "RPUSH l b", "RPUSH l c"});
      if (!c.received.empty()) {
        EXPECT_EQ(Receive(), c.received);
      }
      EXPECT_EQ(Receive(), ending == Ending::kFin ? "FIN" : "RST");
      const Recording recording = Finish();
      ASSERT_EQ(recording.flights.size(), 1U);
      EXPECT_EQ(recording.flights[0].commands.size(), 3U);
      EXPECT_EQ(recording.flights[0].replies.size(), c.whole_replies);
      EXPECT_TRUE(recording.flights[0].cut_short);
      EXPECT_EQ(model::Dump(server->Contents()), "list | l | a\nlist | l | b\nlist | l | c\n");
    }
  }
}

TEST_P(ScriptedServerTest, NotesWhatAClientDidNotWaitFor) {
  Send({"RPUSH l a"});
  const Recording recording = Finish();
  EXPECT_EQ(recording.closed_by_client, 0);
  EXPECT_EQ(Describe(recording.flights), "RPUSH | l | a\n");
  EXPECT_EQ(model::Dump(server->Contents()), "list | l | a\n");
}

}  // namespace
