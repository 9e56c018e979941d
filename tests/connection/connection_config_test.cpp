// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "connection/connection_config.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <climits>
#include <cstdio>
#include <filesystem>
#include <optional>
#include <string>

#include "base/files.h"
#include "connection/connection_state.h"
#include "support/sandbox.h"
#include "support/temp_directory.h"

namespace ostrafel {

namespace {

constexpr const char* kMissingFile = "fopen: No such file or directory\n";

// Reads the configuration of a server of its own, whose runtime files are in a folder of the test.
class Config : public testing::Test {
 protected:
  Config() : saved_(ReadFile(kRedisConf)) {
    Connection = {};
    WriteFile(kRedisConf, "unixsocket " + runtime.path("redis.sock") + "\n");
  }
  ~Config() override {
    WriteFile(kRedisConf, saved_);
    Connection = {};
  }

  void Put(const std::string& key, const std::string& content) const {
    runtime.Write("redis." + key, content);
  }

  std::optional<ConnectionConfig> Read() {
    testing::internal::CaptureStderr();
    std::optional<ConnectionConfig> config = ReadConnectionConfig();
    printed = testing::internal::GetCapturedStderr();
    return config;
  }

  TempDirectory runtime;
  std::string printed;

 private:
  const std::string saved_;
};

TEST_F(Config, PortZeroAndASocketGiveAUnixSocket) {
  Put("port", "0");
  Put("unixsocket", "/run/x.sock");
  Put("requirepass", "secret");
  const std::optional<ConnectionConfig> config = Read();
  ASSERT_TRUE(config);
  EXPECT_EQ(config->type, UnixSocket);
  EXPECT_EQ(config->port, 0);
  EXPECT_EQ(config->socket_path, "/run/x.sock");
  EXPECT_EQ(config->password, "secret");
  EXPECT_EQ(config->host, "");
  EXPECT_EQ(printed, "");
}

TEST_F(Config, TheDefaultPortWithoutASocketGivesTcp) {
  Put("port", "6379\n");
  Put("requirepass", "");
  const std::optional<ConnectionConfig> config = Read();
  ASSERT_TRUE(config);
  EXPECT_EQ(config->type, Tcp);
  EXPECT_EQ(config->port, 6379);
  EXPECT_EQ(config->socket_path, "");
  EXPECT_EQ(config->password, "");
  EXPECT_EQ(printed, kMissingFile);
}

TEST_F(Config, AnotherPortWithoutASocketIsRefused) {
  for (const char* port : {"6380", "1", "2147483647"}) {
    Put("port", port);
    EXPECT_FALSE(Read()) << port;
    EXPECT_EQ(printed, kMissingFile) << port;
  }
}

TEST_F(Config, ASocketWinsOverAnyPort) {
  Put("unixsocket", "/run/x.sock");
  Put("requirepass", "");
  for (const char* port : {"6379", "6380", "1"}) {
    Connection = {};
    Put("port", port);
    const std::optional<ConnectionConfig> config = Read();
    ASSERT_TRUE(config) << port;
    EXPECT_EQ(config->type, UnixSocket) << port;
    EXPECT_EQ(config->port, 0) << port;
    EXPECT_EQ(config->socket_path, "/run/x.sock") << port;
  }
}

TEST_F(Config, PortZeroWithoutASocketGivesAPathWhereNothingListens) {
  Put("port", "0");
  const std::optional<ConnectionConfig> config = Read();
  ASSERT_TRUE(config);
  EXPECT_EQ(config->type, UnixSocket);
  EXPECT_EQ(config->socket_path, "(null)");
  EXPECT_EQ(printed, std::string(kMissingFile) + kMissingFile);  // the socket and the password
}

TEST_F(Config, AMissingPortFileIsRefusedEvenWithASocket) {
  Put("unixsocket", "/run/x.sock");
  EXPECT_FALSE(Read());
  EXPECT_EQ(printed, kMissingFile);
}

TEST_F(Config, APortOfAnythingButDigitsIsRefused) {
  Put("unixsocket", "/run/x.sock");
  for (const char* port : {"63a9", "-1", "+0", " 0", "0 ", "0\r\n", "0x0", ""}) {
    Put("port", port);
    EXPECT_FALSE(Read()) << port;
    EXPECT_EQ(printed, "") << port;
  }
}

TEST_F(Config, APortOfALineEndAloneIsZero) {
  Put("port", "\n");
  Put("unixsocket", "/run/x.sock");
  Put("requirepass", "");
  const std::optional<ConnectionConfig> config = Read();
  ASSERT_TRUE(config);
  EXPECT_EQ(config->type, UnixSocket);
}

TEST_F(Config, OnlyTheFirstLineOfAFileCounts) {
  Put("port", "0\nno port at all\n");
  Put("unixsocket", "/run/x.sock\n/run/y.sock\n");
  Put("requirepass", "secret\nmore\n");
  const std::optional<ConnectionConfig> config = Read();
  ASSERT_TRUE(config);
  EXPECT_EQ(config->socket_path, "/run/x.sock\n");  // with its line end
  EXPECT_EQ(config->password, "secret\n");
}

TEST_F(Config, APortThatOverflowsIsReported) {
  Put("port", "99999999999999999999");
  EXPECT_FALSE(Read());
  EXPECT_EQ(printed, "strtol: Numerical result out of range\n");
}

TEST_F(Config, OneMoreThanTheLargestLongOverflows) {
  const char* port = sizeof(long) == 4 ? "2147483648" : "9223372036854775808";
  ASSERT_EQ(port, std::to_string(static_cast<unsigned long>(LONG_MAX) + 1));
  Put("port", port);
  Put("unixsocket", "/run/x.sock");
  EXPECT_FALSE(Read());
  EXPECT_EQ(printed, "strtol: Numerical result out of range\n");
}

TEST_F(Config, TheLargestLongItselfIsNoOverflow) {
  Put("port", std::to_string(LONG_MAX));
  Put("unixsocket", "/run/x.sock");
  Put("requirepass", "");
  errno = ERANGE;  // what an earlier call left there
  EXPECT_TRUE(Read());
  EXPECT_EQ(printed, "");
}

TEST_F(Config, APortBeyond32BitsIsNarrowedWhereALongHoldsIt) {
  Put("port", "4294973675");  // 2^32 + 6379
  Put("requirepass", "");
  const std::optional<ConnectionConfig> config = Read();
  if (sizeof(long) == 4) {
    EXPECT_FALSE(config);
    EXPECT_EQ(printed, "strtol: Numerical result out of range\n");
    return;
  }
  ASSERT_TRUE(config);
  EXPECT_EQ(config->type, Tcp);
  EXPECT_EQ(config->port, 6379);
}

TEST_F(Config, AMissingPasswordIsReportedAndMeansNone) {
  Put("port", "0");
  Put("unixsocket", "/run/x.sock");
  const std::optional<ConnectionConfig> config = Read();
  ASSERT_TRUE(config);
  EXPECT_EQ(config->password, "");
  EXPECT_EQ(printed, kMissingFile);
}

TEST_F(Config, LongTextsAreReadUpTo1023Bytes) {
  Put("port", "0");
  Put("unixsocket", std::string(2000, 's'));
  Put("requirepass", std::string(2000, 'p'));
  const std::optional<ConnectionConfig> config = Read();
  ASSERT_TRUE(config);
  EXPECT_EQ(config->socket_path, std::string(1023, 's'));
  EXPECT_EQ(config->password, std::string(1023, 'p'));
}

TEST_F(Config, TheFirstSuccessIsRemembered) {
  Put("port", "0");
  Put("unixsocket", "/run/x.sock");
  Put("requirepass", "secret");
  ASSERT_TRUE(Read());
  std::filesystem::remove_all(runtime.path());
  const std::optional<ConnectionConfig> config = Read();
  ASSERT_TRUE(config);
  EXPECT_EQ(config->type, UnixSocket);
  EXPECT_EQ(config->socket_path, "/run/x.sock");
  EXPECT_EQ(config->password, "secret");
  EXPECT_EQ(printed, "");
}

TEST_F(Config, AFailureIsNotRemembered) {
  EXPECT_FALSE(Read());
  Put("port", "0");
  Put("unixsocket", "/run/x.sock");
  Put("requirepass", "");
  EXPECT_TRUE(Read());
}

TEST_F(Config, OnlyTheFirstActiveSocketLineCounts) {
  WriteFile(kRedisConf,
            "# unixsocket /none/a.sock\n unixsocket /none/b.sock\nunixsocketperm 700\n"
            "port 0\nunixsocket " +
                runtime.path("redis.sock") + " # words\nunixsocket /none/c.sock\n");
  Put("port", "0");
  Put("unixsocket", "/run/x.sock");
  Put("requirepass", "");
  EXPECT_TRUE(Read());
  EXPECT_EQ(printed, "");
}

TEST_F(Config, WithoutASocketLineTheFilesAreLookedForInTheRoot) {
  if (std::filesystem::exists("/redis.port")) GTEST_SKIP() << "this machine has a /redis.port";
  WriteFile(kRedisConf, "port 6379\n");
  const Pipe shell(popen("dirname 2>&1", "r"));
  std::string complaint;
  for (int c = std::fgetc(shell.get()); c != EOF; c = std::fgetc(shell.get())) {
    complaint.push_back(static_cast<char>(c));
  }
  ASSERT_NE(complaint, "");
  EXPECT_FALSE(Read());
  EXPECT_EQ(printed, complaint + kMissingFile);
}

TEST_F(Config, WhatGrepSaysOfAMissingFilePassesThrough) {
  if (std::filesystem::exists("/redis.port")) GTEST_SKIP() << "this machine has a /redis.port";
  WriteFile(kRedisConf, std::nullopt);
  EXPECT_FALSE(Read());
  const std::string complaint = "grep: /etc/redis/redis.conf: No such file or directory\n";
  EXPECT_EQ(printed.substr(0, complaint.size()), complaint);
}

class ConfigValue : public Config {};

TEST_F(ConfigValue, IsTheFirstLineWithItsEnd) {
  Put("port", "12\n34\n");
  EXPECT_EQ(ReadConfigValue("port", runtime.path()), "12\n");
}

TEST_F(ConfigValue, IsNothingWithoutAKey) {
  EXPECT_EQ(ReadConfigValue(nullptr, runtime.path()), std::nullopt);
}

TEST_F(ConfigValue, IsNothingWhenTheFileIsEmptyOrADirectory) {
  Put("port", "");
  runtime.MakeFolder("redis.folder");
  testing::internal::CaptureStderr();
  EXPECT_EQ(ReadConfigValue("port", runtime.path()), std::nullopt);
  EXPECT_EQ(ReadConfigValue("folder", runtime.path()), std::nullopt);
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

TEST_F(ConfigValue, IsNothingWhenKeyAndDirectoryAreTooLong) {
  testing::internal::CaptureStderr();
  EXPECT_EQ(ReadConfigValue("port", "/" + std::string(1019, 'x')), std::nullopt);
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

TEST_F(ConfigValue, APathThatIsJustShortEnoughIsTried) {
  // One byte less than the limit: tried, although the whole path is cut at 1023 bytes.
  std::string directory = runtime.path();
  while (directory.size() < 1019) directory += "/";
  ASSERT_EQ(directory.size(), 1019U);
  Put("port", "12");
  Put("por", "cut");
  testing::internal::CaptureStderr();
  EXPECT_EQ(ReadConfigValue("port", directory), std::nullopt);  // cut within "/redis."
  EXPECT_EQ(testing::internal::GetCapturedStderr(), kMissingFile);
  directory.resize(1023 - std::string("/redis.por").size());
  EXPECT_EQ(ReadConfigValue("port", directory), "cut");
}

}  // namespace

}  // namespace ostrafel
