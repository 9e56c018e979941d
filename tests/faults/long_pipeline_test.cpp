// A long pipeline is written piece by piece while it is formatted, so that the server works
// meanwhile. Nothing else must change by that.
#include <cstddef>
#include <string>

#include "faults/failing_calls.h"
#include "support/resp.h"

namespace {

constexpr std::size_t kPieceSize = 16384;
constexpr unsigned long kOtherWrites = 4;  // of the three KEYS and of the hash's one field
constexpr const char* kNoReply = "Failed to get reply\n";

class LongPipeline : public FailingCallsTest {
 protected:
  // A document whose only array has this many values.
  std::string WriteArray(int values) {
    std::string elements;
    for (int i = 0; i < values; ++i) {
      elements += (i == 0 ? "" : ", ") + std::string(1, '"') + std::string(100, 'v') + '"';
    }
    return tree.Write("index.json", R"({"A": [)" + elements + "]}");
  }

  // Into an empty store.
  FailingRun Create(const std::string& file, const FailingCalls& failing = {}) {
    (void)store.Run("FLUSHALL");
    return RunRecorded(failing, {"create", file, "/r"});
  }

  // How many pieces the last pipeline of the last run makes.
  unsigned long Pieces() const {
    unsigned long pieces = 0;
    std::size_t waiting = 0;
    for (const model::Command& command : recording.flights.back().commands) {
      waiting += Format(command).size();
      if (waiting < kPieceSize) continue;
      ++pieces;
      waiting = 0;
    }
    return pieces + (waiting == 0 ? 0 : 1);
  }
};

TEST_F(LongPipeline, IsWrittenInPiecesBeforeAnyReplyIsRead) {
  const FailingRun run = Create(WriteArray(600));
  EXPECT_EQ(run.finished.err, "");
  ASSERT_EQ(recording.flights.size(), 5U);
  EXPECT_EQ(recording.flights.back().commands.size(), 600U);
  EXPECT_EQ(Pieces(), 5U);
  EXPECT_EQ(run.counts.at("write"), kOtherWrites + Pieces());
}

TEST_F(LongPipeline, BelowTheSizeOfAPieceIsWrittenAtOnce) {
  const FailingRun run = Create(WriteArray(100));
  EXPECT_EQ(run.finished.err, "");
  EXPECT_EQ(Pieces(), 1U);
  EXPECT_EQ(run.counts.at("write"), kOtherWrites + 1);
}

TEST_F(LongPipeline, EndsTheSameWayWhicheverPieceCannotBeSent) {
  const std::string file = WriteArray(600);
  (void)Create(file);
  const unsigned long pieces = Pieces();
  std::string err;
  for (int i = 0; i < 600; ++i) err += kNoReply;
  err += ">>> Fail to write rest of data into redis\n";
  for (unsigned long piece = 0; piece < pieces; ++piece) {
    for (const bool is_onwards : {false, true}) {
      const FailingRun run = Create(file, {"write", kOtherWrites + piece, is_onwards});
      EXPECT_EQ(run.finished.status, 255) << Describe(run);
      EXPECT_EQ(run.finished.out, "");
      EXPECT_TRUE(run.finished.err == err) << "piece " << piece;  // too long to be shown
    }
  }
}

}  // namespace
