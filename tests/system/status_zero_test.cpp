// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// Runs that end with status 0 although the store is not what the tree says. Ostrafel(1) lists them
// under STATUS 0 DOES NOT MEAN; a comment above each test names the case as that page does, and
// tests/man/manual_test looks for it. What the page says to look at is run here.
#include <filesystem>
#include <string>
#include <utility>
#include <vector>

#include "support/scoped_setting.h"
#include "system/system_fixture.h"

namespace {

class StatusZero : public SystemTest {
 protected:
  StatusZero() { (void)store.Run("CONFIG | RESETSTAT"); }
  ~StatusZero() override { Allow(); }

  void Refuse(const std::string& command) {
    (void)store.Run(model::Command{"ACL", "SETUSER", "default", "-" + command});
  }
  void Allow() { (void)store.Run("ACL | SETUSER | default | +@all"); }

  // Loads this document to /r: status 0 and not a word on standard error.
  void LoadDocument(const char* action, const std::string& document) {
    Load({action, tree.Write("a.json", document), "/r"});
  }

  // That the command is refused where it is, and answered where it is not.
  void ExpectRefusalShown(const std::string& command) {
    EXPECT_EQ(Shown(command).rfind("NOPERM ", 0), 0U) << command;
    Allow();
    EXPECT_EQ(Shown(command).find("NOPERM"), std::string::npos) << command;
  }
};

TEST_F(StatusZero, AGoodLoadIsAnsweredWithoutAnError) {
  LoadDocument("create", R"({"A": {"x": 1}, "B": [1, {"y": [2]}], "C": {"@odata.id": "/l"}})");
  LoadDocument("update", R"({"A": [1], "B": {"@odata.id": "/m"}, "C": {"x": 1}, "D": null})");
  EXPECT_EQ(Shown("redis-cli info errorstats | grep errorstat_"), "");
}

// STATUS 0 DOES NOT MEAN: KEYS or DEL is refused
TEST_F(StatusZero, WithoutKeysOrDelEveryCreateAppendsToEveryArrayAndKeepsOldMembers) {
  const std::vector<std::pair<std::string, std::string>> refusals = {
      {"keys", "redis-cli keys /none"}, {"del", "redis-cli del /none"}};
  for (const auto& [command, look] : refusals) {
    SCOPED_TRACE(command);
    (void)store.Run("FLUSHALL");
    LoadDocument("create", R"({"Old": 1, "A": [1, 2]})");
    Refuse(command);
    LoadDocument("create", R"({"A": [3]})");
    LoadDocument("create", R"({"A": [3]})");
    ExpectRefusalShown(look);
    EXPECT_EQ(store.Dump(),
              "list | &&/r/A | 1\n"
              "list | &&/r/A | 2\n"
              "list | &&/r/A | 3\n"
              "list | &&/r/A | 3\n"
              "hash | /r | &&Array A &&/r/A | \n"
              "hash | /r | Old | 1\n");
  }
}

// What an update does to a store without one of the commands by which it asks what is there.
struct Refusal {
  std::string command;
  std::string look;      // what the page says to look at
  std::string document;  // of the update
  std::string dump;
};

// STATUS 0 DOES NOT MEAN: TYPE is refused
// STATUS 0 DOES NOT MEAN: SCAN is refused
// STATUS 0 DOES NOT MEAN: HSCAN is refused
// STATUS 0 DOES NOT MEAN: HEXISTS is refused
TEST_F(StatusZero, AnUpdateThatMayNotAskLeavesOldBesideNewOrNeither) {
  const std::string first =
      R"({"O": {"x": 1, "y": {"z": 1}}, "L": [{"p": 1}, 2], "R": {"@odata.id": "/l"}, "last": 0})";
  const std::string others = R"({"O": [7], "L": 1, "R": [3], "last": 1})";
  const std::vector<Refusal> refusals = {
      // Objects, arrays and links stay as they were; a scalar stands beside the old array.
      {"type", "redis-cli type /none", others,
       "list | &&/r/L | &&Object &&/r/L/0\n"
       "list | &&/r/L | 2\n"
       "hash | &&/r/L/0 | p | 1\n"
       "hash | &&/r/O | &&Object y &&/r/O/y | \n"
       "hash | &&/r/O | x | 1\n"
       "hash | &&/r/O/y | z | 1\n"
       "hash | /r | &&Array L &&/r/L | \n"
       "hash | /r | &&Object O &&/r/O | \n"
       "hash | /r | &&ObjectRef R /l | \n"
       "hash | /r | L | 1\n"
       "hash | /r | last | 1\n"},
      // The old key is gone, and its record and what lies below it stay.
      {"scan", "redis-cli scan 0 count 1", others,
       "hash | &&/r/L/0 | p | 1\n"
       "hash | &&/r/O/y | z | 1\n"
       "list | &&/r/R | 3\n"
       "hash | /r | &&Array L &&/r/L | \n"
       "hash | /r | &&Array R &&/r/R | \n"
       "hash | /r | &&Object O &&/r/O | \n"
       "hash | /r | L | 1\n"
       "hash | /r | last | 1\n"},
      // Where nothing was found to be removed the link is stored as an object at the key it names.
      {"scan", "redis-cli scan 0 count 1", R"({"O": {"@odata.id": "/m"}, "last": 1})",
       "list | &&/r/L | &&Object &&/r/L/0\n"
       "list | &&/r/L | 2\n"
       "hash | &&/r/L/0 | p | 1\n"
       "hash | &&/r/O/y | z | 1\n"
       "hash | /m | @odata.id | \"/m\"\n"
       "hash | /r | &&Array L &&/r/L | \n"
       "hash | /r | &&Object O /m | \n"
       "hash | /r | &&ObjectRef R /l | \n"
       "hash | /r | last | 1\n"},
      // Arrays are rebuilt whole, so an unchanged one loses its key as well.
      {"scan", "redis-cli scan 0 count 1", R"({"L": [{"p": 1}, 2], "last": 1})",
       "hash | &&/r/L/0 | p | 1\n"
       "hash | &&/r/O | &&Object y &&/r/O/y | \n"
       "hash | &&/r/O | x | 1\n"
       "hash | &&/r/O/y | z | 1\n"
       "hash | /r | &&Array L &&/r/L | \n"
       "hash | /r | &&Object O &&/r/O | \n"
       "hash | /r | &&ObjectRef R /l | \n"
       "hash | /r | last | 1\n"},
      // The old object is gone and the new array not there; the old link stays.
      {"hscan", "redis-cli hscan /none 0", others,
       "hash | /r | &&ObjectRef R /l | \n"
       "hash | /r | L | 1\n"
       "hash | /r | last | 1\n"},
      // So is the record of an object that stays one.
      {"hscan", "redis-cli hscan /none 0", R"({"O": {"x": 2}, "last": 1})",
       "list | &&/r/L | &&Object &&/r/L/0\n"
       "list | &&/r/L | 2\n"
       "hash | &&/r/L/0 | p | 1\n"
       "hash | &&/r/O | &&Object y &&/r/O/y | \n"
       "hash | &&/r/O | x | 1\n"
       "hash | &&/r/O/y | z | 1\n"
       "hash | /r | &&Array L &&/r/L | \n"
       "hash | /r | &&ObjectRef R /l | \n"
       "hash | /r | last | 1\n"},
      // The object's hashes stay, without a record.
      {"hexists", "redis-cli hexists /none x", R"({"O": {"@odata.id": "/m"}, "last": 1})",
       "list | &&/r/L | &&Object &&/r/L/0\n"
       "list | &&/r/L | 2\n"
       "hash | &&/r/L/0 | p | 1\n"
       "hash | &&/r/O | &&Object y &&/r/O/y | \n"
       "hash | &&/r/O | x | 1\n"
       "hash | &&/r/O/y | z | 1\n"
       "hash | /r | &&Array L &&/r/L | \n"
       "hash | /r | &&ObjectRef O /m | \n"
       "hash | /r | &&ObjectRef R /l | \n"
       "hash | /r | last | 1\n"},
  };
  for (const Refusal& refusal : refusals) {
    SCOPED_TRACE(refusal.command);
    (void)store.Run("FLUSHALL");
    LoadDocument("create", first);
    Refuse(refusal.command);
    LoadDocument("update", refusal.document);
    ExpectRefusalShown(refusal.look);
    EXPECT_EQ(store.Dump(), refusal.dump);
  }
}

// STATUS 0 DOES NOT MEAN: TYPE is refused
// STATUS 0 DOES NOT MEAN: SCAN is refused
// STATUS 0 DOES NOT MEAN: HSCAN is refused
TEST_F(StatusZero, ALinkThatIsNotWrittenKeepsWhatItNamesFromBeingStored) {
  // The link first, then what it names.
  const std::string document =
      R"({"O": {"@odata.id": "/l"}, "P": {"@odata.id": "/l", "y": 1}, "last": 1})";
  for (const char* command : {"type", "scan", "hscan"}) {
    SCOPED_TRACE(command);
    (void)store.Run("FLUSHALL");
    LoadDocument("create", R"({"O": {"x": 1}, "last": 0})");
    Refuse(command);
    LoadDocument("update", document);
    Allow();
    EXPECT_EQ(store.Run("HEXISTS | /l | y").integer, 0);
  }
  LoadDocument("update", document);
  EXPECT_EQ(store.Run("HEXISTS | /l | y").integer, 1);
}

// STATUS 0 DOES NOT MEAN: KEYS or DEL is refused
TEST_F(StatusZero, ACommandThatWasRefusedForAMomentIsCountedThoughItAnswersAgain) {
  LoadDocument("create", R"({"A": [1]})");
  plan = [this](Recorder& recorder) {
    recorder.Before(0, [this] { Refuse("keys"); });
    recorder.Before(3, [this] { Allow(); });
  };
  LoadDocument("create", R"({"A": [1]})");
  EXPECT_EQ(Shown("redis-cli lrange KEY 0 -1", "&&/r/A"), "1\n1\n");
  EXPECT_EQ(Shown("redis-cli keys /none").find("NOPERM"), std::string::npos);
  EXPECT_NE(Shown("redis-cli info errorstats").find("errorstat_NOPERM:count=3"), std::string::npos);
}

// Scalars "m0" onwards, which make more than one batch, and an array.
std::string ManyMembers(int count) {
  std::string text = "{";
  for (int i = 0; i < count; ++i) text += "\"m" + std::to_string(i) + "\": 1, ";
  return text + R"("L": [1]})";
}

// STATUS 0 DOES NOT MEAN: Some writes are refused
TEST_F(StatusZero, WritesThatAreRefusedForAMomentAreMissingAndSaidOnStandardErrorOnly) {
  plan = [this](Recorder& recorder) {
    recorder.Before(3, [this] { (void)store.Run("CONFIG | SET | maxmemory | 1"); });
    recorder.Before(4, [this] { (void)store.Run("CONFIG | SET | maxmemory | 0"); });
  };
  const Finished run = Ostrafel({"create", tree.Write("a.json", ManyMembers(2002)), "/r"});
  (void)store.Run("CONFIG | SET | maxmemory | 0");
  EXPECT_EQ(run.out, kSuccessLine);
  EXPECT_EQ(run.err,
            "Some errors occur while creating hash data into database\n"
            "The data in database would be incorrect\n");
  EXPECT_EQ(run.status, 0);
  // The batch that was refused and the member that would not fit into it.
  EXPECT_EQ(store.Dump(),
            "list | &&/r/L | 1\n"
            "hash | /r | &&Array L &&/r/L | \n"
            "hash | /r | m2001 | 1\n");
  EXPECT_NE(Shown("redis-cli info errorstats").find("errorstat_OOM:count=2000"), std::string::npos);
}

// STATUS 0 DOES NOT MEAN: Some writes are refused
TEST_F(StatusZero, WritesToAKeyOfAnotherTypeAreMissingWhenOthersAreSentLater) {
  (void)store.Run("RPUSH | /other | 1");
  const std::string others = ManyMembers(2001).substr(1);
  const std::string document = R"({"O": {"@odata.id": "/other", "x": 1}, )" + others;
  const Finished run = Ostrafel({"create", tree.Write("a.json", document), "/r"});
  EXPECT_EQ(run.out, kSuccessLine);
  EXPECT_EQ(run.err,
            "Some errors occur while creating hash data into database\n"
            "The data in database would be incorrect\n");
  EXPECT_EQ(run.status, 0);
  EXPECT_EQ(store.Run("LLEN | /other").integer, 1);
  // All but the member that would not fit into the batch with the record and the two of the object.
  EXPECT_EQ(store.Run("HLEN | /r").integer, 1 + 2000 + 1);
  EXPECT_EQ(store.Run("HEXISTS | /r | m1997").integer, 0);
  EXPECT_NE(Shown("redis-cli info errorstats").find("errorstat_WRONGTYPE:count="),
            std::string::npos);
}

// STATUS 0 DOES NOT MEAN: Redis evicts keys
TEST_F(StatusZero, KeysThatRedisEvictsAreMissing) {
  constexpr int kObjects = 6000;
  const std::string info = store.Run("INFO | memory").text;
  const std::string name = "used_memory:";
  const long used = std::stol(info.substr(info.find(name) + name.size()));
  const ScopedSetting policy(&store, "maxmemory-policy", "allkeys-lru");
  const ScopedSetting memory(&store, "maxmemory", std::to_string(used + 3'000'000));
  std::string document = "{";
  for (int i = 0; i < kObjects; ++i) {
    document += (i == 0 ? "\"m" : ", \"m") + std::to_string(i) + R"(": {"v": ")" +
                std::string(1000, 'v') + "\"}";
  }
  LoadDocument("create", document + "}");
  const long long stored = store.Run("DBSIZE").integer;
  EXPECT_LT(stored, kObjects + 1);
  const std::string name_of_evicted = "evicted_keys:";
  const std::string evicted = Shown("redis-cli info stats | grep evicted_keys");
  ASSERT_EQ(evicted.rfind(name_of_evicted, 0), 0U);
  EXPECT_GE(std::stoll(evicted.substr(name_of_evicted.size())), kObjects + 1 - stored);
  EXPECT_EQ(Shown("redis-cli config get maxmemory-policy"), "maxmemory-policy\nallkeys-lru\n");
}

// STATUS 0 DOES NOT MEAN: Somebody empties or swaps the database
TEST_F(StatusZero, WhatSomebodyElseRemovesDuringTheRunIsMissing) {
  for (const char* command : {"FLUSHALL", "FLUSHDB", "SWAPDB | 0 | 1"}) {
    SCOPED_TRACE(command);
    (void)store.Run("FLUSHALL");
    (void)store.Run("CONFIG | RESETSTAT");
    EXPECT_EQ(Shown("redis-cli info commandstats | grep -E 'flush|swapdb'"), "");
    // Between the hashes and the lists.
    plan = [&](Recorder& recorder) {
      recorder.Before(4, [&, command] { (void)store.Run(std::string(command)); });
    };
    LoadDocument("create", R"({"A": [1], "B": {"x": 1}})");
    EXPECT_EQ(store.Dump(), "list | &&/r/A | 1\n");
    EXPECT_NE(Shown("redis-cli info commandstats | grep -E 'flush|swapdb'"), "");
  }
}

// A document, the URI that it is loaded to, and a list that it makes.
struct Outside {
  std::string document;
  std::string uri;
  std::string list;
};

// STATUS 0 DOES NOT MEAN: A key lies outside the URI
TEST_F(StatusZero, ACreateAppendsToTheArraysThatItDoesNotRemove) {
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
      Load({"create", tree.Write("a.json", load.document), load.uri});
      EXPECT_EQ(Shown("redis-cli lrange KEY 0 -1", load.list), shown);
    }
  }
}

// STATUS 0 DOES NOT MEAN: No file has the name
TEST_F(StatusZero, ACreateThatFindsNoFileLeavesNothing) {
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
TEST_F(StatusZero, WhatABrokenLinkShouldLeadToIsMissing) {
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
TEST_F(StatusZero, AMemberBeforeTheLastIsMissing) {
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
TEST_F(StatusZero, AnArrayThatBecomesAnObjectOfObjectsIsStoredUpToTheFirst) {
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
TEST_F(StatusZero, WhatLiesBelowAnArrayThatBeginsWithAScalarStays) {
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
TEST_F(StatusZero, ANameWithACharacterOfPatternsRemovesOrSparesOtherMembers) {
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
TEST_F(StatusZero, ANumberThatDoesNotFitIsTheNearestThatDoes) {
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
TEST_F(StatusZero, MembersOfOneNameOrKeyMeet) {
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
TEST_F(StatusZero, OfTwoFilesOrObjectsWithOneKeyTheFirstReadIsStored) {
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
