// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "model/memory_store.h"

#include <gtest/gtest.h>

#include <stdexcept>

namespace model {
namespace {

const char kWrongType[] = "WRONGTYPE Operation against a key holding the wrong kind of value";

TEST(MemoryStore, CountsNewFieldsAndReplacesOldOnes) {
  Store store;
  EXPECT_EQ(Execute(store, {"HSET", "/h", "a", "1"}), IntegerReply(1));
  EXPECT_EQ(Execute(store, {"HSET", "/h", "a", "2"}), IntegerReply(0));
  EXPECT_EQ(Execute(store, {"HSET", "/h", "b", ""}), IntegerReply(1));
  EXPECT_EQ(Dump(store), "hash | /h | a | 2\nhash | /h | b | \n");
}

TEST(MemoryStore, AppendsToListsAndRemovesEveryEqualElement) {
  Store store;
  EXPECT_EQ(Execute(store, {"RPUSH", "/l", "1"}), IntegerReply(1));
  EXPECT_EQ(Execute(store, {"RPUSH", "/l", "2"}), IntegerReply(2));
  EXPECT_EQ(Execute(store, {"RPUSH", "/l", "1"}), IntegerReply(3));
  EXPECT_EQ(Execute(store, {"LINDEX", "/l", "0"}), StringReply("1"));
  EXPECT_EQ(Execute(store, {"LREM", "/l", "0", "1"}), IntegerReply(2));
  EXPECT_EQ(Execute(store, {"LREM", "/l", "0", "1"}), IntegerReply(0));
  EXPECT_EQ(Dump(store), "list | /l | 2\n");
}

TEST(MemoryStore, EmptyContainersLoseTheirKeys) {
  Store store{{"/h", {Hash{{"a", "1"}}}}, {"/l", {List{"x"}}}};
  EXPECT_EQ(Execute(store, {"HDEL", "/h", "a"}), IntegerReply(1));
  EXPECT_EQ(Execute(store, {"LREM", "/l", "0", "x"}), IntegerReply(1));
  EXPECT_TRUE(store.empty());
  EXPECT_EQ(Execute(store, {"TYPE", "/h"}), StatusReply("none"));
}

TEST(MemoryStore, NamesEveryType) {
  Store store{{"/h", {Hash{{"a", "1"}}}}, {"/l", {List{"x"}}}, {"/s", {std::string("x")}}};
  EXPECT_EQ(Execute(store, {"TYPE", "/h"}), StatusReply("hash"));
  EXPECT_EQ(Execute(store, {"TYPE", "/l"}), StatusReply("list"));
  EXPECT_EQ(Execute(store, {"TYPE", "/s"}), StatusReply("string"));
  EXPECT_EQ(Execute(store, {"TYPE", "/n"}), StatusReply("none"));
}

TEST(MemoryStore, AnswersMissingKeysWithNothing) {
  Store store;
  EXPECT_EQ(Execute(store, {"LINDEX", "/n", "0"}), NilReply());
  EXPECT_EQ(Execute(store, {"HEXISTS", "/n", "a"}), IntegerReply(0));
  EXPECT_EQ(Execute(store, {"HDEL", "/n", "a"}), IntegerReply(0));
  EXPECT_EQ(Execute(store, {"LREM", "/n", "0", "a"}), IntegerReply(0));
  EXPECT_EQ(Execute(store, {"UNLINK", "/n"}), IntegerReply(0));
  EXPECT_EQ(Execute(store, {"DEL", "/n"}), IntegerReply(0));
  EXPECT_EQ(Execute(store, {"HSCAN", "/n", "0", "MATCH", "*"}),
            ArrayReply({StringReply("0"), ArrayReply({})}));
  EXPECT_TRUE(store.empty());
}

TEST(MemoryStore, RefusesCommandsForAnotherType) {
  const Store filled{{"/h", {Hash{{"a", "1"}}}}, {"/l", {List{"x"}}}, {"/s", {std::string("x")}}};
  Store store = filled;
  for (const char* key : {"/l", "/s"}) {
    EXPECT_EQ(Execute(store, {"HSET", key, "a", "1"}), ErrorReply(kWrongType));
    EXPECT_EQ(Execute(store, {"HDEL", key, "a"}), ErrorReply(kWrongType));
    EXPECT_EQ(Execute(store, {"HEXISTS", key, "a"}), ErrorReply(kWrongType));
    EXPECT_EQ(Execute(store, {"HSCAN", key, "0", "MATCH", "*"}), ErrorReply(kWrongType));
  }
  for (const char* key : {"/h", "/s"}) {
    EXPECT_EQ(Execute(store, {"RPUSH", key, "x"}), ErrorReply(kWrongType));
    EXPECT_EQ(Execute(store, {"LREM", key, "0", "x"}), ErrorReply(kWrongType));
    EXPECT_EQ(Execute(store, {"LINDEX", key, "0"}), ErrorReply(kWrongType));
  }
  EXPECT_EQ(store, filled);
}

TEST(MemoryStore, ListsMatchingKeysAndFields) {
  Store store{{"/r", {Hash{{"A", "1"}, {"B", "2"}, {"AB", "3"}}}},
              {"/r/x", {List{"x"}}},
              {"&&/r/x", {List{"x"}}}};
  EXPECT_EQ(Execute(store, {"keys", "/r/*"}), ArrayReply({StringReply("/r/x")}));
  EXPECT_EQ(
      Execute(store, {"SCAN", "0", "MATCH", "*/r/x", "COUNT", "1000"}),
      ArrayReply({StringReply("0"), ArrayReply({StringReply("&&/r/x"), StringReply("/r/x")})}));
  EXPECT_EQ(Execute(store, {"HSCAN", "/r", "0", "MATCH", "A*"}),
            ArrayReply({StringReply("0"), ArrayReply({StringReply("A"), StringReply("1"),
                                                      StringReply("AB"), StringReply("3")})}));
}

TEST(MemoryStore, TheLoneStarListsTheEmptyKeyToo) {
  Store store{{"", {Hash{{"A", "1"}}}}};
  EXPECT_EQ(Execute(store, {"KEYS", "*"}), ArrayReply({StringReply("")}));
  EXPECT_EQ(Execute(store, {"KEYS", "**"}), ArrayReply({}));
}

TEST(MemoryStore, ThrowsAtCommandsThatARunNeverSends) {
  Store store;
  EXPECT_THROW(Execute(store, {"FLUSHALL"}), std::invalid_argument);
  EXPECT_THROW(Execute(store, {"HSET", "/h", "a"}), std::invalid_argument);
  EXPECT_THROW(Execute(store, {"LREM", "/l", "1", "a"}), std::invalid_argument);
  EXPECT_THROW(Execute(store, {}), std::invalid_argument);
}

}  // namespace
}  // namespace model
