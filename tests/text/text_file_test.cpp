// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "text/text_file.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <chrono>
#include <string>
#include <thread>

#include "support/temp_directory.h"

namespace ostrafel {

namespace {

TEST(TextFile, IsReadWhole) {
  const TempDirectory directory;
  const std::string text = std::string(100000, 'x') + std::string("\0\xFF\r\n", 4);
  EXPECT_EQ(ReadTextFile(directory.Write("file", text)), text);
  EXPECT_EQ(ReadTextFile(directory.Write("empty", "")), "");
}

TEST(TextFile, IsEmptyWhereThereIsNone) {
  const TempDirectory directory;
  EXPECT_EQ(ReadTextFile(directory.path("none")), "");
  EXPECT_EQ(ReadTextFile(directory.path()), "");
}

TEST(TextFile, IsNoPipe) {
  const TempDirectory directory;
  const std::string path = directory.path("pipe");
  ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
  const int pipe = open(path.c_str(), O_RDWR | O_CLOEXEC);
  ASSERT_EQ(write(pipe, "x", 1), 1);
  // Who reads the pipe after all is not kept for ever.
  std::thread closing([pipe] {
    std::this_thread::sleep_for(std::chrono::milliseconds(200));
    (void)close(pipe);
  });
  EXPECT_EQ(ReadTextFile(path), "");
  closing.join();
}

}  // namespace

}  // namespace ostrafel
