// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "loading/static_data_walk.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <map>
#include <string>
#include <vector>

#include "loading/expect_no_problem.h"
#include "support/temp_directory.h"

namespace ostrafel {

namespace {

using Entries = std::map<std::string, std::string>;  // path -> key

class Walk : public testing::Test {
 protected:
  bool Run(const std::string& directory, const std::string& key,
           const std::string& file_name = "index.json") {
    list = {};
    testing::internal::CaptureStderr();
    const bool result = WalkStaticData(directory, key, file_name, &list, PrintPathProblem);
    printed = testing::internal::GetCapturedStderr();
    return result;
  }

  Entries Listed() const {
    EXPECT_EQ(list.paths.size(), list.keys.size());
    Entries entries;
    for (std::size_t i = 0; i < list.paths.size(); ++i) entries[list.paths[i]] = list.keys[i];
    return entries;
  }

  TempDirectory tree;
  LoadList list;
  std::string printed;
};

TEST_F(Walk, KeysFollowTheFolders) {
  tree.Write("index.json", "{}");
  tree.Write("v1/index.json", "{}");
  tree.Write("v1/Systems/index.json", "{}");
  ASSERT_TRUE(Run(tree.path(), "/redfish"));
  EXPECT_EQ(Listed(), (Entries{{tree.path("index.json"), "/redfish"},
                               {tree.path("v1/index.json"), "/redfish/v1"},
                               {tree.path("v1/Systems/index.json"), "/redfish/v1/Systems"}}));
  EXPECT_EQ(printed, "");
}

TEST_F(Walk, ARootKeyThatEndsWithASlashIsNotGivenAnother) {
  tree.Write("index.json", "{}");
  tree.Write("v1/index.json", "{}");
  ASSERT_TRUE(Run(tree.path(), "/redfish/"));
  EXPECT_EQ(Listed(), (Entries{{tree.path("index.json"), "/redfish/"},
                               {tree.path("v1/index.json"), "/redfish/v1"}}));
}

TEST_F(Walk, ADirectoryNamedWithASlashGivesPathsWithTwo) {
  tree.Write("index.json", "{}");
  tree.Write("v1/index.json", "{}");
  ASSERT_TRUE(Run(tree.path() + "/", "/redfish"));
  EXPECT_EQ(Listed(), (Entries{{tree.path() + "//index.json", "/redfish"},
                               {tree.path() + "//v1/index.json", "/redfish/v1"}}));
}

TEST_F(Walk, AFolderWithoutTheFileIsStillWalked) {
  tree.Write("other.json", "{}");
  tree.Write("a/index.json", "{}");
  tree.Write("a/b/other.json", "{}");
  ASSERT_TRUE(Run(tree.path(), "/r", "other.json"));
  EXPECT_EQ(Listed(),
            (Entries{{tree.path("other.json"), "/r"}, {tree.path("a/b/other.json"), "/r/a/b"}}));
}

TEST_F(Walk, TheFileNameIsComparedExactly) {
  tree.Write("INDEX.JSON", "{}");
  tree.Write("a/xindex.json", "{}");
  tree.Write("b/index.jsonx", "{}");
  ASSERT_TRUE(Run(tree.path(), "/r"));
  EXPECT_EQ(Listed(), Entries{});
  ASSERT_TRUE(Run(tree.path(), "/r", "INDEX.JSON"));
  EXPECT_EQ(Listed(), (Entries{{tree.path("INDEX.JSON"), "/r"}}));
}

TEST_F(Walk, AFileNameWithoutTheExtensionMatchesNothing) {
  tree.Write("index", "{}");
  tree.Write("index.txt", "{}");
  ASSERT_TRUE(Run(tree.path(), "/r", "index"));
  EXPECT_EQ(Listed(), Entries{});
  ASSERT_TRUE(Run(tree.path(), "/r", "index.txt"));
  EXPECT_EQ(Listed(), Entries{});
}

TEST_F(Walk, HiddenFoldersAreWalked) {
  tree.Write(".hidden/index.json", "{}");
  tree.Write("...dots/index.json", "{}");
  ASSERT_TRUE(Run(tree.path(), "/r"));
  EXPECT_EQ(Listed(), (Entries{{tree.path(".hidden/index.json"), "/r/.hidden"},
                               {tree.path("...dots/index.json"), "/r/...dots"}}));
}

TEST_F(Walk, AFolderNamedLikeTheFileIsAFolder) {
  tree.Write("index.json/index.json", "{}");
  ASSERT_TRUE(Run(tree.path(), "/r"));
  EXPECT_EQ(Listed(), (Entries{{tree.path("index.json/index.json"), "/r/index.json"}}));
}

TEST_F(Walk, LinksToFoldersAndFilesAreFollowed) {
  const TempDirectory elsewhere;
  elsewhere.Write("index.json", "{}");
  std::filesystem::create_directory_symlink(elsewhere.path(), tree.path("linked"));
  std::filesystem::create_symlink(elsewhere.path("index.json"), tree.path("index.json"));
  ASSERT_TRUE(Run(tree.path(), "/r"));
  EXPECT_EQ(Listed(), (Entries{{tree.path("index.json"), "/r"},
                               {tree.path("linked/index.json"), "/r/linked"}}));
}

TEST_F(Walk, ADanglingLinkIsReportedAndPassedOver) {
  std::filesystem::create_symlink(tree.path("nowhere"), tree.path("dangling"));
  tree.Write("a/index.json", "{}");
  ASSERT_TRUE(Run(tree.path(), "/r"));
  EXPECT_EQ(Listed(), (Entries{{tree.path("a/index.json"), "/r/a"}}));
  EXPECT_EQ(printed, "Failed to check path " + tree.path("dangling") + ".\n");
}

// A walk may go on for long, and be ended from outside.
TEST_F(Walk, AProblemIsToldAtOnce) {
  for (int i = 0; i < 20; ++i) {
    const std::string folder = "f" + std::to_string(i);
    tree.Write(folder + "/index.json", "{}");
    std::filesystem::create_symlink("nowhere", tree.path(folder + "/dangling"));
  }
  std::vector<std::size_t> listed;
  const auto tell = [&](PathProblem /*problem*/, const std::string& /*path*/) {
    listed.push_back(list.paths.size());
  };
  ASSERT_TRUE(WalkStaticData(tree.path(), "/r", "index.json", &list, tell));
  ASSERT_EQ(listed.size(), 20U);
  EXPECT_LE(listed.front(), 1U);
  EXPECT_GE(listed.back(), 19U);
}

// When somebody changes a folder on the way or mounts something, the kernel may go the way again
// and count its links twice. Hence a link and a folder that lead to no folder of others; and a walk
// that met the limit early is made again.
TEST_F(Walk, ACycleOfLinksEndsAtTheLimitOfTheSystem) {
  tree.Write("top/index.json", "{}");
  std::filesystem::create_directory_symlink(".", tree.path("top/again"));
  std::string refused = tree.path("top");
  for (int links = 0; links <= 40; ++links) refused += "/again";
  const std::string message = "Failed to check path " + refused + ".\n";
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(30);
  bool is_walked = false;
  do {
    is_walked = Run(tree.path("top"), "/r");
  } while (printed != message && std::chrono::steady_clock::now() < deadline);
  EXPECT_TRUE(is_walked);
  EXPECT_EQ(printed, message);
  EXPECT_EQ(list.keys.size(), 41U);  // the folder, and once more through each of 40 links
}

TEST_F(Walk, AnEmptyDirectoryListsNothing) {
  EXPECT_TRUE(Run(tree.path(), "/r"));
  EXPECT_EQ(Listed(), Entries{});
}

TEST_F(Walk, ADirectoryThatCannotBeOpenedFailsSilently) {
  EXPECT_FALSE(Run(tree.path("none"), "/r"));
  EXPECT_EQ(printed, "");
  tree.Write("file", "");
  EXPECT_FALSE(Run(tree.path("file"), "/r"));
  EXPECT_EQ(printed, "");
}

TEST_F(Walk, EntriesComeInTheOrderOfTheListing) {
  std::vector<std::string> expected;
  for (int i = 0; i < 50; ++i) tree.Write("f" + std::to_string(i) + "/index.json", "{}");
  for (const auto& entry : std::filesystem::directory_iterator(tree.path())) {
    expected.push_back(entry.path().string() + "/index.json");
  }
  ASSERT_TRUE(Run(tree.path(), "/r"));
  EXPECT_EQ(list.paths, expected);
}

TEST_F(Walk, LeavesNoDirectoryOpen) {
  tree.Write("a/b/c/index.json", "{}");
  const auto open_descriptors = [] {
    const std::filesystem::directory_iterator listing("/proc/self/fd");
    return std::distance(begin(listing), end(listing));
  };
  const auto before = open_descriptors();
  ASSERT_TRUE(Run(tree.path(), "/r"));
  ASSERT_FALSE(Run(tree.path("none"), "/r"));
  EXPECT_EQ(open_descriptors(), before);
}

TEST(LoadListEntries, AreAppendedInStep) {
  LoadList list;
  ASSERT_TRUE(AppendToLoadList("a.json", "/a", &list, ExpectNoProblem));
  ASSERT_TRUE(AppendToLoadList("b.json", "/b", &list, ExpectNoProblem));
  EXPECT_EQ(list.paths, (std::vector<std::string>{"a.json", "b.json"}));
  EXPECT_EQ(list.keys, (std::vector<std::string>{"/a", "/b"}));
}

TEST(PathTests, TellFilesFromDirectories) {
  const TempDirectory directory;
  const struct {
    std::string path;
    bool is_json_file;
    bool is_directory;
  } cases[] = {
      {directory.Write("data.json", "{}"), true, false},
      {directory.Write("data.JSON", "{}"), true, false},
      {directory.Write("data.Json", "{}"), true, false},
      {directory.Write(".json", "{}"), true, false},
      {directory.Write("data.txt", "{}"), false, false},
      {directory.Write("data.json.txt", "{}"), false, false},
      {directory.Write("json", "{}"), false, false},
      {directory.Write("folder.json/plain", "{}"), false, false},  // the only point is in a folder
      {directory.MakeFolder("folder.json"), false, true},
      {"/dev/null", false, false},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(IsJsonFile(c.path, ExpectNoProblem), c.is_json_file) << c.path;
    EXPECT_EQ(IsDirectory(c.path), c.is_directory) << c.path;
  }
}

TEST(PathTests, TheFileTestTellsOfAMissingPath) {
  std::vector<std::string> told;
  const auto tell = [&](PathProblem problem, const std::string& text) {
    EXPECT_EQ(problem, PathProblem::kNotChecked);
    told.push_back(text);
  };
  EXPECT_FALSE(IsDirectory("/nowhere/x.json"));
  EXPECT_FALSE(IsJsonFile("/nowhere/x.json", tell));
  EXPECT_EQ(told, std::vector<std::string>{"/nowhere/x.json"});
}

TEST(PathTests, FileNamesAreWhatFollowsTheLastSlash) {
  const struct {
    const char* path;
    const char* name;
    bool is_equal;
  } cases[] = {
      {"/a/index.json", "index.json", true},
      {"/a/b/", "", true},
      {"/a/Index.json", "index.json", false},
      {"/a/xindex.json", "index.json", false},
      {"/index.json/a", "index.json", false},
      {"index.json", "index.json", false},  // no slash at all
  };
  for (const auto& c : cases) {
    EXPECT_EQ(FileNameEquals(c.path, c.name, ExpectNoProblem), c.is_equal) << c.path;
  }
}

}  // namespace

}  // namespace ostrafel
