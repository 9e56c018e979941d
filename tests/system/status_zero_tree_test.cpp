// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// Runs that end with status 0 although the tree, by what it holds, is not stored as a whole. For
// the comments above the tests see status_zero_server_test.cpp.
#include <filesystem>
#include <string>
#include <utility>
#include <vector>

#include "system/system_fixture.h"

namespace {

class StatusZeroByTree : public SystemTest {};

// A document, the URI that it is loaded to, and a list that it makes.
struct Outside {
  std::string document;
  std::string uri;
  std::string list;
};

// STATUS 0 DOES NOT MEAN: A key lies outside the URI
TEST_F(StatusZeroByTree, ACreateAppendsToTheArraysThatItDoesNotRemove) {
  const std::vector<Outside> loads = {
      {R"({"@odata.id": "/other", "A": [1, 2]})", "/r", "&&/other/A"},
      {R"({"O": {"@odata.id": "/other", "A": [1, 2]}})", "/r", "&&/other/A"},
      {R"({"A": [1, 2]})", "//r", "&&/r/A"},
      {R"({"A": [1, 2]})", "/[r]", "&&/[r]/A"},
      {R"({"A": [1, 2]})", R"(/r\)", R"(&&/r\/A)"},
  };
  for (const Outside& load : loads) {
    SCOPED_TRACE(load.document + " to " + load.uri);
    (void)store.Run("FLUSHALL");
    for (const char* shown : {"1\n2\n", "1\n2\n1\n2\n"}) {
      LoadDocument("create", load.document, load.uri);
      EXPECT_EQ(Shown("redis-cli lrange KEY 0 -1", load.list), shown);
    }
  }
}

// STATUS 0 DOES NOT MEAN: No file has the name
TEST_F(StatusZeroByTree, ACreateThatFindsNoFileLeavesNothing) {
  tree.Write("index.json", R"({"A": 1})");
  tree.Write("a/Index.json", R"({"A": 2})");
  tree.MakeFolder("b/index.json");
  Load({"create", tree.path(), "/r"});
  EXPECT_EQ(Shown("find -L TREE -type f -name index.json"), tree.path("index.json") + "\n");
  EXPECT_EQ(store.Dump(), "hash | /r | A | 1\n");
  Load({"create", tree.path(), "/r", "other.json"});
  EXPECT_EQ(store.Dump(), "");
}

// STATUS 0 DOES NOT MEAN: A link leads nowhere
TEST_F(StatusZeroByTree, WhatABrokenLinkShouldLeadToIsMissing) {
  for (const char* link : {"a/index.json", "folder"}) {
    SCOPED_TRACE(link);
    const TempDirectory elsewhere;
    tree.MakeFolder("a");
    tree.Write("index.json", R"({"A": 1})");
    std::filesystem::create_symlink(elsewhere.path("gone"), tree.path(link));
    const Finished run = Ostrafel({"create", tree.path(), "/r"});
    EXPECT_EQ(run.out, kSuccessLine);
    EXPECT_EQ(run.err, "Failed to check path " + tree.path(link) + ".\n");
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(store.Dump(), "hash | /r | A | 1\n");
    EXPECT_EQ(Shown("find -L TREE -type l"), tree.path(link) + "\n");
    std::filesystem::remove(tree.path(link));
  }
}

// STATUS 0 DOES NOT MEAN: A member before the last fails
TEST_F(StatusZeroByTree, AMemberBeforeTheLastIsMissing) {
  LoadDocument("create", R"({"A": 1, "Bad": {"x": 1, "@odata.id": 2}, "last": 1})");
  EXPECT_EQ(Shown("redis-cli hkeys KEY"), "A\nlast\n");
  EXPECT_EQ(store.Dump(), "hash | /r | A | 1\nhash | /r | last | 1\n");
  // Around it, what comes after it is missing, too, and an array's record is what comes last.
  LoadDocument("create", R"({"O": {"A": 1, "Bad": {"x": 1, "@odata.id": 2}, "B": 1},
                             "L": [1, {"x": 1, "@odata.id": 2}, 2], "last": 1})");
  EXPECT_EQ(store.Dump(),
            "list | &&/r/L | 1\n"
            "hash | &&/r/O | A | 1\n"
            "hash | /r | &&Object O &&/r/O | \n"
            "hash | /r | last | 1\n");
}

