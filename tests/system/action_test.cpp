// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// What an action does before anything is loaded.
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

}  // namespace
