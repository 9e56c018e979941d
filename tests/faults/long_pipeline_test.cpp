// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// A long pipeline is written piece by piece while it is formatted, so that the server works
// meanwhile. Nothing else must change by that.
#include <algorithm>
#include <cstddef>
#include <map>
#include <string>

#include "faults/failing_calls.h"

namespace {

constexpr std::size_t kPieceLength = 256;  // commands
constexpr unsigned long kOtherWrites = 4;  // of the three KEYS and of the hash's one field

class LongPipeline : public FailingCallsTest {
 protected:
  // A document whose only array has this many elements.
  std::string WriteArray(const std::string& element, int count) {
    std::string elements;
    for (int i = 0; i < count; ++i) elements += (i == 0 ? "" : ", ") + element;
    return tree.Write("index.json", R"({"A": [)" + elements + "]}");
  }

  FailingRun CreateInEmptyStore(const std::string& file, const FailingCalls& failing = {}) {
    (void)store.Run("FLUSHALL");
    return RunRecorded(failing, {"create", file, "/r"});
  }

  static unsigned long Pieces(const model::Flight& flight) {
    return (flight.commands.size() + kPieceLength - 1) / kPieceLength;
  }

  // Expects that each flight of the last run was written in its pieces. Returns, by the first word
  // of a flight, the most pieces that one had.
  std::map<std::string, unsigned long> CheckWrites(const FailingRun& run) {
    EXPECT_EQ(run.finished.err, "");
    unsigned long all = 0;
    std::map<std::string, unsigned long> most;
    for (const model::Flight& flight : recording.flights) {
      all += Pieces(flight);
      unsigned long& pieces = most[flight.commands.front()[0]];
      pieces = std::max(pieces, Pieces(flight));
    }
    EXPECT_EQ(run.counts.at("write"), all);
    return most;
  }
};

const std::string kText = '"' + std::string(100, 'v') + '"';

TEST_F(LongPipeline, OfWritesIsWrittenInPiecesBeforeAnyReplyIsRead) {
  const auto most = CheckWrites(CreateInEmptyStore(WriteArray(R"({"x": 1})", 600)));
  EXPECT_EQ(recording.flights.size(), 5U);
  EXPECT_GT(most.at("HSET"), 1U);
  EXPECT_GT(most.at("RPUSH"), 1U);
}

TEST_F(LongPipeline, OfRemovalsIsWrittenInPiecesBeforeAnyReplyIsRead) {
  const std::string file = WriteArray(R"({"x": 1})", 600);
  (void)CreateInEmptyStore(file);
  EXPECT_GT(CheckWrites(RunRecorded({}, {"update", file, "/r"})).at("UNLINK"), 1U);
}

TEST_F(LongPipeline, OfTheOldTreesRemovalIsWrittenInPiecesBeforeAnyReplyIsRead) {
  const std::string file = WriteArray(R"({"x": 1})", 600);
  (void)CreateInEmptyStore(file);
  EXPECT_GT(CheckWrites(RunRecorded({}, {"create", file, "/r"})).at("del"), 1U);
}

TEST_F(LongPipeline, OfNoMoreThanAPieceIsWrittenAtOnce) {
  const auto most = CheckWrites(CreateInEmptyStore(WriteArray(kText, 256)));
  EXPECT_EQ(most.at("RPUSH"), 1U);
}

TEST_F(LongPipeline, EndsTheSameWayWhicheverPieceCannotBeSent) {
  const std::string file = WriteArray(kText, 600);
  (void)CreateInEmptyStore(file);
  const unsigned long pieces = Pieces(recording.flights.back());
  ASSERT_GT(pieces, 2U);
  std::string err;
  for (int i = 0; i < 600; ++i) err += "Failed to get reply\n";
  err += ">>> Fail to write rest of data into redis\n";
  for (unsigned long piece = 0; piece < pieces; ++piece) {
    for (const bool is_onwards : {false, true}) {
      const FailingRun run = CreateInEmptyStore(file, {"write", kOtherWrites + piece, is_onwards});
      EXPECT_EQ(run.finished.status, 255) << Describe(run);
      EXPECT_EQ(run.finished.out, "");
      EXPECT_TRUE(run.finished.err == err) << "piece " << piece;  // too long to be shown
    }
  }
}

}  // namespace
