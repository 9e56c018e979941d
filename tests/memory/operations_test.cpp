// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// Single operations, on a store in memory and as commands on a real server.
#include <gtest/gtest.h>

#include <cstddef>
#include <optional>
#include <random>
#include <set>
#include <string>
#include <vector>

#include "base/message.h"
#include "layout/layout.h"
#include "memory/memory_server.h"
#include "memory/server_copy.h"
#include "store/queue.h"
#include "store/server.h"
#include "store/store_state.h"
#include "store/tree_removal.h"
#include "support/sandbox.h"
#include "support/test_factor.h"
#include "support/test_store.h"

namespace ostrafel {

namespace {

using model::Command;
using Type = model::Reply::Type;

const std::vector<std::string> kKeys = {"/a", "/a/", "/a/b", "&&/a/b", "/a*", "/b", ""};
const std::vector<std::string> kNames = {"x", "x y", "y", "*", "", "&&Object /a/b"};
const std::vector<std::string> kPatterns = {"*", "/a", "/a*", "/a/*", "x*", "[xy]", "\\*", "?", ""};

class Operations : public testing::Test {
 protected:
  Operations() : redis(ServerSocket()) {
    (void)redis.Run("FLUSHALL");
    Store.emplace();
    Messages.collector = &printed;
  }
  ~Operations() override {
    Messages.collector = nullptr;
    Store.emplace();
  }

  const std::string& Pick(const std::vector<std::string>& pool) {
    return pool[generator() % pool.size()];
  }

  // Sends the commands. False when the server refuses one.
  bool AreAccepted(const std::vector<Command>& commands) {
    bool are_accepted = true;
    for (const Command& command : commands) {
      are_accepted = redis.Run(command).type != Type::kError && are_accepted;
    }
    return are_accepted;
  }

  void ExpectFlushed(unsigned result, const std::vector<Command>& commands, const char* message) {
    const bool are_accepted = AreAccepted(commands);
    EXPECT_EQ(result, are_accepted ? 1U : 0U);
    EXPECT_EQ(printed, are_accepted ? "" : message);
    printed.clear();
  }

  void SetFields() {
    std::vector<Command> commands;
    for (std::size_t i = generator() % 4; i > 0; --i) {
      const Command& sent = commands.emplace_back(
          Command{"HSET", Pick(kKeys), Pick(kNames), std::to_string(generator() % 3)});
      ASSERT_EQ(PutHashField(&server, sent[1], Pieces{sent[2]}, sent[3]), 1U);
    }
    ExpectFlushed(FlushHashBatch(&server), commands, HashFlushFailed);
  }

  void AppendElements() {
    std::vector<Command> commands;
    for (std::size_t i = generator() % 6; i > 0; --i) {
      const Command& sent = commands.emplace_back(Command{"RPUSH", Pick(kKeys), Pick(kNames)});
      ASSERT_EQ(PutListItem(&server, sent[1], Pieces{sent[2]}), 1U);
    }
    ExpectFlushed(FlushListBatch(&server), commands, ListFlushFailed);
  }

  void Remove() {
    std::vector<Command> commands;
    for (std::size_t i = generator() % 2; i > 0; --i) {
      const Command& sent = commands.emplace_back(Command{"UNLINK", Pick(kKeys)});
      ASSERT_EQ(QueueRemoval(&server, sent[1], {}, RemoveKey), 1U);
    }
    for (std::size_t i = generator() % 4; i > 0; --i) {
      const Command& sent = commands.emplace_back(Command{"LREM", Pick(kKeys), "0", Pick(kNames)});
      ASSERT_EQ(QueueRemoval(&server, sent[1], Pieces{sent[3]}, RemoveListValue), 1U);
    }
    for (std::size_t i = generator() % 4; i > 0; --i) {
      const Command& sent = commands.emplace_back(Command{"HDEL", Pick(kKeys), Pick(kNames)});
      ASSERT_EQ(QueueRemoval(&server, sent[1], Pieces{sent[2]}, RemoveField), 1U);
    }
    ExpectFlushed(FlushRemovalBatch(&server), commands, RemovalFlushFailed);
  }

  void RemoveTree() {
    const std::string& uri = kKeys[generator() % 5];
    EXPECT_EQ(RemoveResourceTree(&server, uri), 1U);
    for (const std::string& pattern : TreePatterns(uri)) {
      for (const model::Reply& key : redis.Run(Command{"KEYS", pattern}).elements) {
        (void)redis.Run(Command{"DEL", key.text});
      }
    }
  }

  // A value of another type.
  void SetText() {
    const std::string& key = Pick(kKeys);
    (void)redis.Run(Command{"SET", key, "text"});
    server.keys[key] = OtherType();
  }

  void AskAboutKey() {
    const std::string& key = Pick(kKeys);
    const std::string type = redis.Run(Command{"TYPE", key}).text;
    const std::optional<KeyType> answer = AskType(&server, key);
    EXPECT_EQ(answer == KeyType::kNone, type == "none");
    EXPECT_EQ(answer == KeyType::kHash, type == "hash");
    EXPECT_EQ(answer == KeyType::kList, type == "list");
    EXPECT_EQ(answer == KeyType::kOther, type == "string");

    const model::Reply first = redis.Run(Command{"LINDEX", key, "0"});
    const std::optional<std::string> element = AskFirstElement(&server, key);
    EXPECT_EQ(element.has_value(), first.type == Type::kString);
    EXPECT_EQ(element.value_or(""), first.type == Type::kString ? first.text : "");

    const std::string& field = Pick(kNames);
    EXPECT_EQ(AskFieldExists(&server, key, field),
              redis.Run(Command{"HEXISTS", key, field}).integer == 1);
  }

