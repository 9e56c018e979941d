// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// What is read of a store that others change meanwhile.
#include <gtest/gtest.h>
#include <unistd.h>

#include <atomic>
#include <cstddef>
#include <functional>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "live/server_choice.h"
#include "live/store_reading.h"
#include "memory/server_copy.h"
#include "support/recorder.h"
#include "support/sandbox.h"
#include "support/test_factor.h"
#include "support/test_store.h"

namespace ostrafel {

namespace {

using model::Command;
using Names = std::vector<std::string>;

// --- At a known moment ---------------------------------------------------------------------------

// Reads through a recorder, which counts the flights and lets somebody else act between them.
class ChangingStore : public testing::Test {
 protected:
  ChangingStore() : redis(ServerSocket()), recorder(kSocket, ServerSocket()) {
    (void)redis.Run("FLUSHALL");
    recorder.Watch(getpid());
    ServerChoice choice;
    choice.socket_path = kSocket;
    connection = ConnectTo(choice);
  }

  // Changes the store when this flight has been sent, before the server gets it.
  void Before(std::size_t flight, const std::vector<std::string>& lines) {
    recorder.Before(flight, [this, lines] {
      for (const std::string& line : lines) (void)redis.Run(line);
    });
  }

  Reading Read(const ReadingScope& scope, const Server& likely, std::size_t keys_at_once) {
    return ReadStore(connection.get(), scope, likely, keys_at_once);
  }

  // The number of flights that were sent.
  std::size_t Flights() {
    connection.reset();
    return recorder.Finish().flights.size();
  }

