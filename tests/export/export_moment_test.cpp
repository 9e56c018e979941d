// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// Exports while others change the store: what is written was stored at one moment.
#include <algorithm>
#include <atomic>
#include <cstdio>
#include <filesystem>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "export/export_fixture.h"
#include "support/scoped_setting.h"
#include "support/test_factor.h"

namespace {

using model::Command;

class ExportMoment : public ExportTest {
 protected:
  // Exports while both ends of the tree are changed together, again and again.
  void ExportBesideAWriter(unsigned long exports) {
    std::atomic<bool> is_ending{false};
    SetBoth(&store, 0);
    std::thread writer([&] {
      TestStore redis(ServerSocket());
      for (int number = 1; !is_ending; ++number) SetBoth(&redis, number);
    });
    for (unsigned long i = 0; i < exports; ++i) {
      std::filesystem::remove_all(out);
      const Finished finished = Export({"-q", "/r", out});
      EXPECT_EQ(finished.status, 0) << finished.err;
      if (finished.status != 0) break;
      const std::string first = ReadFile(out + "/a/index.json");
      EXPECT_NE(first, "");
      EXPECT_EQ(first, ReadFile(out + "/z/index.json"));
    }
    is_ending = true;
    writer.join();
  }

  // The flights of the recording that have this command.
  [[nodiscard]] std::vector<std::size_t> FlightsWith(const Command& command) const {
    std::vector<std::size_t> found;
    for (std::size_t i = 0; i < recording.flights.size(); ++i) {
      const std::vector<Command>& commands = recording.flights[i].commands;
      if (std::find(commands.begin(), commands.end(), command) != commands.end()) {
        found.push_back(i);
      }
    }
    return found;
  }

  static void SetBoth(TestStore* redis, int number) {
    const std::string text = std::to_string(number);
    (void)redis->Run("MULTI");
    (void)redis->Run(Command{"HSET", "/r/a", "Number", text});
    (void)redis->Run(Command{"HSET", "/r/z", "Number", text});
    (void)redis->Run("EXEC");
  }
};

TEST_F(ExportMoment, KeysThatChangeTogetherAreWrittenTogether) {
  ExportBesideAWriter(20 * TestFactor());
}

TEST_F(ExportMoment, KeysThatChangeTogetherAreWrittenTogetherFromAStoreThatIsReadInParts) {
  StoreManyParts("/r/m");
  ExportBesideAWriter(3 * TestFactor());
}

TEST_F(ExportMoment, AKeyThatGoesBeforeTheTransactionIsPlannedWithout) {
  const auto fill = [&] {
    (void)store.Run("HSET | /r | Name | \"A\" | &&Object Part &&/r/Part | ");
    (void)store.Run("HSET | &&/r/Part | x | 1");
    (void)store.Run("HSET | /r/b | Name | \"B\"");
  };
  fill();
  ExpectWritten(RecordedExport({"/r", place.path("whole")}), "2 resources", place.path("whole"));
  const std::vector<std::size_t> once = FlightsWith({"MULTI"});
  ASSERT_EQ(once.size(), 1U);
  for (const std::string key : {"/r/b", "&&/r/Part"}) {
    SCOPED_TRACE(key);
    fill();
    plan = [&](Recorder& recorder) {
      recorder.Before(once.front(), [&] { (void)store.Run(Command{"DEL", key}); });
    };
    std::filesystem::remove_all(out);
    const bool has_b = key != "/r/b";
    ExpectWritten(RecordedExport({"/r", out}), has_b ? "2 resources" : "1 resource", out);
    EXPECT_EQ(FlightsWith({"MULTI"}).size(), 2U);
    EXPECT_EQ(std::filesystem::exists(out + "/b"), has_b);
    EXPECT_EQ(ReadFile(out + "/index.json").find("\"Part\": {}") != std::string::npos, has_b);
  }
}

// Only what has changed is read again.
TEST_F(ExportMoment, ASensorThatChangesAllTheTimeHoldsUpNoStoreThatIsReadInParts) {
  StoreManyParts("/r/m");
  (void)store.Run("HSET | /r/sensor | Reading | 0");
  std::atomic<bool> is_ending{false};
  std::atomic<int> written{0};
  std::thread sensor([&] {
    TestStore redis(ServerSocket());
    while (!is_ending) {
      (void)redis.Run(Command{"HSET", "/r/sensor", "Reading", std::to_string(written + 1)});
      ++written;
    }
  });
  for (unsigned long i = 0; i < 3 * TestFactor(); ++i) {
    std::filesystem::remove_all(out);
    const int before = written;
    ExpectWritten(Export({"/r", out}), "2 resources", out);
    const int after = written + 1;  // that one may be on its way
    int reading = -1;
    const std::string text = ReadFile(out + "/sensor/index.json");
    EXPECT_EQ(std::sscanf(text.c_str(), "{\n    \"Reading\": %d\n}\n", &reading), 1) << text;
    EXPECT_LE(before, reading);
    EXPECT_LE(reading, after);
    if (HasFailure()) break;
  }
  is_ending = true;
  sensor.join();
}

// A key that comes and goes in a store that is read in parts, and another one that tells at each
// moment whether it is there.
class RestlessKey : public ExportMoment {
 protected:
  RestlessKey() { StoreManyParts("/r/m"); }

