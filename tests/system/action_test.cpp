// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// What an action does before anything is loaded, and how a run ends.
#include <fcntl.h>
#include <unistd.h>

#include <filesystem>
#include <string>

#include "system/system_fixture.h"

namespace {

class Action : public SystemTest {
 protected:
  // A tree under /r with neighbours.
  void FillStore() {
    for (const char* key : {"/r", "/r/A", "&&/r/A", "&&/r", "/rX", "&&/rX/A"}) {
      (void)store.Run(model::Command{"HSET", key, "f", "v"});
    }
  }

  static constexpr const char* kNeighbours =
      "hash | &&/r | f | v\n"
      "hash | &&/rX/A | f | v\n"
      "hash | /rX | f | v\n";
};

TEST_F(Action, CreateReplacesTheTreeAndLeavesItsNeighboursAlone) {
  FillStore();
  tree.Write("index.json", R"({"B": 1})");
  Load({"create", tree.path(), "/r"});
  EXPECT_EQ(store.Dump(),
            "hash | &&/r | f | v\n"
            "hash | &&/rX/A | f | v\n"
            "hash | /r | B | 1\n"
            "hash | /rX | f | v\n");
  EXPECT_EQ(Sent(),
            "keys | /r\n--\ndel | /r\n--\n"
            "keys | /r/*\n--\ndel | /r/A\n--\n"
            "keys | &&/r/*\n--\ndel | &&/r/A\n--\n"
            "HSET | /r | B | 1\n");
}

TEST_F(Action, UpdateRemovesNothingFirst) {
  FillStore();
  tree.Write("index.json", R"({"B": 1})");
  Load({"update", tree.path(), "/r"});
  EXPECT_EQ(store.Dump(),
            "hash | &&/r | f | v\n"
            "hash | &&/r/A | f | v\n"
            "hash | &&/rX/A | f | v\n"
            "hash | /r | B | 1\n"
            "hash | /r | f | v\n"
            "hash | /r/A | f | v\n"
            "hash | /rX | f | v\n");
}

TEST_F(Action, CreateWithAMissingPathHasEmptiedTheTree) {
  FillStore();
  ExpectFailure({"create", tree.path("none"), "/r"},
                "Failed to check path " + tree.path("none") +
                    ".\nInput path should be a file or directory\n");
  EXPECT_EQ(store.Dump(), kNeighbours);
}

TEST_F(Action, CreateOfADirectoryWithoutFilesEmptiesTheTreeAndSucceeds) {
  FillStore();
  tree.MakeFolder("empty/folders");
  Load({"create", tree.path(), "/r"});
  EXPECT_EQ(store.Dump(), kNeighbours);
}

TEST_F(Action, UpdateOfADirectoryWithoutFilesSendsNothing) {
  FillStore();
  Load({"update", tree.path(), "/r"});
  EXPECT_EQ(recording.connections, 1);
  EXPECT_EQ(Sent(), "");
}

TEST_F(Action, CreateStopsWhenTheRemovalCannotBeRead) {
  FillStore();
  tree.Write("index.json", R"({"B": 1})");
  plan = [](Recorder& recorder) { recorder.CutAfter(1, 0); };
  ExpectFailure({"create", tree.path(), "/r"},
                "Failed to get reply\nFail to remove resource tree\n");
}

TEST_F(Action, CreateGoesOnWhenTheServerRefusesToSearch) {
  FillStore();
  tree.Write("index.json", R"({"B": 1})");
  (void)store.Run("ACL | SETUSER | default | -keys");
  Load({"create", tree.path(), "/r"});
  (void)store.Run("ACL | SETUSER | default | +@all");
  EXPECT_EQ(Sent(), "keys | /r\n--\nkeys | /r/*\n--\nkeys | &&/r/*\n--\nHSET | /r | B | 1\n");
}

TEST_F(Action, AnUnwritableStandardOutputDoesNotChangeTheStatus) {
  tree.Write("index.json", R"({"A": 1})");
  RunOptions options;
  options.in_child = [] { (void)dup2(open("/dev/full", O_WRONLY), STDOUT_FILENO); };
  const Finished full = Ostrafel({"create", tree.path(), "/r"}, options);
  EXPECT_EQ(full.status, 0);
  EXPECT_EQ(full.err, "");
  options.in_child = [] { (void)close(STDOUT_FILENO); };
  EXPECT_EQ(Ostrafel({"create", tree.path(), "/r"}, options).status, 0);
  EXPECT_EQ(store.Dump(), "hash | /r | A | 1\n");
}

// A program that is started without some standard descriptors opens its connection all the same
// under another number: a message never goes to the server.
TEST_F(Action, ClosedStandardDescriptorsAreNotTakenByTheConnection) {
  tree.Write("a/index.json", R"({"A": 1})");
  std::filesystem::create_symlink("nowhere", tree.path("x\nFLUSHALL\ny"));
  (void)store.Run("SET | kept | 1");
  void (*const closings[])() = {
      [] { (void)close(STDERR_FILENO); },
      [] {
        (void)close(STDIN_FILENO);
        (void)close(STDERR_FILENO);
      },
      [] {
        (void)close(STDIN_FILENO);
        (void)close(STDOUT_FILENO);
        (void)close(STDERR_FILENO);
      },
  };
  for (const auto closing : closings) {
    RunOptions options;
    options.in_child = closing;
    EXPECT_EQ(Ostrafel({"create", tree.path(), "/r"}, options).status, 0);
    EXPECT_EQ(Sent(), "keys | /r\n--\nkeys | /r/*\n--\nkeys | &&/r/*\n--\nHSET | /r/a | A | 1\n");
    EXPECT_EQ(store.Dump(), "hash | /r/a | A | 1\nstring | kept | 1\n");
    (void)store.Run("DEL | /r/a");
  }
}

}  // namespace