  const std::string kSocket = RuntimeDirectory() + "/recorder.sock";
  TestStore redis;
  Recorder recorder;
  StoreConnection connection;
};

Server With(const std::string& key, const Stored& value) {
  Server store;
  store.keys[key] = value;
  return store;
}

TEST_F(ChangingStore, IsReadAsItIsInTheTransaction) {
  (void)redis.Run("HSET | /a | f | 1");
  (void)redis.Run("HSET | /b | f | 1");
  Before(2, {"HSET | /a | f | 2", "DEL | /b"});  // 0: SCAN, 1: TYPE, 2: the transaction
  const Reading reading = Read({{"*"}, {}}, {}, 10);
  EXPECT_EQ(Dump(reading.store), "hash | /a | f | 2\n");
  EXPECT_EQ(reading.unsteady, Names());
  EXPECT_EQ(Flights(), 3U);
}

TEST_F(ChangingStore, IsReadAgainWhenAKeyHasCome) {
  (void)redis.Run("HSET | /a | f | 1");
  Before(2, {"RPUSH | /b | 1", "HSET | /a | f | 2"});
  const Reading reading = Read({{"*"}, {}}, {}, 10);
  EXPECT_EQ(Dump(reading.store), "hash | /a | f | 2\nlist | /b | 1\n");
  EXPECT_EQ(reading.unsteady, Names());
  EXPECT_EQ(Flights(), 5U);  // TYPE of the new key, and another transaction
}

TEST_F(ChangingStore, IsReadAgainWhenAKeyHoldsAnotherType) {
  (void)redis.Run("HSET | /a | f | 1");
  (void)redis.Run("SET | /b | 1");
  Before(2, {"DEL | /a", "RPUSH | /a | 1", "DEL | /b", "HSET | /b | f | 1"});
  const Reading reading = Read({{"*"}, {}}, {}, 10);
  EXPECT_EQ(Dump(reading.store), "list | /a | 1\nhash | /b | f | 1\n");
  EXPECT_EQ(reading.unsteady, Names());
  EXPECT_EQ(Flights(), 5U);
}

TEST_F(ChangingStore, IsReadInPartsWhenKeysHaveComeThatAreTooMany) {
  (void)redis.Run("HSET | /a | f | 1");
  Before(2, {"HSET | /b | f | 1", "HSET | /c | f | 1"});
  const Reading reading = Read({{"*"}, {}}, {}, 2);
  EXPECT_EQ(Dump(reading.store), "hash | /a | f | 1\nhash | /b | f | 1\nhash | /c | f | 1\n");
  EXPECT_EQ(reading.unsteady, Names());
}

TEST_F(ChangingStore, IsGivenUpWithTheNamesOfTheKeysThatCome) {
  for (std::size_t i = 0; i < kMostReadings; ++i) {
    const std::string number = std::to_string(i);
    Before(1 + 2 * i, {"HSET | /a" + number + " | f | 1", "HSET | /b" + number + " | f | 1"});
  }
  const Reading reading = Read({{"*"}, {}}, {}, 100);
  EXPECT_EQ(reading.unsteady, (Names{"/a4", "/b4"}));
  EXPECT_EQ(reading.store.keys.size(), 8U);
  EXPECT_EQ(Flights(), 1U + 2U * kMostReadings);
}

TEST_F(ChangingStore, IsGivenUpWithTheNamesOfTheKeysThatChangeTheirTypes) {
  const std::vector<std::string> to_hash = {"DEL | /a", "HSET | /a | f | 1"};
  const std::vector<std::string> to_list = {"DEL | /a", "RPUSH | /a | 1"};
  for (std::size_t i = 0; i < kMostReadings; ++i) Before(2 * i, i % 2 == 0 ? to_list : to_hash);
  const Reading reading = Read({{}, {"/a"}}, With("/a", Hash{{"f", "1"}}), 100);
  EXPECT_EQ(reading.unsteady, (Names{"/a"}));
  EXPECT_EQ(Dump(reading.store), "");
}

// With no key in a transaction, each reading in parts of keys that are known is one flight.

TEST_F(ChangingStore, IsReadInPartsUntilNothingChanges) {
  (void)redis.Run("HSET | /a | f | 1");
  Before(1, {"HSET | /a | f | 2"});
  Before(2, {"HSET | /a | f | 3"});
  const Reading reading = Read({{}, {"/a"}}, With("/a", Hash{{"f", "0"}}), 0);
  EXPECT_EQ(Dump(reading.store), "hash | /a | f | 3\n");
  EXPECT_EQ(reading.unsteady, Names());
  EXPECT_EQ(Flights(), 4U);
}

TEST_F(ChangingStore, TellsInPartsOfAKeyThatComesAndOneThatGoes) {
  (void)redis.Run("HSET | /a | f | 1");
  Before(1, {"DEL | /a", "HSET | /b | f | 1"});
  Server likely = With("/a", Hash{{"f", "1"}});
  likely.keys["/b"] = Hash{{"f", "1"}};
  const Reading reading = Read({{}, {"/a", "/b"}}, likely, 0);
  EXPECT_EQ(Dump(reading.store), "hash | /b | f | 1\n");
  EXPECT_EQ(reading.unsteady, Names());
  EXPECT_EQ(Flights(), 3U);
}

TEST_F(ChangingStore, LooksInPartsForKeysThatHaveCome) {
  (void)redis.Run("HSET | /a | f | 1");
  Before(1, {"RPUSH | /b | 1"});  // 0: SCAN, 1: the first reading, 2: SCAN
  const Reading reading = Read({{"*"}, {}}, With("/a", Hash{{"f", "1"}}), 0);
  EXPECT_EQ(Dump(reading.store), "hash | /a | f | 1\nlist | /b | 1\n");
  EXPECT_EQ(reading.unsteady, Names());
  EXPECT_EQ(Flights(), 7U);
}

TEST_F(ChangingStore, IsGivenUpInPartsWithTheNamesOfTheKeysThatChange) {
  for (const char* key : {"/a", "/b", "/c"}) (void)redis.Run(Command{"HSET", key, "f", "x"});
  Server likely;
  for (const char* key : {"/a", "/b", "/c"}) likely.keys[key] = Hash{{"f", "x"}};
  for (std::size_t i = 0; i < kMostReadings; ++i) {
    const std::string number = std::to_string(i);
    Before(i, {"HSET | /a | f | " + number, "HSET | /c | f | " + number});
  }
  const Reading reading = Read({{}, {"/c", "/b", "/a"}}, likely, 0);
  EXPECT_EQ(reading.unsteady, (Names{"/a", "/c"}));
  EXPECT_EQ(Dump(reading.store), "hash | /a | f | 4\nhash | /b | f | x\nhash | /c | f | 4\n");
  EXPECT_EQ(Flights(), static_cast<std::size_t>(kMostReadings));
}

TEST_F(ChangingStore, ReadsInPartsAKeyThatChangesItsTypeWhileItsTypeIsAsked) {
  (void)redis.Run("RPUSH | /a | 1");
  // 0: as a hash, 1: TYPE, 2: as a list, 3: TYPE, 4: as a hash
  Before(2, {"DEL | /a", "HSET | /a | f | 1"});
  const Reading reading = Read({{}, {"/a"}}, With("/a", Hash{{"f", "1"}}), 0);
  EXPECT_EQ(Dump(reading.store), "hash | /a | f | 1\n");
  EXPECT_EQ(reading.unsteady, Names());
}

TEST_F(ChangingStore, IsNotReadInPartsWhenAKeyChangesItsTypeEachTime) {
  const std::vector<std::string> to_hash = {"DEL | /a", "HSET | /a | f | 1"};
  const std::vector<std::string> to_list = {"DEL | /a", "RPUSH | /a | 1"};
  for (std::size_t i = 0; i < kMostReadings; ++i) Before(2 * i, i % 2 == 0 ? to_list : to_hash);
  try {
    (void)ReadKeys(connection.get(), {"/a"}, With("/a", Hash{{"f", "1"}}));
    FAIL() << "it was read";
  } catch (const std::runtime_error& error) {
    EXPECT_EQ(std::string(error.what()),
              "others change the type of a key each time that it is read: /a");
  }
}

TEST_F(ChangingStore, ReadsARestlessKeyAgainWhenItHoldsAnotherType) {
  (void)redis.Run("HSET | /a | f | 1");
  (void)redis.Run("HSET | /b | f | 1");
  Server likely = With("/a", Hash{{"f", "1"}});
  likely.keys["/b"] = Hash{{"f", "1"}};
  Before(1, {"HSET | /a | f | 2"});           // the second reading: /a is restless
  Before(2, {"DEL | /a", "RPUSH | /a | 1"});  // its transaction; then TYPE and a reading of /b
  const Reading reading = Read({{}, {"/a", "/b"}}, likely, 1);
  EXPECT_EQ(Dump(reading.store), "list | /a | 1\nhash | /b | f | 1\n");
  EXPECT_EQ(reading.unsteady, Names());
  EXPECT_EQ(Flights(), 7U);  // and both once more
}

// Two keys that are always changed together, and a thousand between them, so that they are read in
// different pipelines.
class TwoKeysInParts : public ChangingStore {
 protected:
  TwoKeysInParts() {
    scope.keys = {"/a", "/z"};
    for (int i = 0; i < 1000; ++i) scope.keys.push_back("/k" + std::to_string(i));
    for (const std::string& key : scope.keys) likely.keys[key] = Hash{{"f", "0"}};
    (void)redis.Run("HSET | /a | f | 0");
    (void)redis.Run("HSET | /z | f | 0");
  }

