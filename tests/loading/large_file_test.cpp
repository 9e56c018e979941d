// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// Files that 32 bits cannot describe: larger than 4 GiB, or changed after January 2038. On a
// machine whose long has 32 bits the system's calls refuse them unless they are asked for 64 bits.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <string>
#include <vector>

#include "document/json_file.h"
#include "loading/expect_no_problem.h"
#include "loading/static_data_walk.h"
#include "support/temp_directory.h"

namespace ostrafel {

namespace {

constexpr off_t kSize = off_t{5} << 30;
constexpr time_t kYear2100 = 4102444800;

class LargeFile : public testing::Test {
 protected:
  // Makes big.json as large as kSize; but for the text at its start it takes no room on the disk.
  void SetUp() override {
    path = tree.Write("big.json", R"({"A": 1})");
    if (truncate(path.c_str(), kSize) != 0) {
      GTEST_SKIP() << "this file system has no files of 5 GiB: " << std::strerror(errno);
    }
    struct stat status = {};
    ASSERT_EQ(stat(path.c_str(), &status), 0) << std::strerror(errno);
    ASSERT_EQ(status.st_size, kSize);
  }

  TempDirectory tree;
  std::string path;
};

TEST_F(LargeFile, IsAJsonFile) { EXPECT_TRUE(IsJsonFile(path, ExpectNoProblem)); }

TEST_F(LargeFile, IsFoundByTheWalk) {
  LoadList list;
  ASSERT_TRUE(WalkStaticData(tree.path(), "/r", "big.json", &list, ExpectNoProblem));
  EXPECT_EQ(list.paths, std::vector<std::string>{path});
}

TEST_F(LargeFile, IsOpenedAndRead) {
  const JsonFile file = LoadJsonFile(path.c_str());
  EXPECT_TRUE(file.is_open);
  EXPECT_EQ(file.root, nullptr);  // because of the zeros after the text
  EXPECT_EQ(file.error.line, 1);
}

// Sets the times of a file or folder. False where the file system cannot keep such times.
bool ChangeInTheYear2100(const std::string& path) {
  timespec moment = {};
  moment.tv_sec = kYear2100;
  const std::array<timespec, 2> access_and_change = {moment, moment};
  if (utimensat(AT_FDCWD, path.c_str(), access_and_change.data(), 0) != 0) return false;
  struct stat status = {};
  return stat(path.c_str(), &status) == 0 && status.st_mtime == kYear2100;
}

TEST(DistantTime, OfAFileOrFolderIsNoObstacle) {
  const TempDirectory tree;
  const std::string file = tree.Write("folder/index.json", R"({"A": 1})");
  const std::string folder = tree.path("folder");
  if (!ChangeInTheYear2100(file) || !ChangeInTheYear2100(folder)) {
    GTEST_SKIP() << "this file system keeps no times of the year 2100";
  }
  EXPECT_TRUE(IsJsonFile(file, ExpectNoProblem));
  EXPECT_TRUE(IsDirectory(folder));
  LoadList list;
  EXPECT_TRUE(WalkStaticData(tree.path(), "/r", "index.json", &list, ExpectNoProblem));
  EXPECT_EQ(list.paths, std::vector<std::string>{file});
  EXPECT_NE(LoadJsonFile(file.c_str()).root, nullptr);
}

}  // namespace

}  // namespace ostrafel