  // Exports, with a turn before each of these flights: the key, which is there first, goes when it
  // was there, and comes when it was not.
  void ExportWithTurns(const std::set<std::size_t>& flights) {
    bool is_there = true;
    Set(is_there);
    plan = [&](Recorder& recorder) {
      for (const std::size_t flight : flights) {
        recorder.Before(flight, [&] { Set(is_there = !is_there); });
      }
    };
    std::filesystem::remove_all(out);
    const Finished finished = RecordedExport({"--quiet", "/r", out});
    EXPECT_EQ(finished.err, "");
    EXPECT_EQ(finished.status, 0);
  }

  // The flights in which restless keys were read together.
  [[nodiscard]] std::vector<std::size_t> Transactions() const { return FlightsWith({"MULTI"}); }

  // Expects no such key, as the other one says.
  void ExpectNoKey() const {
    EXPECT_FALSE(std::filesystem::exists(out + "/z/index.json"));
    EXPECT_EQ(ReadFile(out + "/a/index.json"), "{\n    \"Is\": false\n}\n");
  }

 private:
  void Set(bool is_there) {
    (void)store.Run("MULTI");
    (void)store.Run(Command{"HSET", "/r/a", "Is", is_there ? "true" : "false"});
    (void)store.Run(is_there ? "HSET | /r/z | x | 1" : "DEL | /r/z");
    (void)store.Run("EXEC");
  }
};

TEST_F(RestlessKey, IsWrittenAsItWasWithTheOthersThatAreRestless) {
  ExportWithTurns({});
  ASSERT_TRUE(Transactions().empty());
  ASSERT_EQ(FlightsWith({"HGETALL", "/r/a"}).size(), 2U);
  const std::size_t late = FlightsWith({"HGETALL", "/r/a"}).back();
  // It goes too late for the first reading.
  ExportWithTurns({late});
  ExpectNoKey();
  ASSERT_EQ(Transactions().size(), 1U);
  const std::size_t together = Transactions().front();

  // What it does afterwards counts no more.
  ExportWithTurns({late, together + 1});
  ExpectNoKey();
  EXPECT_EQ(Transactions(), std::vector<std::size_t>{together});

  // That it comes, if only for that moment, makes one more reading.
  ExportWithTurns({late, together, together + 1});
  ExpectNoKey();
  EXPECT_EQ(Transactions().size(), 2U);
}

// A transaction is refused then, also for the keys that have changed.
TEST_F(ExportMoment, AServerWhoseMemoryIsFullMayStillRemoveKeys) {
  const auto fill = [&] {
    (void)store.Run("HSET | /r | Name | \"A\"");
    (void)store.Run("HSET | /r/b | Name | \"B\"");
  };
  fill();
  ExpectWritten(Export({"/r", place.path("whole")}), "2 resources", place.path("whole"));
  const Listing with = ListingOf(place.path("whole"));
  Listing without = with;
  without.erase("./b");
  without.erase("b/index.json");
  std::size_t flights = 1;
  bool has_with = false;
  bool has_without = false;
  for (std::size_t flight = 0; flight < flights; ++flight) {
    SCOPED_TRACE(flight);
    fill();
    plan = [&](Recorder& recorder) {
      recorder.Before(flight, [&] { (void)store.Run("DEL | /r/b"); });
    };
    std::filesystem::remove_all(out);
    const ScopedSetting full(&store, "maxmemory", "1");
    const Finished finished = RecordedExport({"--quiet", "/r", out});
    flights = recording.flights.size();
    EXPECT_EQ(finished.err, "");
    EXPECT_EQ(finished.status, 0);
    const Listing listing = ListingOf(out);
    EXPECT_TRUE(listing == with || listing == without) << Difference(with, listing);
    has_with |= listing == with;
    has_without |= listing == without;
  }
  EXPECT_TRUE(has_with);
  EXPECT_TRUE(has_without);
}

TEST_F(ExportMoment, AStoreThatNeverHoldsStillIsGivenUp) {
  (void)store.Run("HSET | /r | Number | 0");
  plan = [&](Recorder& recorder) {
    for (std::size_t flight = 0; flight < 60; ++flight) {
      recorder.Before(flight, [&, flight] {
        (void)store.Run(Command{"HSET", "/r/new" + std::to_string(flight), "x", "1"});
      });
    }
  };
  const Finished finished = RecordedExport({"/r", out});
  EXPECT_EQ(finished.out, "");
  EXPECT_EQ(
      finished.err.rfind("ostrafel-export: the store was changed while it was read, again and "
                         "again: 2 keys, such as /r/new",
                         0),
      0U)
      << finished.err;
  EXPECT_EQ(finished.status, 2);
  EXPECT_EQ(ListingOf(place.path()), Listing());
}

}  // namespace
