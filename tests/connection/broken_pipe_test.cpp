// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "connection/broken_pipe.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <string>

#include "base/files.h"

namespace ostrafel {

namespace {

class BrokenPipe : public testing::Test {
 protected:
  BrokenPipe() { (void)signal(SIGPIPE, SIG_DFL); }
  ~BrokenPipe() override { (void)signal(SIGPIPE, SIG_DFL); }
};

TEST_F(BrokenPipe, WritingToAPeerThatIsGoneFailsInsteadOfEndingTheProcess) {
  SurviveBrokenPipe();
  std::array<int, 2> ends = {};
  ASSERT_EQ(pipe(ends.data()), 0);
  ASSERT_EQ(close(ends[0]), 0);
  EXPECT_EQ(write(ends[1], "x", 1), -1);
  EXPECT_EQ(errno, EPIPE);
  ASSERT_EQ(close(ends[1]), 0);
}

TEST_F(BrokenPipe, AShellStartedAfterwardsStillDiesOfIt) {
  SurviveBrokenPipe();
  const Pipe shell(popen("grep SigIgn /proc/self/status", "r"));
  ASSERT_NE(shell, nullptr);
  std::array<char, 128> line = {};
  ASSERT_NE(std::fgets(line.data(), static_cast<int>(line.size()), shell.get()), nullptr);
  const std::string text = line.data();
  const unsigned long long ignored = std::stoull(text.substr(text.find(':') + 1), nullptr, 16);
  EXPECT_EQ(ignored & (1ULL << (SIGPIPE - 1)), 0U) << text;
}

}  // namespace

}  // namespace ostrafel
