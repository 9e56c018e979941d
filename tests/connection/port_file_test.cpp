// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// Port files that no server writes.
#include <gtest/gtest.h>

#include <string>

#include "connection/connection_config.h"
#include "connection/connection_state.h"
#include "support/sandbox.h"

namespace ostrafel {

namespace {

class PortFile : public testing::Test {
 protected:
  PortFile() { Connection = {}; }
  ~PortFile() override { Connection = {}; }
};

TEST_F(PortFile, ThatBeginsWithANulHoldsNoPort) {
  RuntimeFiles files;
  files.port = std::string("\0006379", 5);
  files.unixsocket = ServerSocket();
  Publish(files);
  testing::internal::CaptureStderr();
  EXPECT_FALSE(ReadConnectionConfig());
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

TEST_F(PortFile, CountsUpToTheFirstNul) {
  RuntimeFiles files;
  files.port = std::string("0\0x", 3);
  files.unixsocket = ServerSocket();
  Publish(files);
  const auto config = ReadConnectionConfig();
  ASSERT_TRUE(config);
  EXPECT_EQ(config->type, UnixSocket);
}

}  // namespace

}  // namespace ostrafel
