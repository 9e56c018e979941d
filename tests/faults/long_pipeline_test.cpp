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

class LongPipeline : public FailingCallsTest {
 protected:
  // A document whose only array has this many elements.
  std::string WriteArray(const std::string& element, int count) {
    std::string elements;
    for (int i = 0; i < count; ++i) elements += (i == 0 ? "" : ", ") + element;
    return tree.Write("index.json", R"({"A": [)" + elements + "]}");
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

// Writes; an update's removals; the removal of an old tree.
TEST_F(LongPipeline, IsWrittenInPiecesBeforeAnyReplyIsRead) {
  const std::string file = WriteArray(R"({"x": 1})", 600);
  const auto written = CheckWrites(RunRecorded({}, {"create", file, "/r"}));
  EXPECT_EQ(recording.flights.size(), 5U);
  EXPECT_GT(written.at("HSET"), 1U);
  EXPECT_GT(written.at("RPUSH"), 1U);
  EXPECT_GT(CheckWrites(RunRecorded({}, {"update", file, "/r"})).at("UNLINK"), 1U);
  EXPECT_GT(CheckWrites(RunRecorded({}, {"create", file, "/r"})).at("del"), 1U);
}

TEST_F(LongPipeline, OfNoMoreThanAPieceIsWrittenAtOnce) {
  const auto most = CheckWrites(RunRecorded({}, {"create", WriteArray("1", 256), "/r"}));
  EXPECT_EQ(most.at("RPUSH"), 1U);
}

}  // namespace
