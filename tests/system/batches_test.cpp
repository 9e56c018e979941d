// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// When the batches of a run are sent, in which order, and what a failed one leaves behind.
#include <string>

#include "support/scoped_setting.h"
#include "system/system_fixture.h"

namespace {

constexpr const char* kFinalFailure = ">>> Fail to write rest of data into redis\n";
constexpr const char* kWarning = "The data in database would be incorrect\n";
const std::string kHashMessage =
    std::string("Some errors occur while creating hash data into database\n") + kWarning;
const std::string kListMessage =
    std::string("Some errors occur while creating list data into database\n") + kWarning;
const std::string kRemovalMessage =
    std::string("Some errors occur while removing data from database\n") + kWarning;

class Batches : public SystemTest {
 protected:
  // A document of this many scalar members, "m0" onwards, followed by more members.
  static std::string Members(int count, const std::string& more) {
    std::string text = "{";
    for (int i = 0; i < count; ++i) text += "\"m" + std::to_string(i) + "\": 1, ";
    return text + more + "}";
  }

  // An array of this many numbers.
  static std::string Numbers(int count) {
    std::string text = "[";
    for (int i = 0; i < count; ++i) text += (i == 0 ? "" : ", ") + std::to_string(i);
    return text + "]";
  }

  // The number of commands in each flight, after those that removed the tree.
  std::vector<std::size_t> Sizes() const {
    std::vector<std::size_t> sizes;
    for (const model::Flight& flight : recording.flights) {
      if (flight.commands.front().front() != "keys") sizes.push_back(flight.commands.size());
    }
    return sizes;
  }

