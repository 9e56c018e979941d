// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// The commands that --apply sends, and what it prints.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "diff/apply_fixture.h"

namespace {

const std::string kDocument =
    R"({"A": 1, "B": "two", "C": true, "L": [1, 2, 3, 4, 5, 4], "O": {"x": 1, "y": 2}})";

class AppliedCommands : public ApplyTest {
 protected:
  AppliedCommands() : file(tree.Write("a.json", kDocument)) {
    Load({"create", file, "/r"});
    loaded = store.Dump();
  }

  // Loads the document, has others change the store and applies. Returns the commands of the
  // transaction.
  std::string CommandsAfter(const std::vector<std::string>& changes,
                            const std::vector<std::string>& options = {}) {
    Load({"create", file, "/r"});
    for (const std::string& change : changes) (void)store.Run(change);
    std::vector<std::string> arguments = {"--apply", file, "/r"};
    arguments.insert(arguments.begin(), options.begin(), options.end());
    finished = RecordedDiff(arguments);
    EXPECT_EQ(finished.err, "");
    EXPECT_EQ(finished.status, 0);
    const std::size_t exec = ExecFlight();
    return exec < recording.flights.size() ? Describe({recording.flights[exec - 1]}) : "";
  }

  void ExpectCommands(const std::vector<std::string>& changes, const std::string& commands) {
    SCOPED_TRACE(changes.front());
    EXPECT_EQ(CommandsAfter(changes), commands);
    EXPECT_EQ(store.Dump(), loaded);
  }

