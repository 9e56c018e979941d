// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// Runs that end with status 0 although the server has refused, lost or removed a part. Ostrafel(1)
// lists such runs under STATUS 0 DOES NOT MEAN; a comment above each test names the case as that
// page does, and tests/man/manual_test looks for it. What the page says to look at is run here.
#include <map>
#include <string>
#include <vector>

#include "support/scoped_setting.h"
#include "system/system_fixture.h"

namespace {

class StatusZeroByServer : public SystemTest {
 protected:
  StatusZeroByServer() { (void)store.Run("CONFIG | RESETSTAT"); }
  ~StatusZeroByServer() override { Allow(); }

  void Refuse(const std::string& command) {
    (void)store.Run(model::Command{"ACL", "SETUSER", "default", "-" + command});
  }
  void Allow() { (void)store.Run("ACL | SETUSER | default | +@all"); }

  // That what the page says to look with shows the refusal of a command, and only that.
  void ExpectRefusalShown(const std::string& command) {
    const std::map<std::string, std::string> looks = {
        {"keys", "redis-cli keys /none"},     {"del", "redis-cli del /none"},
        {"type", "redis-cli type /none"},     {"scan", "redis-cli scan 0 count 1"},
        {"hscan", "redis-cli hscan /none 0"}, {"hexists", "redis-cli hexists /none x"},
    };
    const std::string& look = looks.at(command);
    EXPECT_EQ(Shown(look).rfind("NOPERM ", 0), 0U) << look;
    Allow();
    EXPECT_EQ(Shown(look).find("NOPERM"), std::string::npos) << look;
  }
};

TEST_F(StatusZeroByServer, AGoodLoadIsAnsweredWithoutAnError) {
  LoadDocument("create", R"({"A": {"x": 1}, "B": [1, {"y": [2]}], "C": {"@odata.id": "/l"}})");
  LoadDocument("update", R"({"A": [1], "B": {"@odata.id": "/m"}, "C": {"x": 1}, "D": null})");
  EXPECT_EQ(Shown("redis-cli info errorstats | grep errorstat_"), "");
}

// STATUS 0 DOES NOT MEAN: KEYS or DEL is refused
TEST_F(StatusZeroByServer, WithoutKeysOrDelEveryCreateAppendsToEveryArrayAndKeepsOldMembers) {
  for (const char* command : {"keys", "del"}) {
    SCOPED_TRACE(command);
    (void)store.Run("FLUSHALL");
    LoadDocument("create", R"({"Old": 1, "A": [1, 2]})");
    Refuse(command);
    LoadDocument("create", R"({"A": [3]})");
    LoadDocument("create", R"({"A": [3]})");
    ExpectRefusalShown(command);
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
  std::string document;  // of the update
  std::string dump;
};

// STATUS 0 DOES NOT MEAN: TYPE is refused
// STATUS 0 DOES NOT MEAN: SCAN is refused
// STATUS 0 DOES NOT MEAN: HSCAN is refused
// STATUS 0 DOES NOT MEAN: HEXISTS is refused
TEST_F(StatusZeroByServer, AnUpdateThatMayNotAskLeavesOldBesideNewOrNeither) {
  const std::string first =
      R"({"O": {"x": 1, "y": {"z": 1}}, "L": [{"p": 1}, 2], "R": {"@odata.id": "/l"}, "last": 0})";
  const std::string others = R"({"O": [7], "L": 1, "R": [3], "last": 1})";
  // Where an update leaves them as they were.
  const std::string list =
      "list | &&/r/L | &&Object &&/r/L/0\n"
      "list | &&/r/L | 2\n"
      "hash | &&/r/L/0 | p | 1\n";
  const std::string object =
      "hash | &&/r/O | &&Object y &&/r/O/y | \n"
      "hash | &&/r/O | x | 1\n"
      "hash | &&/r/O/y | z | 1\n";
  const std::vector<Refusal> refusals = {
      // Objects, arrays and links stay as they were; a scalar stands beside the old array.
      {"type", others,
       list + object +
           "hash | /r | &&Array L &&/r/L | \n"
           "hash | /r | &&Object O &&/r/O | \n"
           "hash | /r | &&ObjectRef R /l | \n"
           "hash | /r | L | 1\n"
           "hash | /r | last | 1\n"},
      // The old key is gone, and its record and what lies below it stay.
      {"scan", others,
       "hash | &&/r/L/0 | p | 1\n"
       "hash | &&/r/O/y | z | 1\n"
       "list | &&/r/R | 3\n"
       "hash | /r | &&Array L &&/r/L | \n"
       "hash | /r | &&Array R &&/r/R | \n"
       "hash | /r | &&Object O &&/r/O | \n"
       "hash | /r | L | 1\n"
       "hash | /r | last | 1\n"},
      // Where nothing was found to be removed the link is stored as an object at the key it names.
      {"scan", R"({"O": {"@odata.id": "/m"}, "last": 1})",
       list + "hash | &&/r/O/y | z | 1\n"
              "hash | /m | @odata.id | \"/m\"\n"
              "hash | /r | &&Array L &&/r/L | \n"
              "hash | /r | &&Object O /m | \n"
              "hash | /r | &&ObjectRef R /l | \n"
              "hash | /r | last | 1\n"},
      // Arrays are rebuilt whole, so an unchanged one loses its key as well.
      {"scan", R"({"L": [{"p": 1}, 2], "last": 1})",
       "hash | &&/r/L/0 | p | 1\n" + object +
           "hash | /r | &&Array L &&/r/L | \n"
           "hash | /r | &&Object O &&/r/O | \n"
           "hash | /r | &&ObjectRef R /l | \n"
           "hash | /r | last | 1\n"},
      // The old object is gone and the new array not there; the old link stays.
      {"hscan", others,
       "hash | /r | &&ObjectRef R /l | \n"
       "hash | /r | L | 1\n"
       "hash | /r | last | 1\n"},
      // So is the record of an object that stays one.
      {"hscan", R"({"O": {"x": 2}, "last": 1})",
       list + object +
           "hash | /r | &&Array L &&/r/L | \n"
           "hash | /r | &&ObjectRef R /l | \n"
           "hash | /r | last | 1\n"},
      // The object's hashes stay, without a record.
      {"hexists", R"({"O": {"@odata.id": "/m"}, "last": 1})",
       list + object +
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
    ExpectRefusalShown(refusal.command);
    EXPECT_EQ(store.Dump(), refusal.dump);
  }
}

// STATUS 0 DOES NOT MEAN: TYPE is refused
// STATUS 0 DOES NOT MEAN: SCAN is refused
// STATUS 0 DOES NOT MEAN: HSCAN is refused
TEST_F(StatusZeroByServer, ALinkThatIsNotWrittenKeepsWhatItNamesFromBeingStored) {
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
TEST_F(StatusZeroByServer, ACommandThatWasRefusedForAMomentIsCountedThoughItAnswersAgain) {
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
TEST_F(StatusZeroByServer, WritesThatAreRefusedForAMomentAreMissingAndSaidOnStandardErrorOnly) {
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
TEST_F(StatusZeroByServer, WritesToAKeyOfAnotherTypeAreMissingWhenOthersAreSentLater) {
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
TEST_F(StatusZeroByServer, KeysThatRedisEvictsAreMissing) {
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
TEST_F(StatusZeroByServer, WhatSomebodyElseRemovesDuringTheRunIsMissing) {
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

}  // namespace