  // Compares what a search gives with every step-th item of a SCAN's reply.
  template <typename Search>
  static void ExpectFound(const model::Reply& reply, std::size_t step, const Search& search) {
    std::multiset<std::string> expected;
    if (reply.type == Type::kArray) {
      const std::vector<model::Reply>& items = reply.elements.at(1).elements;
      for (std::size_t i = 0; i < items.size(); i += step) expected.insert(items[i].text);
    }
    std::multiset<std::string> found;
    const auto take = [&](const std::string& name) {
      found.insert(name);
      return 1U;
    };
    EXPECT_EQ(search(take), reply.type == Type::kArray ? 1U : 0U);
    EXPECT_EQ(found, expected);
  }

  void Find() {
    const std::string& key = Pick(kKeys);
    const std::string& pattern = Pick(kPatterns);
    ExpectFound(redis.Run(Command{"SCAN", "0", "MATCH", pattern, "COUNT", "1000"}), 1,
                [&](const TakeName& take) { return FindKeys(&server, pattern, take); });
    ExpectFound(redis.Run(Command{"HSCAN", key, "0", "MATCH", pattern}), 2,
                [&](const TakeName& take) { return FindFields(&server, key, pattern, take); });
  }

  void DoSomething() {
    switch (generator() % 16) {
      case 0:
        return SetText();
      case 1:
        return RemoveTree();
      case 2:
      case 3:
      case 4:
        return Remove();
      case 5:
      case 6:
        return SetFields();
      case 7:
      case 8:
        return AppendElements();
      case 9:
      case 10:
      case 11:
        return Find();
      default:
        return AskAboutKey();
    }
  }

  TestStore redis;
  Server server;
  std::string printed;
  std::mt19937 generator{8000000};
};

TEST_F(Operations, AnswerAndStoreWhatTheServerDoes) {
  for (unsigned long i = 0; i < 5000 * TestFactor(); ++i) {
    const std::string before = Dump(server);
    Store.emplace();  // or a batch would be full after some hundreds of operations
    DoSomething();
    ASSERT_EQ(Dump(server), Dump(CopyOf(redis.Contents())));
    ASSERT_FALSE(HasFailure()) << "operation " << i << " on\n" << before;
  }
}

TEST_F(Operations, ASearchEndsWhenANameIsNotTaken) {
  server.keys = {{"/a", Hash{{"x", ""}, {"y", ""}}}, {"/b", Hash{{"x", ""}}}};
  std::vector<std::string> names;
  const auto take = [&](const std::string& name) {
    names.push_back(name);
    return 0U;
  };
  EXPECT_EQ(FindKeys(&server, "*", take), 0U);
  EXPECT_EQ(FindFields(&server, "/a", "*", take), 0U);
  EXPECT_EQ(names, (std::vector<std::string>{"/a", "x"}));
}

TEST_F(Operations, WhatIsFoundMayBeRemovedAndAddedAtOnce) {
  server.keys = {{"/a", Hash{{"x", ""}, {"y", ""}}}, {"/b", List{"x"}}};
  std::vector<std::string> names;
  const auto take = [&](const std::string& name) {
    names.push_back(name);
    server.keys = {{"/c", Hash{{"z", ""}}}};
    return 1U;
  };
  EXPECT_EQ(FindFields(&server, "/a", "*", take), 1U);
  EXPECT_EQ(names, (std::vector<std::string>{"x", "y"}));
  server.keys = {{"/a", OtherType()}, {"/b", List{"x"}}};
  names.clear();
  EXPECT_EQ(FindKeys(&server, "/*", take), 1U);
  EXPECT_EQ(names, (std::vector<std::string>{"/a", "/b"}));
}

// A client of a server that formats commands with "%s" can neither ask for nor remove what has a
// NUL in its name, but finds it.
TEST_F(Operations, NamesEndAtANul) {
  const std::string key("/a\0b", 4);
  const std::string field("x\0y", 3);
  server.keys = {{key, Hash{{field, ""}}}, {"/a", Hash{{"x", ""}}}, {"/b", List{"x"}}};
  EXPECT_EQ(AskType(&server, key), KeyType::kHash);
  EXPECT_EQ(AskType(&server, std::string("/b\0", 3)), KeyType::kList);
  EXPECT_EQ(AskFirstElement(&server, std::string("/b\0", 3)), "x");
  EXPECT_TRUE(AskFieldExists(&server, key, field));
  std::vector<std::string> names;
  const auto take = [&](const std::string& name) {
    names.push_back(name);
    return 1U;
  };
  EXPECT_EQ(FindKeys(&server, std::string("/a*\0/", 5), take), 1U);
  EXPECT_EQ(FindFields(&server, key, std::string("x\0", 2), take), 1U);
  EXPECT_EQ(names, (std::vector<std::string>{"/a", key, "x"}));

  ASSERT_EQ(QueueRemoval(&server, std::string("/b\0", 3), {}, RemoveKey), 1U);
  EXPECT_EQ(FlushRemovalBatch(&server), 1U);
  EXPECT_EQ(server.keys.count("/b"), 0U);
  EXPECT_EQ(RemoveResourceTree(&server, "/a?b"), 1U);
  EXPECT_EQ(server.keys.count(key), 1U);
  EXPECT_EQ(server.keys.count("/a"), 0U);
}

TEST_F(Operations, AnEmptyUriNamesNoTree) {
  EXPECT_THROW((void)RemoveResourceTree(&server, ""), std::out_of_range);
}

}  // namespace

}  // namespace ostrafel
