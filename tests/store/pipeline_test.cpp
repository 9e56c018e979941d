// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// A server that leaves while a long pipeline is on its way to it. What it has answered counts.
#include "store/pipeline.h"

#include <gtest/gtest.h>
#include <sys/socket.h>
#include <unistd.h>

#include <string>
#include <thread>

#include "connection/broken_pipe.h"
#include "connection/store_connection.h"
#include "store/command_batches.h"
#include "store/pruning.h"
#include "store/store_state.h"
#include "store/tree_removal.h"
#include "support/sockets.h"
#include "support/temp_directory.h"

namespace {

constexpr int kValues = 2000;
constexpr const char* kNoReply = "Failed to get reply\n";
constexpr const char* kListMessage =
    "Some errors occur while creating list data into database\n"
    "The data in database would be incorrect\n";

std::string Repeated(const char* text, int times) {
  std::string all;
  for (int i = 0; i < times; ++i) all += text;
  return all;
}

// The pipeline has two megabytes, more than any socket takes without a reader.
class BrokenPipeline : public testing::Test {
 protected:
  BrokenPipeline() {
    SurviveBrokenPipe();
    ResetStoreState();
    for (int i = 0; i < kValues; ++i) {
      EXPECT_EQ(PutListItem(nullptr, "key", value_.c_str()), 1U);
    }
  }
  ~BrokenPipeline() override { ResetStoreState(); }

  // What flushing prints when the server reads this much, answers so and leaves.
  std::string FlushTo(std::size_t bytes_read, const std::string& answer,
                      unsigned (*flush)(redisContext*) = FlushListBatch) {
    const std::string path = directory_.path("server.sock");
    const int listener = ListenOnUnixSocket(path);
    const StoreConnection connection(redisConnectUnix(path.c_str()));
    std::thread server([&] {
      const int client = accept(listener, nullptr, nullptr);
      std::string bytes;
      while (bytes.size() < bytes_read && ReadSome(client, &bytes)) continue;
      EXPECT_TRUE(WriteAll(client, answer));
      (void)close(client);
    });
    if (bytes_read == 0) server.join();
    testing::internal::CaptureStderr();
    EXPECT_EQ(flush(connection.get()), 0U);
    std::string printed = testing::internal::GetCapturedStderr();
    if (server.joinable()) server.join();
    (void)close(listener);
    return printed;
  }

  const std::string value_ = std::string(1000, 'v');

 private:
  TempDirectory directory_;
};

TEST_F(BrokenPipeline, EveryAnswerThatCameIsRead) {
  EXPECT_TRUE(FlushTo(100000, ":1\r\n:2\r\n:3\r\n") == Repeated(kNoReply, kValues - 3));
  EXPECT_TRUE(ListBatch.empty());
}

TEST_F(BrokenPipeline, ABadAnswerIsReportedBeforeTheMissingOnes) {
  EXPECT_TRUE(FlushTo(100000, ":1\r\n-ERR no\r\n") ==
              kListMessage + Repeated(kNoReply, kValues - 2));
}

TEST_F(BrokenPipeline, WithoutAServerEveryAnswerIsMissing) {
  EXPECT_TRUE(FlushTo(0, "") == Repeated(kNoReply, kValues));
}

TEST_F(BrokenPipeline, OfFieldsEveryAnswerThatCameIsRead) {
  for (int i = 0; i < kValues; ++i) {
    EXPECT_EQ(PutHashField(nullptr, "key", std::to_string(i).c_str(), value_.c_str()), 1U);
  }
  EXPECT_TRUE(FlushTo(100000, ":1\r\n:1\r\n", FlushHashBatch) == Repeated(kNoReply, kValues - 2));
  EXPECT_TRUE(HashBatch.empty());
}

TEST_F(BrokenPipeline, OfRemovalsEveryAnswerThatCameIsRead) {
  for (int i = 0; i < kValues; ++i) {
    EXPECT_EQ(QueueRemoval(nullptr, value_ + std::to_string(i), "", RemoveKey), 1U);
  }
  EXPECT_TRUE(FlushTo(100000, ":1\r\n:1\r\n", FlushRemovalBatch) ==
              Repeated(kNoReply, kValues - 2));
  EXPECT_TRUE(RemovalBatch.keys.empty());
}

TEST_F(BrokenPipeline, OfDeletionsEndsTheRemovalOfATree) {
  const std::string key = "$" + std::to_string(value_.size()) + "\r\n" + value_ + "\r\n";
  const std::string keys = "*" + std::to_string(kValues) + "\r\n" + Repeated(key.c_str(), kValues);
  EXPECT_EQ(
      FlushTo(1, keys, [](redisContext* context) { return RemoveResourceTree(context, "/r"); }),
      kNoReply);
}

}  // namespace