  void SetBefore(std::size_t flight, const std::string& number) {
    Before(flight, {"MULTI", "HSET | /a | f | " + number, "HSET | /z | f | " + number, "EXEC"});
  }

  ReadingScope scope;
  Server likely;
};

// A reading is two flights. The change in the first one is seen of /a alone, by the second reading;
// the next change, of both, before that of /z was ever seen to change.
TEST_F(TwoKeysInParts, AreNotReadAsTheyWereAtTwoMoments) {
  SetBefore(1, "1");
  SetBefore(4, "2");
  const Reading reading = Read(scope, likely, 10);
  EXPECT_EQ(Dump(reading.store), "hash | /a | f | 2\nhash | /z | f | 2\n");
  EXPECT_EQ(reading.unsteady, Names());
}

TEST_F(TwoKeysInParts, MayChangeBeforeEachReadingOnceThatIsKnown) {
  for (std::size_t i = 0; i < 20; ++i) SetBefore(i, std::to_string(i));
  const Reading reading = Read(scope, likely, 10);
  EXPECT_EQ(reading.unsteady, Names());
  ASSERT_EQ(reading.store.keys.size(), 2U);
  EXPECT_EQ(std::get<Hash>(reading.store.keys.at("/a")),
            std::get<Hash>(reading.store.keys.at("/z")));
}

TEST_F(TwoKeysInParts, AreUnsteadyWhenNoTransactionHasRoomForBoth) {
  for (std::size_t i = 0; i < 20; ++i) SetBefore(i, std::to_string(i));
  const Reading reading = Read(scope, likely, 1);
  EXPECT_EQ(reading.unsteady, (Names{"/a", "/z"}));
}

// --- All the time --------------------------------------------------------------------------------

// Changes the store without a pause, from a thread of its own, in transactions.
class Writer {
 public:
  // Gives each transaction's commands for its number.
  explicit Writer(std::function<std::vector<Command>(int)> commands)
      : thread_([this, commands = std::move(commands)] {
          TestStore redis(ServerSocket());
          for (int number = 0; !is_ending_; ++number) {
            (void)redis.Run("MULTI");
            for (const Command& command : commands(number)) (void)redis.Run(command);
            (void)redis.Run("EXEC");
          }
        }) {}
  ~Writer() {
    is_ending_ = true;
    thread_.join();
  }
  Writer(const Writer&) = delete;
  Writer& operator=(const Writer&) = delete;

