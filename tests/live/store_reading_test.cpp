// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// What is read of a store that holds still.
#include "live/store_reading.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstddef>
#include <random>
#include <string>
#include <vector>

#include "live/server_choice.h"
#include "live/session.h"
#include "memory/server_copy.h"
#include "support/recorder.h"
#include "support/sandbox.h"
#include "support/scoped_setting.h"
#include "support/test_factor.h"
#include "support/test_store.h"

namespace ostrafel {

namespace {

using model::Command;

// Names and values with what a text may trip over.
const std::vector<std::string> kTexts = {"/r",
                                         "/r/a",
                                         "/r*",
                                         "/r/a b",
                                         "/r\r\n",
                                         std::string("/r\0z", 4),
                                         std::string("/r\0", 3),
                                         "\xff\xfe",
                                         "",
                                         "{\"x\": 1}",
                                         "[r]",
                                         "\\"};
const std::vector<std::string> kPatterns = {"*", "/r", "/r*", "/r/*", "\\*", "?", "", "[r]"};

class StoreReading : public testing::Test {
 protected:
  StoreReading() : redis(ServerSocket()) {
    (void)redis.Run("FLUSHALL");
    // Any command that writes is refused.
    (void)redis.Run("ACL | SETUSER | reader | on | nopass | allkeys | +@all | -@write");
    ServerChoice choice;
    choice.socket_path = ServerSocket();
    connection = ConnectTo(choice);
    RefuseError(*AskServer(connection.get(), {"AUTH", "reader", "x"}), "AUTH");
  }
  ~StoreReading() override { (void)redis.Run("ACL | DELUSER | reader"); }

  std::size_t Number(std::size_t count) { return generator() % count; }
  const std::string& Pick(const std::vector<std::string>& pool) {
    return pool[Number(pool.size())];
  }

  Stored RandomValue() {
    switch (Number(5)) {
      case 0:
        return OtherType();
      case 1:
      case 2: {
        Hash hash = {{Pick(kTexts), Pick(kTexts)}};
        for (std::size_t i = Number(4); i > 0; --i) hash[Pick(kTexts)] = Pick(kTexts);
        return hash;
      }
      default: {
        List list = {Pick(kTexts)};
        for (std::size_t i = Number(4); i > 0; --i) list.push_back(Pick(kTexts));
        return list;
      }
    }
  }

  Server RandomStore() {
    Server store;
    for (std::size_t i = Number(kTexts.size() + 1); i > 0; --i) {
      store.keys[Pick(kTexts)] = RandomValue();
    }
    return store;
  }

  // What stores a value.
  Command CommandFor(const std::string& key, const Stored& value) {
    if (const Hash* hash = std::get_if<Hash>(&value)) {
      Command command = {"HSET", key};
      for (const auto& [field, text] : *hash) {
        command.push_back(field);
        command.push_back(text);
      }
      return command;
    }
    if (const List* list = std::get_if<List>(&value)) {
      Command command = {"RPUSH", key};
      command.insert(command.end(), list->begin(), list->end());
      return command;
    }
    const std::vector<Command> others = {{"SET", key, "x"},
                                         {"SADD", key, "x"},
                                         {"ZADD", key, "1", "x"},
                                         {"XADD", key, "*", "f", "x"},
                                         {"PFADD", key, "x"}};
    return others[Number(others.size())];
  }

  void Fill(const Server& store) {
    (void)redis.Run("FLUSHALL");
    for (const auto& [key, value] : store.keys) (void)redis.Run(CommandFor(key, value));
  }

  // The part of what was filled in that a scope names.
  Server Within(const ReadingScope& scope, const Server& store) {
    Server part;
    const auto add = [&](const std::string& key) {
      const auto found = store.keys.find(key);
      if (found != store.keys.end()) part.keys.insert(*found);
    };
    for (const std::string& key : scope.keys) add(key);
    for (const std::string& pattern : scope.patterns) {
      for (const model::Reply& key : redis.Run(Command{"KEYS", pattern}).elements) add(key.text);
    }
    return part;
  }

  void ExpectRead(const ReadingScope& scope, const Server& likely, const Server& expected) {
    for (const std::size_t keys_at_once : {std::size_t{0}, std::size_t{4}, kKeysAtOnce}) {
      const Reading reading = ReadStore(connection.get(), scope, likely, keys_at_once);
      EXPECT_EQ(Dump(reading.store), Dump(expected)) << keys_at_once;
      EXPECT_EQ(reading.unsteady, std::vector<std::string>()) << keys_at_once;
    }
  }

