// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// From the path and the file name to the keys that are written.
#include <sys/resource.h>

#include <cstddef>
#include <filesystem>
#include <string>
#include <vector>

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

TEST_F(InputPath, GivesTheKeys) {
  WriteTree();
  const std::string file = tree.Write("v1/data.JSON", R"({"A": 5})");
  tree.Write("tree.json/index.json", R"({"A": 6})");
  const std::string all =
      "hash | /r/tree.json | A | 6\n"
      "hash | /r/v1 | A | 2\n"
      "hash | /r/v1/Systems | A | 3\n";
  const struct {
    std::vector<std::string> arguments;
    std::string dump;
  } cases[] = {
      {{"create", tree.path(), "/r"}, "hash | /r | A | 1\n" + all},
      {{"create", tree.path(), "/r", ""}, "hash | /r | A | 1\n" + all},
      {{"create", tree.path() + "/", "/r/"}, "hash | /r/ | A | 1\n" + all},
      {{"update", tree.path(), "/r", "other.json"}, "hash | /r/v1/Systems | B | 4\n"},
      // A single file goes to the URI, whatever a fourth argument says.
      {{"create", file, "/r/x", "other.json"}, "hash | /r/x | A | 5\n"},
      // A directory may be named like a file.
      {{"create", tree.path("tree.json"), "/r"}, "hash | /r | A | 6\n"},
  };
  for (const auto& c : cases) {
    (void)store.Run("FLUSHALL");
    Load(c.arguments);
    EXPECT_EQ(store.Dump(), c.dump);
  }
}

TEST_F(InputPath, IsRefusedWhenItIsNeitherAJsonFileNorADirectory) {
  const std::string refused = "Input path should be a file or directory\n";
  ExpectFailure({"update", tree.Write("data.txt", R"({"A": 1})"), "/r"}, refused);
  EXPECT_EQ(recording.connections, 1);
  ExpectFailure({"update", "/dev/null", "/r"}, refused);
  ExpectFailure({"update", "/nowhere/x.json", "/r"},
                "Failed to check path /nowhere/x.json.\n" + refused);
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
