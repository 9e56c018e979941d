// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "live/key_stream.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "live/canned_connection.h"
#include "live/key_reading.h"
#include "live/server_choice.h"
#include "memory/server_copy.h"
#include "support/sandbox.h"
#include "support/scoped_setting.h"
#include "support/test_store.h"

namespace ostrafel {

namespace {

class KeyStream : public testing::Test {
 protected:
  KeyStream() : redis(ServerSocket()) {
    (void)redis.Run("FLUSHALL");
    (void)redis.Run("HSET | /h | f | 1");
    (void)redis.Run("RPUSH | /l | 1 | 2");
    (void)redis.Run("SET | /s | x");
    ServerChoice choice;
    choice.socket_path = ServerSocket();
    connection = ConnectTo(choice);
  }

  // Takes a value down.
  void Take(std::size_t place, const std::optional<Stored>& value) {
    Server one;
    if (value) one.keys[*keys[place].key] = *value;
    text += std::to_string(place) + ": " + (value ? Dump(one) : "of another type\n");
  }

  TestStore redis;
  StoreConnection connection;
  const std::string h = "/h", l = "/l", s = "/s";
  // Each as what it is, and as what it is not.
  const std::vector<KeyToRead> keys = {
      {&l, KeyType::kList}, {&h, KeyType::kHash}, {&s, KeyType::kOther}, {&l, KeyType::kHash},
      {&h, KeyType::kList}, {&s, KeyType::kHash}, {&h, KeyType::kOther}};
  const std::string expected =
      "0: list | /l | 1\nlist | /l | 2\n1: hash | /h | f | 1\n2: other | /s\n"
      "3: of another type\n4: of another type\n5: of another type\n6: of another type\n";
  std::string text;
};

TEST_F(KeyStream, GivesKeysInTheirOrder) {
  StreamKeys(connection.get(), keys,
             [&](std::size_t place, const std::optional<Stored>& value) { Take(place, value); });
  EXPECT_EQ(text, expected);
}

TEST_F(KeyStream, GivesNamesAndKeysOfOneMoment) {
  StreamKeysAtOnce(
      connection.get(), {"/h", "/l*"}, keys,
      [&](std::string_view name) { text += std::string(name) + "\n"; },
      [&](std::size_t place, const std::optional<Stored>& value) { Take(place, value); });
  EXPECT_EQ(text, "/h\n/l\n" + expected);
}

// Others may remove a key after its name was read.
TEST_F(KeyStream, GivesNothingOfKeysThatAreGone) {
  const std::string gone = "/gone";
  const std::vector<KeyToRead> gone_keys = {
      {&gone, KeyType::kHash}, {&gone, KeyType::kList}, {&gone, KeyType::kOther}};
  std::size_t given = 0;
  const auto take = [&](std::size_t place, const std::optional<Stored>& value) {
    EXPECT_EQ(place, given++ % gone_keys.size());
    ASSERT_TRUE(value) << place;
    EXPECT_TRUE(IsEmpty(*value)) << place;
  };
  StreamKeys(connection.get(), gone_keys, take);
  StreamKeysAtOnce(
      connection.get(), {}, gone_keys, [](std::string_view) {}, take);
  EXPECT_EQ(given, 2 * gone_keys.size());
}

TEST_F(KeyStream, TellsThatMemoryIsFull) {
  const ScopedSetting full(&redis, "maxmemory", "1");
  EXPECT_THROW(StreamKeysAtOnce(
                   connection.get(), {}, keys, [](std::string_view) {},
                   [](std::size_t, const std::optional<Stored>&) {}),
               MemoryIsFull);
}

const std::string kQueued = "+OK\r\n+QUEUED\r\n+QUEUED\r\n+QUEUED\r\n";

// What is read of a pattern, a hash and a list at once, and how that ends.
std::string ReadAtOnce(const std::string& answers) {
  CannedConnection connection(answers);
  const std::string h = "/h";
  const std::string l = "/l";
  std::string text;
  try {
    StreamKeysAtOnce(
        connection.context(), {"/*"}, {{&h, KeyType::kHash}, {&l, KeyType::kList}},
        [&](std::string_view name) { text += std::string(name) + "\n"; },
        [&](std::size_t place, const std::optional<Stored>&) {
          text += std::to_string(place) + "\n";
        });
    return text + "end";
  } catch (const std::runtime_error& error) {
    return text + error.what();
  }
}

TEST(KeyStreamAtOnce, TellsOfAnEndAfterAnyByte) {
  const std::string whole = kQueued +
                            "*3\r\n*2\r\n$2\r\n/h\r\n$2\r\n/l\r\n"
                            "*2\r\n$1\r\nf\r\n$1\r\n1\r\n*2\r\n$1\r\n1\r\n$1\r\n2\r\n";
  ASSERT_EQ(ReadAtOnce(whole), "/h\n/l\n0\n1\nend");
  for (std::size_t size = 0; size < whole.size(); ++size) {
    const std::string text = ReadAtOnce(whole.substr(0, size));
    EXPECT_EQ(text.substr(text.rfind('\n') + 1),
              "the connection to Redis failed: Server closed the connection")
        << size;
  }
}

TEST(KeyStreamAtOnce, TellsOfAnErrorInsteadOfTheAnswers) {
  EXPECT_EQ(ReadAtOnce(kQueued + "-EXECABORT no\r\n"), "Redis answers EXEC with: EXECABORT no");
  EXPECT_EQ(ReadAtOnce(kQueued + "-NOPERM no\r\n"), "Redis answers EXEC with: NOPERM no");
}

TEST(KeyStreamAtOnce, RefusesAnotherNumberOfAnswers) {
  const std::string wrong = "Redis answers EXEC with something else than it should";
  EXPECT_EQ(ReadAtOnce(kQueued + "*0\r\n"), wrong);
  EXPECT_EQ(ReadAtOnce(kQueued + "*2\r\n*0\r\n*0\r\n"), "0\n" + wrong);
  EXPECT_EQ(ReadAtOnce(kQueued + "*4\r\n*0\r\n*0\r\n*0\r\n*0\r\n"), "0\n1\n" + wrong);
}

TEST(KeyStreamAtOnce, TellsOfAKeyThatMayNotBeRead) {
  EXPECT_EQ(ReadAtOnce(kQueued + "*3\r\n*0\r\n-NOPERM no\r\n*0\r\n"),
            "Redis refuses to be read: NOPERM no");
  EXPECT_EQ(ReadAtOnce(kQueued + "*3\r\n-NOPERM no\r\n*0\r\n*0\r\n"),
            "Redis refuses to be read: NOPERM no");
}

}  // namespace

}  // namespace ostrafel
