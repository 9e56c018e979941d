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
#include "store/store_state.h"
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
    const std::string value(1000, 'v');
    for (int i = 0; i < kValues; ++i) {
      EXPECT_EQ(PutListItem(nullptr, "key", value.c_str()), 1U);
    }
  }
  ~BrokenPipeline() override { ResetStoreState(); }

  // What flushing prints when the server reads this much, answers so and leaves.
  std::string FlushTo(std::size_t bytes_read, const std::string& answer) {
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
    EXPECT_EQ(FlushListBatch(connection.get()), 0U);
    std::string printed = testing::internal::GetCapturedStderr();
    if (server.joinable()) server.join();
    (void)close(listener);
    return printed;
  }

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

}  // namespace