// STATUS 0 DOES NOT MEAN: An array becomes an object with objects, arrays or links
TEST_F(StatusZeroByTree, AnArrayThatBecomesAnObjectOfObjectsIsStoredUpToTheFirst) {
  for (const char* inner : {R"({"z": 1})", "[1]", R"({"@odata.id": "/l"})"}) {
    SCOPED_TRACE(inner);
    LoadDocument("create", R"({"A": [1], "last": 1})");
    LoadDocument("update",
                 R"({"A": {"x": 1, "y": )" + std::string(inner) + R"(, "z": 3}, "last": 2})");
    EXPECT_EQ(Shown("redis-cli hkeys KEY", "&&/r/A"), "x\n");
    EXPECT_EQ(store.Dump(),
              "hash | &&/r/A | x | 1\n"
              "hash | /r | &&Object A &&/r/A | \n"
              "hash | /r | last | 2\n");
  }
}

// STATUS 0 DOES NOT MEAN: An array begins with a scalar
TEST_F(StatusZeroByTree, WhatLiesBelowAnArrayThatBeginsWithAScalarStays) {
  LoadDocument("create", R"({"L": [1, {"p": 1}, [3]]})");
  LoadDocument("update", R"({"L": [1, {"q": 2}, [4]]})");
  EXPECT_EQ(Shown("redis-cli hkeys KEY", "&&/r/L/1"), "p\nq\n");
  EXPECT_EQ(Shown("redis-cli lrange KEY 0 -1", "&&/r/L/2"), "4\n");
  LoadDocument("update", R"({"L": 5})");
  EXPECT_EQ(store.Dump(),
            "hash | &&/r/L/1 | p | 1\n"
            "hash | &&/r/L/1 | q | 2\n"
            "list | &&/r/L/2 | 4\n"
            "hash | /r | L | 5\n");
}

// What is stored, a document to update it with, and what is then stored.
struct Update {
  std::string before;
  std::string document;
  std::string dump;
};

// STATUS 0 DOES NOT MEAN: A name holds a character of patterns
TEST_F(StatusZeroByTree, ANameWithACharacterOfPatternsRemovesOrSparesOtherMembers) {
  const std::vector<Update> updates = {
      {R"({"R": {"@odata.id": "/l"}, "S": {"@odata.id": "/m"}, "A": 1})", R"({"*": 1})",
       "hash | /r | * | 1\nhash | /r | A | 1\n"},
      {R"({"A1": [[1], 2], "A?": [[1]]})", R"({"A?": 1})",
       "list | &&/r/A1 | &&Array &&/r/A1/0\n"
       "list | &&/r/A1 | 2\n"
       "hash | /r | &&Array A1 &&/r/A1 | \n"
       "hash | /r | A? | 1\n"},
      {R"({"A[1]": [[1]]})", R"({"A[1]": 1})", "list | &&/r/A[1]/0 | 1\nhash | /r | A[1] | 1\n"},
  };
  for (const auto& [before, document, dump] : updates) {
    SCOPED_TRACE(document);
    (void)store.Run("FLUSHALL");
    LoadDocument("create", before);
    LoadDocument("update", document);
    EXPECT_EQ(store.Dump(), dump);
  }
  EXPECT_EQ(Shown("redis-cli hkeys KEY"), "A[1]\n");
}

