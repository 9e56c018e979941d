// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "live/session.h"

#include <gtest/gtest.h>

#include <random>
#include <stdexcept>
#include <string>
#include <vector>

#include "connection/broken_pipe.h"
#include "live/canned_connection.h"
#include "support/sandbox.h"
#include "support/test_store.h"

namespace ostrafel {

namespace {

// What reading a reply raises.
std::string TroubleWith(CannedConnection* connection) {
  try {
    (void)AskServer(connection->context(), {"PING"});
  } catch (const std::runtime_error& error) {
    return error.what();
  }
  return "none";
}

TEST(Session, SendsAnyBytes) {
  TestStore store(ServerSocket());
  std::string all;
  for (int byte = 0; byte < 256; ++byte) all += static_cast<char>(byte);
  for (const std::string& text :
       {all, std::string(), std::string(1, '\0'), std::string("\r\n*1")}) {
    EXPECT_EQ(TextOf(*AskServer(store.context(), {"ECHO", text})), text);
  }
}

TEST(Session, GivesTheRepliesOfAPipelineInOrder) {
  TestStore store(ServerSocket());
  std::mt19937 generator(8100000);
  std::vector<std::string> texts;
  // Some are longer than what is sent at once, and all are much more.
  for (int i = 0; i < 300; ++i)
    texts.emplace_back(generator() % (i % 50 == 0 ? 200000 : 3000), 'x');
  LivePipeline pipeline(store.context());
  for (const std::string& text : texts) pipeline.Append({"ECHO", text});
  for (const std::string& text : texts) {
    const Reply reply = pipeline.Next();
    ASSERT_EQ(TextOf(*reply).size(), text.size());
  }
  EXPECT_EQ(TextOf(*AskServer(store.context(), {"PING"})), "PONG");
}

TEST(Session, SendsWhatWaitsThoughThereIsAReplyAlready) {
  CannedConnection connection("+one\r\n+two\r\n");
  EXPECT_EQ(TextOf(*AskServer(connection.context(), {"FIRST"})), "one");
  EXPECT_EQ(TextOf(*AskServer(connection.context(), {"SECOND"})), "two");
  EXPECT_EQ(connection.Commands(), (std::vector<model::Command>{{"FIRST"}, {"SECOND"}}));
}

TEST(Session, AnErrorIsAReply) {
  CannedConnection connection("-ERR no\r\n");
  const Reply reply = AskServer(connection.context(), {"PING"});
  EXPECT_EQ(reply->type, REDIS_REPLY_ERROR);
  EXPECT_EQ(TextOf(*reply), "ERR no");
  EXPECT_THROW(RefuseError(*reply, "PING"), std::runtime_error);
}

TEST(Session, OnlyTextsHaveAText) {
  CannedConnection connection(":1\r\n$-1\r\n*1\r\n+a\r\n");
  for (int i = 0; i < 3; ++i) EXPECT_EQ(TextOf(*AskServer(connection.context(), {"PING"})), "");
}

TEST(Session, SaysWhatIsWrongWithTheConnection) {
  CannedConnection closed("");
  EXPECT_EQ(TroubleWith(&closed), "the connection to Redis failed: Server closed the connection");
  CannedConnection cut("$5\r\nab");
  EXPECT_EQ(TroubleWith(&cut), "the connection to Redis failed: Server closed the connection");
  CannedConnection garbage("HTTP/1.1 400 Bad Request\r\n");
  EXPECT_EQ(TroubleWith(&garbage).substr(0, 47), "the connection to Redis failed: Protocol error,");
  SurviveBrokenPipe();
  CannedConnection left("+PONG\r\n");
  left.Leave();
  EXPECT_EQ(TroubleWith(&left), "the connection to Redis failed: Broken pipe");
}

TEST(Session, RefusesACommandThatNoServerTakes) {
  CannedConnection connection("+OK\r\n");
  const std::string value(1U << 20U, 'x');
  Words words = {"RPUSH", "/r"};
  words.insert(words.end(), 1024, value);
  LivePipeline pipeline(connection.context());
  try {
    pipeline.Append(words);
    FAIL() << "it was taken";
  } catch (const std::runtime_error& error) {
    EXPECT_EQ(std::string(error.what()),
              "a command RPUSH of 1073758247 bytes is longer than Redis takes");
  }
  EXPECT_TRUE(connection.Commands().empty());
}

}  // namespace

}  // namespace ostrafel
