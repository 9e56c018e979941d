// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// Whatever fails while a store is read, no tree is left, and the program says why.
#include <cstddef>
#include <string>
#include <vector>

#include "export/export_fixture.h"
#include "support/resp.h"
#include "support/scoped_setting.h"
#include "support/test_factor.h"

namespace {

class ExportFaults : public ExportTest {
 protected:
  ExportFaults() {
    (void)store.Run("HSET | /r | Name | \"A\" | &&Array L &&/r/L | ");
    (void)store.Run("RPUSH | &&/r/L | 1 | 2");
    (void)store.Run("HSET | /r/b | Name | \"B\"");
    EXPECT_EQ(RecordedExport({"/r", out}).status, 0);
    whole = recording.flights;
    tree_of_store = ListingOf(out);
  }
  ~ExportFaults() override { (void)store.Run("ACL | SETUSER | default | +@all"); }

  Finished Run(const std::function<void(Recorder&)>& what_fails) {
    plan = what_fails;
    return RecordedExport({"/r", place.path("new")});
  }

  void ExpectNothing(const Finished& finished, const std::string& reason) {
    EXPECT_EQ(finished.out, "");
    EXPECT_EQ(finished.err.rfind("ostrafel-export: ", 0), 0U) << finished.err;
    EXPECT_NE(finished.err.find(reason), std::string::npos) << finished.err;
    EXPECT_EQ(finished.status, 2);
    EXPECT_EQ(Difference(Listing(), ListingOf(place.path(), "out")), "");
  }

  std::vector<model::Flight> whole;  // of a run that nothing disturbs
  Listing tree_of_store;
};

TEST_F(ExportFaults, AConnectionThatBreaksAfterAnyByteLeavesNothing) {
  const std::size_t step = TestFactor() >= 10 ? 1 : 7;
  for (std::size_t flight = 0; flight < whole.size(); ++flight) {
    std::size_t size = 0;
    for (const model::Reply& reply : whole[flight].replies) size += Format(reply).size();
    for (std::size_t bytes = 0; bytes < size; bytes += step) {
      SCOPED_TRACE(std::to_string(bytes) + " bytes of flight " + std::to_string(flight));
      ExpectNothing(Run([&](Recorder& recorder) { recorder.CutAfterBytes(flight, bytes); }),
                    "the connection to Redis failed: ");
      if (HasFailure()) return;
    }
  }
}

// A whole flight is answered otherwise than it should. Some answers say that nothing is there.
TEST_F(ExportFaults, WrongRepliesLeaveNothingOrAreOvercome) {
  const std::vector<std::string> kinds = {"+OK\r\n", "+QUEUED\r\n", "-ERR no\r\n", ":1\r\n",
                                          "$-1\r\n", "$1\r\nx\r\n", "*-1\r\n",     "*1\r\n:1\r\n"};
  for (std::size_t flight = 0; flight < whole.size(); ++flight) {
    for (const std::string& kind : kinds) {
      SCOPED_TRACE("flight " + std::to_string(flight) + ": " + kind);
      std::string answer;
      for (std::size_t i = 0; i < whole[flight].commands.size(); ++i) answer += kind;
      ExpectNothing(Run([&](Recorder& recorder) { recorder.Answer(flight, answer); }), "Redis");
      if (HasFailure()) return;
    }
  }
}

TEST_F(ExportFaults, ALoadingServerIsLeftAlone) {
  const std::string loading = "-LOADING Redis is loading the dataset in memory\r\n";
  ExpectNothing(Run([&](Recorder& recorder) { recorder.Answer(0, loading); }),
                "LOADING Redis is loading the dataset in memory");
}

TEST_F(ExportFaults, CommandsThatTheUserMayNotSendLeaveNothing) {
  for (const std::string name : {"scan", "hgetall", "lrange", "multi", "keys"}) {
    SCOPED_TRACE(name);
    (void)store.Run(model::Command{"ACL", "SETUSER", "default", "-" + name});
    const Finished finished = Run(nullptr);
    (void)store.Run("ACL | SETUSER | default | +@all");
    ExpectNothing(finished, "NOPERM");
  }
}

TEST_F(ExportFaults, AServerWhoseMemoryIsFullIsReadInParts) {
  const ScopedSetting full(&store, "maxmemory", "1");
  ExpectWritten(Run(nullptr), "2 resources", place.path("new"));
  EXPECT_EQ(Difference(tree_of_store, ListingOf(place.path("new"))), "");
}

}  // namespace
