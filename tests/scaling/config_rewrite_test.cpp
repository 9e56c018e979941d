// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// CONFIG REWRITE, with which a server keeps what it was told while it ran, puts paths in quotes.
// Ostrafel takes them for a part of the path.
#include <filesystem>
#include <string>

#include "scaling/scaling_fixture.h"

namespace {

class RewrittenConfiguration : public ScalingTest {
 protected:
  RewrittenConfiguration() : saved_(ReadFile(kRedisConf)) { publishes_socket = false; }
  ~RewrittenConfiguration() override { WriteFile(kRedisConf, saved_); }

 private:
  const std::string saved_;
};

TEST_F(RewrittenConfiguration, HidesTheServer) {
  RedisNode node;
  const std::string directory = std::filesystem::path(node.Socket()).parent_path().string();
  WriteFile(directory + "/redis.port", "0");
  WriteFile(directory + "/redis.unixsocket", node.Socket());
  WriteFile(directory + "/redis.requirepass", "");
  const auto publish_config = [&] { WriteFile(kRedisConf, ReadFile(node.ConfigPath())); };

  publish_config();
  Load(create);
  const std::string created = node.store().Dump();
  EXPECT_NE(created, "");

  ASSERT_EQ(node.store().Run("CONFIG | REWRITE").text, "OK");
  publish_config();
  EXPECT_NE(ReadFile(kRedisConf).find("\nunixsocket \"" + node.Socket() + "\"\n"),
            std::string::npos);
  ExpectFailure(update, "fopen: No such file or directory\nFailed to connect to Redis\n");
  EXPECT_EQ(node.store().Dump(), created);
}

}  // namespace