  Finished finished;
  const std::string file;
  std::string loaded;
};

TEST_F(AppliedCommands, ForFieldsAreOneThatWritesAndOneThatRemoves) {
  ExpectCommands({"HSET | /r | A | 2"}, "HSET | /r | A | 1\n");
  ExpectCommands({"HDEL | /r | A"}, "HSET | /r | A | 1\n");
  ExpectCommands({"HSET | /r | Z | 1 | Y | 1"}, "HDEL | /r | Y | Z\n");
  ExpectCommands({"HDEL | /r | A", "HSET | /r | B | x | Z | 1"},
                 "HSET | /r | A | 1 | B | \"two\"\nHDEL | /r | Z\n");
}

TEST_F(AppliedCommands, ForElementsAreFew) {
  ExpectCommands({"LSET | &&/r/L | 1 | x"}, "LSET | &&/r/L | 1 | 2\n");
  ExpectCommands({"LSET | &&/r/L | 1 | x", "LSET | &&/r/L | 4 | x"},
                 "LSET | &&/r/L | 4 | 5\nLSET | &&/r/L | 1 | 2\n");
  ExpectCommands({"RPUSH | &&/r/L | x | y"}, "LTRIM | &&/r/L | 0 | 5\n");
  ExpectCommands({"LPUSH | &&/r/L | x | y"}, "LTRIM | &&/r/L | -6 | -1\n");
  ExpectCommands({"RPOP | &&/r/L"}, "RPUSH | &&/r/L | 4\n");
  ExpectCommands({"LPOP | &&/r/L", "LPOP | &&/r/L"}, "LPUSH | &&/r/L | 2 | 1\n");
  ExpectCommands({"LINSERT | &&/r/L | BEFORE | 3 | x"}, "LREM | &&/r/L | 1 | x\n");
  ExpectCommands({"LREM | &&/r/L | 1 | 3"}, "LINSERT | &&/r/L | BEFORE | 4 | 3\n");
  ExpectCommands({"LINSERT | &&/r/L | BEFORE | 2 | x", "LINSERT | &&/r/L | BEFORE | 2 | y"},
                 "LTRIM | &&/r/L | -5 | -1\nLPUSH | &&/r/L | 1\n");
  ExpectCommands({"DEL | &&/r/L", "RPUSH | &&/r/L | a | b | c | d | e | f"},
                 "DEL | &&/r/L\nRPUSH | &&/r/L | 1 | 2 | 3 | 4 | 5 | 4\n");
  // LREM and LINSERT would find another 4.
  ExpectCommands({"RPUSH | &&/r/L | 4"}, "LTRIM | &&/r/L | 0 | 5\n");
  ExpectCommands({"LREM | &&/r/L | 1 | 5"}, "LTRIM | &&/r/L | 0 | 3\nRPUSH | &&/r/L | 5 | 4\n");
}

TEST_F(AppliedCommands, ForElementsFarApartLeaveWhatIsBetweenThem) {
  const std::string numbers =
      tree.Write("many.json", R"({"L": [10, 11, 12, 13, 14, 15, 16, 17, 18, 19, 20, 21, 22]})");
  Load({"create", numbers, "/r"});
  loaded = store.Dump();
  for (const char* change : {"LREM | &&/r/L | 1 | 11", "LINSERT | &&/r/L | BEFORE | 15 | x",
                             "LSET | &&/r/L | 10 | y", "LREM | &&/r/L | 1 | 22"}) {
    (void)store.Run(change);
  }
  EXPECT_EQ(RecordedDiff({"--apply", numbers, "/r"}).status, 0);
  EXPECT_EQ(Describe({recording.flights[ExecFlight() - 1]}),
            "RPUSH | &&/r/L | 22\n"
            "LSET | &&/r/L | 10 | 20\n"
            "LREM | &&/r/L | 1 | x\n"
            "LINSERT | &&/r/L | BEFORE | 12 | 11\n");
  EXPECT_EQ(store.Dump(), loaded);
}

TEST_F(AppliedCommands, ForKeysWriteOrRemoveThem) {
  ExpectCommands({"DEL | &&/r/L"}, "RPUSH | &&/r/L | 1 | 2 | 3 | 4 | 5 | 4\n");
  ExpectCommands({"DEL | &&/r/O"}, "HSET | &&/r/O | x | 1 | y | 2\n");
  ExpectCommands({"SET | /r/text | x", "RPUSH | &&/r/list | x"},
                 "DEL | &&/r/list\nDEL | /r/text\n");
  ExpectCommands({"SET | &&/r/O | x"}, "DEL | &&/r/O\nHSET | &&/r/O | x | 1 | y | 2\n");
  ExpectCommands({"DEL | &&/r/O", "SADD | &&/r/O | x"},
                 "DEL | &&/r/O\nHSET | &&/r/O | x | 1 | y | 2\n");
}

TEST_F(AppliedCommands, TouchNothingElse) {
  ExpectCommands({"HSET | /r | A | 2", "SET | /elsewhere | x", "DEL | /elsewhere"},
                 "HSET | /r | A | 1\n");
  EXPECT_EQ(CommandsAfter({"SET | /elsewhere | x"}), "");
  EXPECT_EQ(finished.out, "equal: 1 file, 3 keys, 13 records\n");
  EXPECT_TRUE(Writes().empty());
  EXPECT_EQ(store.Run("GET | /elsewhere").text, "x");
}

TEST_F(AppliedCommands, LeaveWhatOnlyTheStoreHas) {
  const std::vector<std::string> changes = {"HSET | /r | A | 2 | Z | 1", "SET | /r/text | x",
                                            "LINSERT | &&/r/L | BEFORE | 3 | x",
                                            "LSET | &&/r/L | 0 | y"};
  EXPECT_EQ(CommandsAfter(changes, {"--no-extra"}), "LSET | &&/r/L | 0 | 1\nHSET | /r | A | 1\n");
  EXPECT_EQ(store.Run("HGET | /r | Z").text, "1");
  EXPECT_EQ(store.Run("LINDEX | &&/r/L | 2").text, "x");
  EXPECT_EQ(store.Run("GET | /r/text").text, "x");
  EXPECT_EQ(CommandsAfter({"LREM | &&/r/L | 1 | 3", "RPUSH | &&/r/L | x | y"}, {"--no-extra"}),
            "LINSERT | &&/r/L | BEFORE | 4 | 3\n");
}

TEST_F(AppliedCommands, LeaveWhatIsIgnored) {
  const std::vector<std::string> changes = {"HSET | /r | A | 2 | B | 2", "HSET | &&/r/O | x | 2",
                                            "LSET | &&/r/L | 0 | y", "LSET | &&/r/L | 5 | y"};
  EXPECT_EQ(CommandsAfter(changes, {"--ignore=&&/r/L", "--ignore=/B"}),
            "HSET | &&/r/O | x | 1\nHSET | /r | A | 1\n");
  EXPECT_EQ(store.Run("HGET | /r | B").text, "2");
  EXPECT_EQ(CommandsAfter(changes, {"--ignore=/L/0", "--ignore=/[AO]*"}),
            "LSET | &&/r/L | 5 | 4\nHSET | /r | B | \"two\"\n");
  EXPECT_EQ(store.Run("LINDEX | &&/r/L | 0").text, "y");
}

TEST_F(AppliedCommands, AreCountedByKeysAndRecords) {
  (void)CommandsAfter({"HSET | /r | A | 2 | Z | 1", "DEL | &&/r/O", "RPUSH | &&/r/O | a | b | c"});
  EXPECT_EQ(finished.out, "changed 2 keys, 7 records\n");
  (void)CommandsAfter({"HSET | /r | A | 2"}, {"--quiet"});
  EXPECT_EQ(finished.out, "");
}

// A key that is changed in part keeps its time: that is nothing that a load says.
TEST_F(AppliedCommands, LeaveTheTimeOfAKeyThatStays) {
  (void)CommandsAfter({"HSET | /r | A | 2", "EXPIRE | /r | 1000", "DEL | &&/r/L",
                       "SET | &&/r/L | x", "EXPIRE | &&/r/L | 1000", "EXPIRE | &&/r/O | 1000"});
  EXPECT_GT(store.Run("TTL | /r").integer, 0);
  EXPECT_GT(store.Run("TTL | &&/r/O").integer, 0);
  EXPECT_EQ(store.Run("TTL | &&/r/L").integer, -1);
}

TEST_F(AppliedCommands, OfLongValuesAreCut) {
  std::string document = R"({"L": [0)";
  for (int i = 1; i < 100000; ++i) document += "," + std::to_string(i);
  document += R"(], "O": {"0": 0)";
  for (int i = 1; i < 100000; ++i) document += ",\"" + std::to_string(i) + "\":0";
  const std::string long_file = tree.Write("long.json", document + "}}");
  const Finished applied = Diff({"--apply", long_file, "/long"});
  EXPECT_EQ(applied.out, "changed 3 keys, 200,002 records\n") << applied.err;
  EXPECT_EQ(store.Run("LLEN | &&/long/L").integer, 100000);
  EXPECT_EQ(store.Run("LINDEX | &&/long/L | -1").text, "99999");
  EXPECT_EQ(store.Run("HLEN | &&/long/O").integer, 100000);
  (void)store.Run("LSET | &&/long/L | 50000 | x");
  (void)store.Run("LREM | &&/long/L | 1 | 70000");
  (void)store.Run("HDEL | &&/long/O | 77");
  EXPECT_EQ(Diff({"--apply", long_file, "/long"}).out, "changed 2 keys, 3 records\n");
}

}  // namespace
