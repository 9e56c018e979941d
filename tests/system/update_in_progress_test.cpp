// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// What others see while an update runs, what one that failed leaves, and what mends that.
#include <csignal>
#include <cstddef>
#include <filesystem>
#include <string>
#include <vector>

#include "system/system_fixture.h"

namespace {

class UpdateInProgress : public SystemTest {
 protected:
  // What is stored when each flight of a run comes, and at its end.
  std::vector<std::string> Watch(const std::vector<std::string>& arguments) {
    constexpr std::size_t kFlights = 20;
    std::vector<std::string> seen;
    plan = [&](Recorder& recorder) {
      for (std::size_t flight = 0; flight < kFlights; ++flight) {
        recorder.Before(flight, [&] { seen.push_back(store.Dump()); });
      }
    };
    Load(arguments);
    plan = nullptr;
    EXPECT_LT(recording.flights.size(), kFlights);
    seen.push_back(store.Dump());
    return seen;
  }

  // The number of the first flight of the last run that begins with this command.
  std::size_t FlightOf(const std::string& name) const {
    std::size_t flight = 0;
    while (recording.flights[flight].commands.front().front() != name) ++flight;
    return flight;
  }
};

TEST_F(UpdateInProgress, AnUnchangedHashAndListAreGoneForAWhile) {
  const std::string file = tree.Write("a.json", R"({"A": 1, "L": [1, 2]})");
  const std::vector<std::string> update = {"update", file, "/r"};
  Load({"create", file, "/r"});
  const std::string whole = store.Dump();
  const std::vector<std::string> seen = Watch(update);

  const std::size_t removal = FlightOf("UNLINK");
  ASSERT_EQ(FlightOf("HSET"), removal + 1);
  ASSERT_EQ(FlightOf("RPUSH"), removal + 2);
  EXPECT_EQ(seen[removal], whole);
  EXPECT_EQ(seen[removal + 1], "") << "the hash has lost its fields, and the list is gone";
  EXPECT_EQ(seen[removal + 2], "hash | /r | &&Array L &&/r/L | \nhash | /r | A | 1\n")
      << "the list is gone";
  EXPECT_EQ(seen.back(), whole);
}

class FailedUpdate : public UpdateInProgress {
 protected:
  const std::string trees = OSTRAFEL_SOURCE_DIR "/examples/";
  const std::vector<std::string> create{"create", trees + "rackmount", "/redfish/v1"};
  const std::vector<std::string> update{"update", trees + "rackmount-update", "/redfish/v1"};

  FailedUpdate() {
    std::filesystem::copy(trees + "www", kIncludeDirectory,
                          std::filesystem::copy_options::recursive);
  }
};

TEST_F(FailedUpdate, LeavesFewerKeysAndItsRepetitionWhatAGoodOneLeaves) {
  Load(create);
  const long long before = store.Run("DBSIZE").integer;
  Load(update);
  const std::string good = store.Dump();
  const std::size_t writes = FlightOf("HSET");
  Load(create);

  plan = [&](Recorder& recorder) {
    recorder.Before(writes, [&] { (void)store.Run("CONFIG | SET | maxmemory | 1"); });
  };
  const Finished failed = Ostrafel(update);
  plan = nullptr;
  (void)store.Run("CONFIG | SET | maxmemory | 0");
  EXPECT_EQ(failed.out, "");
  EXPECT_EQ(failed.err,
            "Some errors occur while creating hash data into database\n"
            "The data in database would be incorrect\n"
            ">>> Fail to write rest of data into redis\n");
  EXPECT_EQ(failed.status, 255);
  EXPECT_LT(store.Run("DBSIZE").integer, before);
  EXPECT_NE(store.Dump(), good);

  Load(update);
  EXPECT_EQ(store.Dump(), good);
}

// The list went, and what lies below it stayed. Nothing tells a repetition that it is stale.
TEST_F(FailedUpdate, ThatStoppedAmongItsRemovalsIsMendedByTheCreateAndNotByItsRepetition) {
  const std::string first = tree.Write("first.json", R"({"A": [{"old": 1}]})");
  const std::string second = tree.Write("second.json", R"({"A": [{"new": 2}]})");
  const auto update_after_create = [&] {
    Load({"create", first, "/r"});
    Load({"update", second, "/r"});
  };
  update_after_create();
  const std::string good = store.Dump();
  const std::size_t removal = FlightOf("UNLINK");
  ASSERT_EQ(recording.flights[removal].commands.front(), (model::Command{"UNLINK", "&&/r/A"}));
  ASSERT_EQ(recording.flights[removal].commands[1], (model::Command{"UNLINK", "&&/r/A/0"}));

  Load({"create", first, "/r"});
  plan = [&](Recorder& recorder) { recorder.KillAfter(removal, 1); };
  EXPECT_EQ(Ostrafel({"update", second, "/r"}).status, 128 + SIGKILL);
  plan = nullptr;
  Load({"update", second, "/r"});
  EXPECT_EQ(store.Dump(),
            "list | &&/r/A | &&Object &&/r/A/0\n"
            "hash | &&/r/A/0 | new | 2\n"
            "hash | &&/r/A/0 | old | 1\n"
            "hash | /r | &&Array A &&/r/A | \n");
  update_after_create();
  EXPECT_EQ(store.Dump(), good);
}

}  // namespace