 private:
  std::atomic<bool> is_ending_{false};
  std::thread thread_;
};

class BusyStore : public testing::Test {
 protected:
  BusyStore() : redis(ServerSocket()) {
    (void)redis.Run("FLUSHALL");
    for (int i = 0; i < 30; ++i) {
      (void)redis.Run(Command{"HSET", "/still" + std::to_string(i), "f", "1"});
    }
  }

  TestStore redis;
};

std::string FieldOf(const Server& store, const std::string& key) {
  return std::get<Hash>(store.keys.at(key)).at("f");
}

// "/a" and "/b" hold the same number, and "/list" has ended with it.
std::vector<Command> SetNumber(int number) {
  const std::string text = std::to_string(number);
  return {{"HSET", "/a", "f", text},
          {"HSET", "/b", "f", text},
          {"RPUSH", "/list", text},
          {"LTRIM", "/list", "-3", "-1"}};
}

TEST_F(BusyStore, IsReadAsItWasAtOneMoment) {
  for (const Command& command : SetNumber(0)) (void)redis.Run(command);
  const Writer writer(SetNumber);
  // All in one transaction, and what changes in one.
  for (const std::size_t keys_at_once : {100U, 10U}) {
    std::string last;
    unsigned long changes = 0;
    for (unsigned long i = 0; i < 200 * TestFactor() || changes < 10; ++i) {
      const Reading reading = ReadStore(redis.context(), {{"*"}, {}}, {}, keys_at_once);
      ASSERT_EQ(reading.unsteady, Names());
      ASSERT_EQ(reading.store.keys.size(), 33U);
      const std::string number = FieldOf(reading.store, "/a");
      ASSERT_EQ(FieldOf(reading.store, "/b"), number);
      ASSERT_EQ(std::get<List>(reading.store.keys.at("/list")).back(), number);
      if (number != last) ++changes;
      last = number;
    }
  }
}

// One of the two keys is there, a hash or a list, and "/which" says which of the four.
std::vector<Command> SetOne(int number) {
  const std::string key = number % 2 == 0 ? "/a" : "/b";
  std::vector<Command> commands = {{"DEL", "/a", "/b"},
                                   {"HSET", "/which", "f", std::to_string(number % 4)}};
  if (number % 4 < 2) {
    commands.push_back({"HSET", key, "f", "1"});
  } else {
    commands.push_back({"RPUSH", key, "1"});
  }
  return commands;
}

TEST_F(BusyStore, IsNotReadAsAMixtureWhenKeysComeAndGo) {
  for (const Command& command : SetOne(0)) (void)redis.Run(command);
  const Writer writer(SetOne);
  unsigned long steady = 0;
  for (unsigned long i = 0; i < 200 * TestFactor() || steady < 10; ++i) {
    const Reading reading = ReadStore(redis.context(), {{"*"}, {}}, {}, 100);
    if (!reading.unsteady.empty()) continue;
    ++steady;
    ASSERT_EQ(reading.store.keys.size(), 32U) << Dump(reading.store);
    const int which = std::stoi(FieldOf(reading.store, "/which"));
    const Stored& value = reading.store.keys.at(which % 2 == 0 ? "/a" : "/b");
    ASSERT_EQ(std::holds_alternative<Hash>(value), which < 2);
  }
}

}  // namespace

}  // namespace ostrafel