  using Size = std::vector<std::size_t>;
};

TEST_F(Batches, TwoThousandFieldsAreSentAtTheEnd) {
  LoadDocument("create", Members(1999, R"("last": 1)"));
  EXPECT_EQ(Sizes(), (Size{2000}));
}

TEST_F(Batches, The2001stFieldSendsTheFirst2000) {
  LoadDocument("create", Members(2000, R"("last": 1)"));
  EXPECT_EQ(Sizes(), (Size{2000, 1}));
  EXPECT_EQ(store.Run("HLEN | /r").integer, 2001);
}

TEST_F(Batches, The2001stValueSendsTheFirst2000AndNoFields) {
  LoadDocument("create", R"({"A": 1, "L": )" + Numbers(2001) + "}");
  EXPECT_EQ(Sizes(), (Size{2000, 2, 1}));
  EXPECT_EQ(recording.flights[3].commands.front().front(), "RPUSH");
  EXPECT_EQ(recording.flights[4].commands.front().front(), "HSET");
  EXPECT_EQ(recording.flights[5].commands.front(), (model::Command{"RPUSH", "&&/r/L", "2000"}));
}

TEST_F(Batches, AFieldQueuedTwiceIsSentOnceAndCountedTwice) {
  // Two members whose records have the same name and target.
  Load({"create",
        tree.Write("a.json", Members(1999, R"("O": {"@odata.id": "/x", "y": 1}, "P": 1)")), "/r"});
  EXPECT_EQ(Sizes(), (Size{2000, 3}));
}

TEST_F(Batches, AFailedFinalHashFlushKeepsTheListsUnsent) {
  (void)store.Run("SET | other | x");
  const std::string file = tree.Write("a.json", R"({"@odata.id": "other", "L": [1]})");
  ExpectFailure({"create", file, "/r"}, kHashMessage + kFinalFailure);
  EXPECT_EQ(store.Dump(), "string | other | x\n");
  EXPECT_EQ(Sizes(), (Size{2}));
}

TEST_F(Batches, AFailedFinalListFlushLeavesTheHashesStored) {
  (void)store.Run("SET | &&other/L | x");
  const std::string file = tree.Write("a.json", R"({"@odata.id": "other", "L": [1, 2]})");
  ExpectFailure({"create", file, "/r"}, kListMessage + kFinalFailure);
  EXPECT_EQ(store.Dump(),
            "string | &&other/L | x\n"
            "hash | other | &&Array L &&other/L | \n"
            "hash | other | @odata.id | \"other\"\n");
}

TEST_F(Batches, AFailedFinalRemovalKeepsEverythingUnsent) {
  (void)store.Run("SET | &&/r | x");
  const std::string file = tree.Write("a.json", R"({"&&ETag": "e", "A": 1})");
  // /r itself holds a text: the links of A cannot be searched, the removals of its fields fail.
  (void)store.Run("SET | /r | x");
  ExpectFailure({"update", file, "/r"}, kRemovalMessage + kFinalFailure);
  EXPECT_EQ(store.Dump(), "string | &&/r | x\nstring | /r | x\n");
}

TEST_F(Batches, AServerOutOfMemoryFailsTheFinalFlush) {
  const ScopedSetting memory(&store, "maxmemory", "1");
  const std::string file = tree.Write("a.json", R"({"A": 1})");
  ExpectFailure({"create", file, "/r"}, kHashMessage + kFinalFailure);
}

TEST_F(Batches, AReplicaThatOnlyReadsFailsTheFinalFlush) {
  (void)store.Run("REPLICAOF | 127.0.0.1 | 1");
  const std::string file = tree.Write("a.json", R"({"A": 1})");
  ExpectFailure({"create", file, "/r"}, kHashMessage + kFinalFailure);
  (void)store.Run("REPLICAOF | NO | ONE");
}

TEST_F(Batches, AFailedFlushInTheMiddleStopsANestedObject) {
  (void)store.Run("SET | other | in the way");
  const std::string file = tree.Write("a.json", R"({"A": 1, "O": {"@odata.id": "other", )" +
                                                    Members(2000, R"("last": 1})").substr(1));
  ExpectFailure({"create", file, "/r"},
                kHashMessage + ">>> Error occurs while parsing file " + file + "\n");
  // What sorts before the refused key and what comes after it in the same flush is stored.
  EXPECT_EQ(store.Dump(),
            "hash | /r | &&Object O other | \n"
            "hash | /r | A | 1\n"
            "string | other | in the way\n");
}

TEST_F(Batches, AFailedFlushInTheMiddleLosesOneMemberAndTheNextIsQueued) {
  (void)store.Run("SET | other | in the way");
  const std::string file =
      tree.Write("a.json", R"({"@odata.id": "other", )" + Members(2000, R"("last": 1)").substr(1));
  // The 2001st member fails with the flush; the 2002nd waits until the end, whose flush fails too.
  ExpectFailure({"create", file, "/r"}, kHashMessage + kHashMessage + kFinalFailure);
  EXPECT_EQ(Sizes(), (Size{2000, 1}));
}

TEST_F(Batches, LostDataInTheMiddleCanEndInSuccess) {
  const std::string file =
      tree.Write("a.json", R"({"@odata.id": "other", )" + Members(2001, R"("L": [1])").substr(1));
  plan = [](Recorder& recorder) {
    std::string errors;
    for (int i = 0; i < 2000; ++i) errors += "-OOM out of memory\r\n";
    recorder.Answer(3, errors);
  };
  const Finished run = Ostrafel({"create", file, "/r"});
  EXPECT_EQ(run.out, kSuccessLine);
  EXPECT_EQ(run.err, kHashMessage);
  EXPECT_EQ(run.status, 0);
  EXPECT_EQ(store.Dump(),
            "list | &&other/L | 1\n"
            "hash | other | &&Array L &&other/L | \n"
            "hash | other | m2000 | 1\n");
}

TEST_F(Batches, AConnectionThatBreaksInTheFinalFlushIsReportedForEveryReply) {
  const std::string file = tree.Write("a.json", R"({"A": 1, "B": 2, "C": 3})");
  plan = [](Recorder& recorder) { recorder.CutAfter(3, 1); };
  ExpectFailure({"create", file, "/r"},
                std::string("Failed to get reply\nFailed to get reply\n") + kFinalFailure);
}

TEST_F(Batches, AServerThatIsGoneDoesNotEndTheProcessBySigpipe) {
  const std::string file = tree.Write("a.json", R"({"A": 1, "B": 2})");
  // Gone after the first search: the others are passed over, the final flush reports.
  plan = [](Recorder& recorder) { recorder.CutAfter(0, 1); };
  ExpectFailure({"create", file, "/r"},
                std::string("Failed to get reply\nFailed to get reply\n") + kFinalFailure);
}

TEST_F(Batches, RemovalsAreSentBeforeTheFieldsThatFillABatch) {
  (void)store.Run("HSET | /r | m0 | old");
  const std::string file = tree.Write("a.json", Members(2000, R"("last": 1)"));
  Load({"update", file, "/r"});
  EXPECT_EQ(store.Run("HLEN | /r").integer, 2001);
  EXPECT_EQ(store.Run("HGET | /r | m0").text, "1");
}

}  // namespace
