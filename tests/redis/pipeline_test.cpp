// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// A server that leaves while a pipeline is on its way to it: whatever it has answered, no answer
// counts.
#include "redis/pipeline.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "connection/broken_pipe.h"
#include "redis/redis_server.h"
#include "redis/replies.h"
#include "store/pruning.h"
#include "store/queue.h"
#include "store/server.h"
#include "store/store_state.h"
#include "support/leaving_server.h"
#include "support/repeated.h"
#include "support/sandbox.h"

namespace ostrafel {

namespace {

const std::string kNoReplyLine = "Failed to get reply\n";

class BrokenPipeline : public testing::Test {
 protected:
  BrokenPipeline() {
    SurviveBrokenPipe();
    Store.emplace();
  }
  ~BrokenPipeline() override { Store.emplace(); }

  // Connects to a server that will leave so.
  void Connect(const Departure& departure, const model::Store& store = {}, bool is_tcp = false) {
    const std::string path = RuntimeDirectory() + "/leaving.sock";
    server_ = std::make_unique<LeavingServer>(is_tcp ? "" : path, store, departure);
    connection_.connection.reset(is_tcp ? redisConnect("127.0.0.1", 6379)
                                        : redisConnectUnix(path.c_str()));
    ASSERT_EQ(context()->err, 0) << context()->errstr;
  }

  redisContext* context() { return connection_.connection.get(); }
  std::size_t Join() { return server_->Join(); }

  static void Append(std::size_t count, Pipeline* pipeline) {
    for (std::size_t i = 0; i < count; ++i) AppendCommand(pipeline, "RPUSH %s %s", "key", "value");
  }

  // Expects that no reply of the pipeline can be read.
  static void ExpectNoReply(const Pipeline& pipeline) {
    testing::internal::CaptureStderr();
    FinishPipeline(pipeline);
    for (std::size_t i = 0; i < pipeline.count; ++i) {
      Reply reply;
      EXPECT_FALSE(ReadPipelinedReply(pipeline, &reply));
      EXPECT_EQ(reply, nullptr);
    }
    EXPECT_TRUE(testing::internal::GetCapturedStderr() == Repeated(kNoReplyLine, pipeline.count));
  }

  // What this prints, which must return 0.
  template <typename Flush>
  std::string Printed(const Flush& flush) {
    testing::internal::CaptureStderr();
    EXPECT_EQ(flush(&connection_), 0U);
    return testing::internal::GetCapturedStderr();
  }

 private:
  std::unique_ptr<LeavingServer> server_;
  Server connection_;
};

class PipelineToAServerThatLeaves : public BrokenPipeline {
 protected:
  void TearDown() override {
    if (!DefaultPortIsFree())
      GTEST_SKIP() << "port 6379 is in use: only the Unix socket was tested";
  }

  // Sends each of many servers so much of a pipeline that it leaves, and the rest by append_rest.
  template <typename AppendRest>
  void ExpectNoReplyAnywhere(const AppendRest& append_rest) {
    for (const bool is_tcp : {false, true}) {
      if (is_tcp && !DefaultPortIsFree()) continue;
      SCOPED_TRACE(is_tcp ? "TCP" : "Unix socket");
      for (const std::size_t read : std::vector<std::size_t>{0, 1, 7, 100, 500}) {
        SCOPED_TRACE("reads " + std::to_string(read));
        const std::string answers = Repeated(":1\r\n", read);
        for (const std::string& last_words :
             {std::string(), answers, "-ERR no\r\n" + answers, Repeated(":1\r\n", 5000)}) {
          SCOPED_TRACE("last words: " + last_words.substr(0, 20));
          ASSERT_NO_FATAL_FAILURE(Connect({"RPUSH", read, last_words}, {}, is_tcp));
          Pipeline pipeline = {context()};
          Append((read / kPieceLength + 1) * kPieceLength, &pipeline);
          ASSERT_EQ(Join(), read);
          append_rest(&pipeline);
          ExpectNoReply(pipeline);
        }
      }
    }
  }
};

TEST_F(PipelineToAServerThatLeaves, HasNoReplyWhenAPieceCannotBeSent) {
  ExpectNoReplyAnywhere([](Pipeline* pipeline) { Append(2 * kPieceLength + 1, pipeline); });
}

TEST_F(PipelineToAServerThatLeaves, HasNoReplyWhenTheLastPieceCannotBeSent) {
  ExpectNoReplyAnywhere([](Pipeline* pipeline) { Append(1, pipeline); });
}

TEST_F(BrokenPipeline, RepliesThatCameBeforeItDoNotCount) {
  for (const std::size_t length : {std::size_t{1}, kPieceLength - 1, kPieceLength}) {
    SCOPED_TRACE(length);
    ASSERT_NO_FATAL_FAILURE(Connect({"TYPE", 1, "+none\r\n" + Repeated(":1\r\n", 5000)}));
    ASSERT_NE(Ask(context(), "TYPE %s", "key"), nullptr);
    ASSERT_EQ(Join(), 1U);
    Pipeline pipeline = {context()};
    Append(length, &pipeline);
    ExpectNoReply(pipeline);
    Pipeline next = {context()};
    Append(1, &next);
    ExpectNoReply(next);
  }
}

TEST_F(BrokenPipeline, APieceIsSentWhileTheRestIsFormatted) {
  ASSERT_NO_FATAL_FAILURE(Connect({"RPUSH", kPieceLength}));
  Pipeline pipeline = {context()};
  Append(kPieceLength, &pipeline);
  EXPECT_EQ(Join(), kPieceLength);
}

// The flushes of a batch whose commands have two megabytes, more than a socket takes without a
// reader, to a server that reads one of them and answers all.
constexpr std::size_t kItems = 2000;
const std::string kValue = std::string(1000, 'v');
const std::string kAllAnswers = Repeated(":1\r\n", kItems);

}  // namespace

}  // namespace ostrafel
