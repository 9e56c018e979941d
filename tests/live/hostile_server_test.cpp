// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// Reading from a server that refuses, or answers what no server should.
#include <gtest/gtest.h>

#include <cstddef>
#include <stdexcept>
#include <string>
#include <vector>

#include "live/canned_connection.h"
#include "live/store_reading.h"
#include "memory/server_copy.h"
#include "support/repeated.h"
#include "support/sandbox.h"
#include "support/scoped_setting.h"
#include "support/test_store.h"

namespace ostrafel {

namespace {

std::string Bulk(const std::string& text) {
  return "$" + std::to_string(text.size()) + "\r\n" + text + "\r\n";
}

std::string Array(const std::vector<std::string>& replies) {
  std::string bytes = "*" + std::to_string(replies.size()) + "\r\n";
  for (const std::string& reply : replies) bytes += reply;
  return bytes;
}

const std::string kQueued = "+QUEUED\r\n";
const std::string kFound = Array({Bulk("0"), Array({Bulk("/h"), Bulk("/l"), Bulk("/s")})});
const std::string kTypes = "+hash\r\n+list\r\n+string\r\n";
const std::string kNames = Array({Bulk("/s"), Bulk("/h"), Bulk("/l")});
const std::string kHash = Array({Bulk("f"), Bulk("1")});
const std::string kList = Array({Bulk("1"), Bulk("2")});
const std::string kOther = "+string\r\n";
const std::string kOpened = "+OK\r\n" + Repeated(kQueued, 4);

const std::string kStore = "hash | /h | f | 1\nlist | /l | 1\nlist | /l | 2\nother | /s\n";

// What comes of reading all keys: the store, or what is raised.
std::string Read(const std::string& answers, std::size_t keys_at_once) {
  CannedConnection connection(answers);
  try {
    const Reading reading = ReadStore(connection.context(), {{"*"}, {}}, {}, keys_at_once);
    std::string text = Dump(reading.store);
    for (const std::string& key : reading.unsteady) text += "unsteady | " + key + "\n";
    return text;
  } catch (const std::runtime_error& error) {
    return error.what();
  }
}

std::string ReadAtOnce(const std::string& names, const std::string& hash, const std::string& list,
                       const std::string& other) {
  return Read(kFound + kTypes + kOpened + Array({names, hash, list, other}), 10);
}

std::string ReadInParts(const std::string& hash, const std::string& list,
                        const std::string& other) {
  const std::string replies = hash + list + other;
  return Read(kFound + kTypes + replies + kFound + replies, 0);
}

std::string WrongAnswerTo(const std::string& command) {
  return "Redis answers " + command + " with something else than it should";
}

std::string RefusalOf(const std::string& command) {
  return "Redis answers " + command + " with: ERR no";
}

constexpr const char* kClosed = "the connection to Redis failed: Server closed the connection";
constexpr const char* kRefusal = "-ERR no\r\n";

// One reply of each type, whose texts mean nothing.
const std::vector<std::string> kReplies = {
    "+x\r\n",       ":1\r\n",       "$-1\r\n",       "$1\r\nx\r\n",      "*-1\r\n",     "*0\r\n",
    "*1\r\n:1\r\n", "*1\r\n*0\r\n", "*1\r\n$-1\r\n", "*1\r\n-ERR x\r\n", "*1\r\n+x\r\n"};

TEST(HostileServer, IsReadWhenItAnswersAsItShould) {
  EXPECT_EQ(ReadAtOnce(kNames, kHash, kList, kOther), kStore);
  EXPECT_EQ(ReadInParts(kHash, kList, kOther), kStore);
}

TEST(HostileServer, MayNameAKeyManyTimes) {
  const std::string page = Array({Bulk("7"), Array({Bulk("/h"), Bulk("/l"), Bulk("/h")})});
  EXPECT_EQ(Read(page + kFound + kTypes + kOpened +
                     Array({Array({Bulk("/h"), Bulk("/h"), Bulk("/l")}), kHash, kList, kOther}),
                 10),
            kStore);
}

TEST(HostileServer, MustAnswerAScanWithACursorAndNames) {
  for (const std::string& reply : kReplies) EXPECT_EQ(Read(reply, 10), WrongAnswerTo("SCAN"));
  for (const std::string& cursor : kReplies) {
    if (cursor == Bulk("x")) continue;  // it is sent back, and the server may know what it means
    EXPECT_EQ(Read(Array({cursor, Array({})}), 10), WrongAnswerTo("SCAN")) << cursor;
  }
  for (const std::string& names : kReplies) {
    if (names == Array({})) continue;
    EXPECT_EQ(Read(Array({Bulk("0"), names}), 10).substr(0, 18), "Redis answers SCAN") << names;
  }
  EXPECT_EQ(Read(Array({Bulk("0"), Array({}), Array({})}), 10), WrongAnswerTo("SCAN"));
  EXPECT_EQ(Read(kRefusal, 10), RefusalOf("SCAN"));
}

TEST(HostileServer, MustEndItsScan) {
  const std::string page = Array({Bulk("7"), Array({})});
  const std::string other_page = Array({Bulk("8"), Array({Bulk("/h")})});
  const std::string trouble = "Redis does not come to an end of listing its keys";
  EXPECT_EQ(Read(page + page, 10), trouble);
  EXPECT_EQ(Read(page + other_page + page, 10), trouble);
  EXPECT_EQ(Read(page + other_page, 10), kClosed);
}

TEST(HostileServer, MustAnswerATypeWithAStatus) {
  for (const std::string& reply : kReplies) {
    if (reply[0] == '+') continue;
    EXPECT_EQ(Read(kFound + reply, 10), WrongAnswerTo("TYPE")) << reply;
    EXPECT_EQ(ReadAtOnce(kNames, kHash, kList, reply), WrongAnswerTo("TYPE")) << reply;
    EXPECT_EQ(ReadInParts(kHash, kList, reply), WrongAnswerTo("TYPE")) << reply;
  }
  EXPECT_EQ(Read(kFound + kRefusal, 10), RefusalOf("TYPE"));
  EXPECT_EQ(ReadAtOnce(kNames, kHash, kList, kRefusal), RefusalOf("TYPE"));
}

TEST(HostileServer, MustAnswerAQuestionForContentsWithTexts) {
  for (const std::string& reply : kReplies) {
    if (reply == Array({})) continue;
    const auto expect = [&](const std::string& command, const std::string& found) {
      EXPECT_EQ(found, WrongAnswerTo(command)) << reply;
    };
    expect("HGETALL", ReadAtOnce(kNames, reply, kList, kOther));
    expect("HGETALL", ReadInParts(reply, kList, kOther));
    expect("LRANGE", ReadAtOnce(kNames, kHash, reply, kOther));
    expect("LRANGE", ReadInParts(kHash, reply, kOther));
    expect("KEYS", ReadAtOnce(reply, kHash, kList, kOther));
  }
  EXPECT_EQ(ReadAtOnce(kNames, Array({Bulk("f")}), kList, kOther), WrongAnswerTo("HGETALL"));
  EXPECT_EQ(ReadInParts(kRefusal, kList, kOther), RefusalOf("HGETALL"));
  EXPECT_EQ(ReadAtOnce(kNames, kHash, kRefusal, kOther), RefusalOf("LRANGE"));
  EXPECT_EQ(ReadAtOnce(kRefusal, kHash, kList, kOther), RefusalOf("KEYS"));
}

TEST(HostileServer, MustAnswerATransactionWithWhatEachCommandGives) {
  for (const std::string& reply : kReplies) {
    EXPECT_EQ(Read(kFound + kTypes + kOpened + reply, 10), WrongAnswerTo("EXEC")) << reply;
  }
  EXPECT_EQ(Read(kFound + kTypes + kOpened + Array({kNames, kHash, kList, kOther, kOther}), 10),
            WrongAnswerTo("EXEC"));
  EXPECT_EQ(Read(kFound + kTypes + kOpened + kRefusal, 10), RefusalOf("EXEC"));
}

TEST(HostileServer, MayRefuseAnyPartOfATransaction) {
  const std::string aborted = "-EXECABORT Transaction discarded because of previous errors.\r\n";
  for (std::size_t refused = 0; refused < 5; ++refused) {
    std::string answers = kFound + kTypes;
    for (std::size_t i = 0; i < 5; ++i) answers += i == refused ? kRefusal : kQueued;
    EXPECT_EQ(Read(answers + aborted, 10), "Redis refuses to be read: ERR no") << refused;
  }
}

TEST(HostileServer, MayGiveFieldsInAnyOrderAndTwice) {
  EXPECT_EQ(
      ReadAtOnce(kNames, Array({Bulk("g"), Bulk("2"), Bulk("f"), Bulk("1"), Bulk("g"), Bulk("3")}),
                 kList, kOther),
      "hash | /h | f | 1\nhash | /h | g | 3\nlist | /l | 1\nlist | /l | 2\nother | /s\n");
}

TEST(HostileServer, MayNotSayForEverThatATypeIsWrong) {
  const std::string wrong = "-WRONGTYPE Operation\r\n";
  const std::string answers = Repeated(wrong + "+hash\r\n", kMostReadings);
  EXPECT_EQ(Read(Array({Bulk("0"), Array({Bulk("/h")})}) + "+hash\r\n" + answers, 0),
            "others change the type of a key each time that it is read: /h");
}

// RESP 3, which nobody has asked for: the library knows its types, or calls them an error.
TEST(HostileServer, MayNotSpeakAnotherProtocol) {
  for (const char* reply : {"%1\r\n+f\r\n+1\r\n", "~1\r\n+f\r\n", "_\r\n", ",1.5\r\n", "#t\r\n",
                            "(1\r\n", "=5\r\ntxt:x\r\n", ">1\r\n+x\r\n", "|1\r\n+a\r\n+b\r\n"}) {
    const std::string found = Read(reply, 10);
    EXPECT_TRUE(found == WrongAnswerTo("SCAN") || found == kClosed ||
                found.find("Protocol error") != std::string::npos)
        << reply << found;
  }
}

TEST(HostileServer, IsNotBelievedWhenItLeavesBeforeTheEnd) {
  const std::string at_once = kFound + kTypes + kOpened + Array({kNames, kHash, kList, kOther});
  for (std::size_t size = 0; size < at_once.size(); ++size) {
    ASSERT_EQ(Read(at_once.substr(0, size), 10), kClosed) << size;
  }
  const std::string part = kHash + kList + kOther;
  const std::string in_parts = kFound + kTypes + part + kFound + part;
  for (std::size_t size = 0; size < in_parts.size(); ++size) {
    ASSERT_EQ(Read(in_parts.substr(0, size), 0), kClosed) << size;
  }
}

TEST(HostileServer, IsNotBelievedWhenAReplyIsTooLarge) {
  for (const char* reply :
       {"$2147483647\r\nx", "*1\r\n$2147483647\r\n", "$99999999999999999999\r\n"}) {
    EXPECT_EQ(Read(reply, 10).substr(0, 32), "the connection to Redis failed: ") << reply;
  }
}

// --- What a real server says ---------------------------------------------------------------------

TEST(RefusingServer, SaysWhy) {
  TestStore redis(ServerSocket());
  const auto trouble = [](redisContext* context, std::size_t keys_at_once) {
    try {
      (void)ReadStore(context, {{"*"}, {"/a"}}, {}, keys_at_once);
    } catch (const std::runtime_error& error) {
      return std::string(error.what());
    }
    return std::string("none");
  };
  (void)redis.Run("FLUSHALL");
  (void)redis.Run(
      "ACL | SETUSER | curious | on | nopass | allkeys | +type | +scan | +multi | +exec");
  for (const std::size_t keys_at_once : {10U, 0U}) {
    TestStore curious(ServerSocket());
    (void)curious.Run("AUTH | curious | x");
    EXPECT_EQ(trouble(curious.context(), keys_at_once).substr(0, 34),
              keys_at_once == 0 ? "Redis answers HGETALL with: NOPERM"
                                : "Redis refuses to be read: NOPERM t");
  }
  (void)redis.Run("ACL | DELUSER | curious");
  const ScopedSetting password(&redis, "requirepass", "secret");
  TestStore stranger(ServerSocket());
  EXPECT_EQ(trouble(stranger.context(), 10),
            "Redis answers TYPE with: NOAUTH Authentication required.");
}

}  // namespace

}  // namespace ostrafel