// STATUS 0 DOES NOT MEAN: A number does not fit
TEST_F(StatusZeroByTree, ANumberThatDoesNotFitIsTheNearestThatDoes) {
  const std::vector<std::pair<std::string, std::string>> numbers = {
      {"3000000000", "2147483647"},
      {"-3000000000", "-2147483648"},
      {"1e-7", "0."},
      {"0.12345678", "0.123457"},
  };
  for (const auto& [number, stored] : numbers) {
    LoadDocument("create", R"({"A": )" + number + "}");
    EXPECT_EQ(Shown("redis-cli hgetall KEY"), "A\n" + stored + "\n");
  }
}

// STATUS 0 DOES NOT MEAN: Two members have one name or key
TEST_F(StatusZeroByTree, MembersOfOneNameOrKeyMeet) {
  const std::vector<std::pair<std::string, std::string>> documents = {
      {R"({"A": 1, "A": 2})", "hash | /r | A | 2\n"},
      {R"({"a/b": {"x": 1, "y": 1}, "a": {"b": {"x": 2}}})",
       "hash | &&/r/a | &&Object b &&/r/a/b | \n"
       "hash | &&/r/a/b | x | 2\n"
       "hash | &&/r/a/b | y | 1\n"
       "hash | /r | &&Object a &&/r/a | \n"
       "hash | /r | &&Object a/b &&/r/a/b | \n"},
      {R"({"a/b": [1], "a": {"b": [2]}})",
       "hash | &&/r/a | &&Array b &&/r/a/b | \n"
       "list | &&/r/a/b | 1\n"
       "list | &&/r/a/b | 2\n"
       "hash | /r | &&Array a/b &&/r/a/b | \n"
       "hash | /r | &&Object a &&/r/a | \n"},
  };
  for (const auto& [document, dump] : documents) {
    SCOPED_TRACE(document);
    LoadDocument("create", document);
    EXPECT_EQ(store.Dump(), dump);
  }
}

// Two things with one key, in the files of the folders a and b: a member "a" or "b" tells which is
// stored.
struct Claim {
  std::string a;
  std::string b;
  std::string key;
};

// STATUS 0 DOES NOT MEAN: Two files or objects have one key
TEST_F(StatusZeroByTree, OfTwoFilesOrObjectsWithOneKeyTheFirstReadIsStored) {
  const std::vector<Claim> claims = {
      {R"({"@odata.id": "/same", "a": 1})", R"({"@odata.id": "/same", "b": 1})", "/same"},
      {R"({"@odata.id": "/r/b", "a": 1})", R"({"b": 1})", "/r/b"},
      {R"({"O": {"@odata.id": "/r/b", "a": 1}})", R"({"b": 1})", "/r/b"},
      {R"({"a": 1})", R"({"L": [{"@odata.id": "/r/a", "b": 1}]})", "/r/a"},
      {R"({"O": {"@odata.id": "/o", "a": 1}})", R"({"O": {"@odata.id": "/o", "b": 1}})", "/o"},
  };
  for (const Claim& claim : claims) {
    SCOPED_TRACE(claim.a + claim.b);
    tree.Write("a/index.json", claim.a);
    tree.Write("b/index.json", claim.b);
    const std::filesystem::directory_iterator listing(tree.path());
    const bool is_a_first = listing->path().filename() == "a";
    (void)store.Run("FLUSHALL");
    Load({"create", tree.path(), "/r"});
    const std::string shown = Shown("redis-cli hgetall KEY", claim.key);
    EXPECT_EQ(shown.find("a\n1\n") != std::string::npos, is_a_first) << shown;
    EXPECT_EQ(shown.find("b\n1\n") != std::string::npos, !is_a_first) << shown;
  }
  (void)store.Run("FLUSHALL");
  LoadDocument("create", R"({"O": {"@odata.id": "/o", "a": 1}, "P": {"@odata.id": "/o", "b": 1}})");
  EXPECT_EQ(store.Run("HEXISTS | /o | a").integer, 1);
  EXPECT_EQ(store.Run("HEXISTS | /o | b").integer, 0);
}

}  // namespace
