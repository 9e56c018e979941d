// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// From the path and the file name to the keys that are written.
#include <sys/resource.h>

#include <cstddef>
#include <filesystem>
#include <string>

#include "support/program.h"
#include "system/file_capabilities.h"
#include "system/system_fixture.h"

namespace {

class InputPath : public SystemTest {
 protected:
  void WriteTree() {
    tree.Write("index.json", R"({"A": 1})");
    tree.Write("v1/index.json", R"({"A": 2})");
    tree.Write("v1/Systems/index.json", R"({"A": 3})");
    tree.Write("v1/Systems/other.json", R"({"B": 4})");
  }
};

TEST_F(InputPath, ADirectoryIsLoadedFolderByFolder) {
  WriteTree();
  Load({"create", tree.path(), "/redfish"});
  EXPECT_EQ(store.Dump(),
            "hash | /redfish | A | 1\n"
            "hash | /redfish/v1 | A | 2\n"
            "hash | /redfish/v1/Systems | A | 3\n");
}

TEST_F(InputPath, AUriWithASlashAtItsEndIsNotGivenAnother) {
  WriteTree();
  Load({"create", tree.path() + "/", "/redfish/"});
  EXPECT_EQ(store.Dump(),
            "hash | /redfish/ | A | 1\n"
            "hash | /redfish/v1 | A | 2\n"
            "hash | /redfish/v1/Systems | A | 3\n");
}

TEST_F(InputPath, AFourthArgumentNamesTheFileOfEveryFolder) {
  WriteTree();
  Load({"update", tree.path(), "/redfish", "other.json"});
  EXPECT_EQ(store.Dump(), "hash | /redfish/v1/Systems | B | 4\n");
}

TEST_F(InputPath, AnEmptyFourthArgumentStandsForIndexJson) {
  tree.Write("index.json", R"({"A": 1})");
  Load({"create", tree.path(), "/r", ""});
  EXPECT_EQ(store.Dump(), "hash | /r | A | 1\n");
}

TEST_F(InputPath, ASingleFileGoesToTheUriAndIgnoresAFourthArgument) {
  const std::string file = tree.Write("v1/data.JSON", R"({"A": 1})");
  tree.Write("v1/other.json", R"({"A": 2})");
  Load({"create", file, "/r/x", "other.json"});
  EXPECT_EQ(store.Dump(), "hash | /r/x | A | 1\n");
}

TEST_F(InputPath, AFileWithoutTheExtensionIsRefused) {
  const std::string file = tree.Write("data.txt", R"({"A": 1})");
  ExpectFailure({"update", file, "/r"}, "Input path should be a file or directory\n");
  EXPECT_EQ(recording.connections, 1);
}

TEST_F(InputPath, ADeviceIsRefused) {
  ExpectFailure({"update", "/dev/null", "/r"}, "Input path should be a file or directory\n");
}

TEST_F(InputPath, AMissingPathIsReportedTwice) {
  ExpectFailure(
      {"update", "/nowhere/x.json", "/r"},
      "Failed to check path /nowhere/x.json.\nInput path should be a file or directory\n");
}

TEST_F(InputPath, ADirectoryNamedLikeAFileIsWalked) {
  tree.Write("tree.json/index.json", R"({"A": 1})");
  Load({"create", tree.path("tree.json"), "/r"});
  EXPECT_EQ(store.Dump(), "hash | /r | A | 1\n");
}

TEST_F(InputPath, ADanglingLinkIsReportedAndTheRunGoesOn) {
  tree.Write("a/index.json", R"({"A": 1})");
  std::filesystem::create_symlink("nowhere", tree.path("dangling"));
  const Finished run = Ostrafel({"create", tree.path(), "/r"});
  EXPECT_EQ(run.out, kSuccessLine);
  EXPECT_EQ(run.err, "Failed to check path " + tree.path("dangling") + ".\n");
  EXPECT_EQ(run.status, 0);
  EXPECT_EQ(store.Dump(), "hash | /r/a | A | 1\n");
}

// STATUS 0 DOES NOT MEAN: A folder cannot be entered
TEST_F(InputPath, AFolderThatCannotBeEnteredIsReportedNameByNameAndPassedOver) {
  tree.Write("index.json", R"({"A": 1})");
  tree.Write("listed/index.json", R"({"A": 2})");
  std::filesystem::permissions(tree.path("listed"), std::filesystem::perms::owner_read);
  RunOptions options;
  options.in_child = GiveUpFileCapabilities;
  for (const char* action : {"create", "update"}) {
    const Finished run = Ostrafel({action, tree.path(), "/r"}, options);
    EXPECT_EQ(run.out, kSuccessLine);
    std::size_t size = 0;  // the lines are in the order of the listing
    for (const char* name : {".", "..", "index.json"}) {
      const std::string line = "Failed to check path " + tree.path("listed/") + name + ".\n";
      EXPECT_NE(run.err.find(line), std::string::npos) << run.err;
      size += line.size();
    }
    EXPECT_EQ(run.err.size(), size) << run.err;
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(store.Dump(), "hash | /r | A | 1\n");
  }
  EXPECT_EQ(Shown("find -L TREE -type d ! -executable", "", options), tree.path("listed") + "\n");
  std::filesystem::permissions(tree.path("listed"), std::filesystem::perms::owner_all);
}

TEST_F(InputPath, AFolderThatCannotBeOpenedFailsTheWholeWalk) {
  tree.Write("index.json", R"({"A": 1})");
  tree.MakeFolder("closed");
  std::filesystem::permissions(tree.path("closed"), std::filesystem::perms::none);
  RunOptions options;
  options.in_child = GiveUpFileCapabilities;
  const Finished run = Ostrafel({"update", tree.path(), "/r"}, options);
  EXPECT_EQ(run.out, "");
  EXPECT_EQ(run.err, "Error occurs while reading files\n");
  EXPECT_EQ(run.status, 255);
  EXPECT_EQ(Sent(), "");
  std::filesystem::permissions(tree.path("closed"), std::filesystem::perms::owner_all);
}

TEST_F(InputPath, ACycleOfLinksThatUsesUpTheDescriptorsFailsTheWalk) {
  tree.Write("index.json", R"({"A": 1})");
  std::filesystem::create_directory_symlink(".", tree.path("again"));
  RunOptions options;
  options.in_child = [] {
    const rlim_t count = HasLauncher() ? 30 : 16;  // a launcher needs some for itself
    const rlimit few = {count, count};
    (void)setrlimit(RLIMIT_NOFILE, &few);
  };
  const Finished run = Ostrafel({"update", tree.path(), "/r"}, options);
  EXPECT_EQ(run.err, "Error occurs while reading files\n");
  EXPECT_EQ(run.status, 255);
}

TEST_F(InputPath, AFileThatCannotBeOpenedHasNoValidContent) {
  const std::string file = tree.Write("index.json", R"({"A": 1})");
  std::filesystem::permissions(file, std::filesystem::perms::none);
  RunOptions options;
  options.in_child = GiveUpFileCapabilities;
  const Finished run = Ostrafel({"update", file, "/r"}, options);
  EXPECT_EQ(run.err, "The content of " + file + " is not a valid JSON data.\n");
  EXPECT_EQ(run.status, 255);
}

}  // namespace