  TestStore redis;
  StoreConnection connection;
  std::mt19937 generator{8200000};
};

TEST_F(StoreReading, GivesWhatIsStoredWhateverItIs) {
  for (unsigned long i = 0; i < 300 * TestFactor(); ++i) {
    const Server store = RandomStore();
    Fill(store);
    ReadingScope scope;
    for (std::size_t n = Number(3); n > 0; --n) scope.patterns.push_back(Pick(kPatterns));
    for (std::size_t n = Number(5); n > 0; --n) scope.keys.push_back(Pick(kTexts));
    ExpectRead(scope, Number(2) == 0 ? RandomStore() : store, Within(scope, store));
    EXPECT_EQ(Dump(ReadKeys(connection.get(), scope.keys, RandomStore())),
              Dump(Within({{}, scope.keys}, store)));
    ASSERT_FALSE(HasFailure()) << "store " << i << ":\n" << Dump(store);
  }
}

TEST_F(StoreReading, GivesNothingOfAnEmptyStore) {
  ExpectRead({{"*"}, {"/r"}}, {}, {});
  ExpectRead({}, {}, {});
  EXPECT_EQ(Dump(ReadKeys(connection.get(), {}, {})), "");
}

TEST_F(StoreReading, GivesWhatAServerHoldsWhoseMemoryIsFull) {
  Server store;
  store.keys["/r"] = Hash{{"A", "1"}};
  store.keys["/r/a"] = List{"1"};
  Fill(store);
  const ScopedSetting full(&redis, "maxmemory", "1");
  const Reading reading = ReadStore(connection.get(), {{"/r", "/r/*"}, {}}, {});
  EXPECT_EQ(Dump(reading.store), Dump(store));
  EXPECT_TRUE(reading.unsteady.empty());
}

TEST_F(StoreReading, GivesAllOfALargeStore) {
  (void)redis.Run(Command{"EVAL",
                          "for i = 1, 5000 do\n"
                          "  redis.call('HSET', '/h' .. i, 'f', i)\n"
                          "  redis.call('RPUSH', '/l' .. i, i, i)\n"
                          "end",
                          "0"});
  Server store;
  for (int i = 1; i <= 5000; ++i) {
    const std::string number = std::to_string(i);
    store.keys["/h" + number] = Hash{{"f", number}};
    store.keys["/l" + number] = List{number, number};
  }
  // More than is read at once by default.
  store.keys["/another"] = OtherType();
  (void)redis.Run("SET | /another | x");
  ExpectRead({{"*"}, {}}, {}, store);
  ExpectRead({{"/*", "/h*"}, {"/none", "/h1"}}, store, store);
}

TEST_F(StoreReading, GivesLargeValues) {
  List list;
  for (int i = 0; i < 50000; ++i) list.push_back(std::to_string(i));
  Server store;
  store.keys["/list"] = list;
  store.keys["/hash"] = Hash{{"f", std::string(5000000, 'x')}};
  Fill(store);
  ExpectRead({{"*"}, {}}, {}, store);
}

// --- The commands --------------------------------------------------------------------------------

// What is sent to read a store, with a bar between the words.
class ReadingCommands : public StoreReading {
 protected:
  std::string CommandsFor(const ReadingScope& scope, const Server& likely,
                          std::size_t keys_at_once) {
    const std::string socket = RuntimeDirectory() + "/recorder.sock";
    Recorder recorder(socket, ServerSocket());
    recorder.Watch(getpid());
    ServerChoice choice;
    choice.socket_path = socket;
    StoreConnection recorded = ConnectTo(choice);
    (void)ReadStore(recorded.get(), scope, likely, keys_at_once);
    recorded.reset();
    return Describe(recorder.Finish().flights);
  }
};

TEST_F(ReadingCommands, AreOneTransaction) {
  Server store;
  store.keys["/r"] = Hash{{"f", "1"}};
  store.keys["/r/a"] = List{"1"};
  Fill(store);
  EXPECT_EQ(CommandsFor({{"/r", "/r/*"}, {"/none", "/r"}}, store, 10),
            "TYPE | /none\n"
            "--\n"
            "SCAN | 0 | MATCH | /r | COUNT | 1000\n"
            "--\n"
            "SCAN | 0 | MATCH | /r/* | COUNT | 1000\n"
            "--\n"
            "MULTI\n"
            "KEYS | /r\n"
            "KEYS | /r/*\n"
            "HGETALL | /none\n"
            "HGETALL | /r\n"
            "LRANGE | /r/a | 0 | -1\n"
            "EXEC\n");
}

TEST_F(ReadingCommands, AskForTheTypesOfWhatIsNotKnown) {
  Server store;
  store.keys["/a"] = List{"1"};
  store.keys["/b"] = OtherType();
  Fill(store);
  EXPECT_EQ(CommandsFor({{}, {"/b", "/a", "/none"}}, {}, 10),
            "TYPE | /b\n"
            "TYPE | /a\n"
            "TYPE | /none\n"
            "--\n"
            "MULTI\n"
            "LRANGE | /a | 0 | -1\n"
            "TYPE | /b\n"
            "HGETALL | /none\n"
            "EXEC\n");
}

TEST_F(ReadingCommands, AskAgainForWhatIsOfAnotherType) {
  Server store;
  store.keys["/a"] = List{"1"};
  Fill(store);
  Server likely;
  likely.keys["/a"] = Hash{{"f", "1"}};
  EXPECT_EQ(CommandsFor({{}, {"/a"}}, likely, 10),
            "MULTI\n"
            "HGETALL | /a\n"
            "EXEC\n"
            "--\n"
            "TYPE | /a\n"
            "--\n"
            "MULTI\n"
            "LRANGE | /a | 0 | -1\n"
            "EXEC\n");
}

TEST_F(ReadingCommands, ReadAboveTheLimitTwiceWithoutATransaction) {
  Server store;
  store.keys["/a"] = Hash{{"f", "1"}};
  store.keys["/b"] = List{"1"};
  Fill(store);
  EXPECT_EQ(CommandsFor({{"/*"}, {}}, store, 1),
            "SCAN | 0 | MATCH | /* | COUNT | 1000\n"
            "--\n"
            "HGETALL | /a\n"
            "LRANGE | /b | 0 | -1\n"
            "--\n"
            "SCAN | 0 | MATCH | /* | COUNT | 1000\n"
            "--\n"
            "HGETALL | /a\n"
            "LRANGE | /b | 0 | -1\n");
}

}  // namespace

}  // namespace ostrafel
