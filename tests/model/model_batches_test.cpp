// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include <gtest/gtest.h>

#include <cstddef>
#include <string>
#include <vector>

#include "model/batches.h"
#include "model/model_fixture.h"

namespace model {
namespace {

// {"m1000": 0, "m1001": 0, ...}: names of one length, so that their order is their number's.
std::string Members(std::size_t count) {
  std::string text;
  for (std::size_t i = 0; i < count; ++i) {
    text += (i == 0 ? "\"m" : ", \"m") + std::to_string(1000 + i) + "\": 0";
  }
  return text;
}

std::string Elements(std::size_t count) {
  std::string text;
  for (std::size_t i = 0; i < count; ++i) text += (i == 0 ? "" : ", ") + std::to_string(i);
  return text;
}

class Batches : public ModelTest {
 protected:
  Batches() : endpoint(store), run(endpoint, "") {}

  MemoryEndpoint endpoint;
  RunState run;
};

TEST_F(Batches, EmptyOnesSendNothing) {
  EXPECT_TRUE(FlushRemovals(run));
  EXPECT_TRUE(FlushHashes(run));
  EXPECT_TRUE(FlushLists(run));
  EXPECT_TRUE(endpoint.Flights().empty());
}

TEST_F(Batches, The2001stValueFlushesRemovalsFirst) {
  ASSERT_TRUE(QueueRemoval(run, "/old", "", RemovalKind::kKey));
  for (int i = 0; i < 2000; ++i) ASSERT_TRUE(PutItem(run, "/l", "x"));
  ASSERT_TRUE(PutField(run, "/h", "a", "1"));
  EXPECT_TRUE(endpoint.Flights().empty());
  EXPECT_EQ(run.list_count, 2000u);
  ASSERT_TRUE(PutItem(run, "/l", "y"));
  ASSERT_EQ(endpoint.Flights().size(), 2u);
  EXPECT_EQ(endpoint.Flights()[0].commands, (std::vector<Command>{{"UNLINK", "/old"}}));
  EXPECT_EQ(endpoint.Flights()[1].commands,
            std::vector<Command>(2000, Command{"RPUSH", "/l", "x"}));
  EXPECT_EQ(run.list_count, 1u);
  EXPECT_EQ(run.removal_count, 1u);  // only its own flush sets it back
  EXPECT_EQ(run.hash_batch.size(), 1u);
}

TEST_F(Batches, The2001stFieldFlushesRemovalsFirst) {
  ASSERT_TRUE(QueueRemoval(run, "/h", "b", RemovalKind::kField));
  for (int i = 0; i < 2000; ++i) ASSERT_TRUE(PutField(run, "/h", "a", std::to_string(i)));
  ASSERT_TRUE(PutItem(run, "/l", "x"));
  ASSERT_TRUE(PutField(run, "/h", "a", "last"));
  ASSERT_EQ(endpoint.Flights().size(), 2u);
  EXPECT_EQ(endpoint.Flights()[0].commands, (std::vector<Command>{{"HDEL", "/h", "b"}}));
  // Every call counts, but the last value of a field is the only one sent.
  EXPECT_EQ(endpoint.Flights()[1].commands, (std::vector<Command>{{"HSET", "/h", "a", "1999"}}));
  EXPECT_EQ(run.hash_count, 1u);
  EXPECT_EQ(run.removal_count, 1u);
  EXPECT_EQ(run.list_batch.size(), 1u);
}

TEST_F(Batches, The2001stRemovalFlushesRemovalsOnly) {
  for (int i = 0; i < 2000; ++i) {
    ASSERT_TRUE(QueueRemoval(run, "/k", std::to_string(i), RemovalKind::kElement));
  }
  ASSERT_TRUE(PutField(run, "/h", "a", "1"));
  ASSERT_TRUE(QueueRemoval(run, "/k", "x", RemovalKind::kField));
  ASSERT_EQ(endpoint.Flights().size(), 1u);
  EXPECT_EQ(endpoint.Flights()[0].commands.size(), 2000u);
  EXPECT_EQ(run.removal_count, 1u);
  EXPECT_EQ(run.hash_batch.size(), 1u);
}

TEST_F(Batches, RemovalsGoKeysThenElementsThenFields) {
  QueueRemoval(run, "/b", "f2", RemovalKind::kField);
  QueueRemoval(run, "/z", "e", RemovalKind::kElement);
  QueueRemoval(run, "/b", "f1", RemovalKind::kField);
  QueueRemoval(run, "/z", "", RemovalKind::kKey);
  QueueRemoval(run, "/a", "f", RemovalKind::kField);
  QueueRemoval(run, "/a", "", RemovalKind::kKey);
  QueueRemoval(run, "/a", "", RemovalKind::kKey);
  EXPECT_TRUE(FlushRemovals(run));
  EXPECT_EQ(endpoint.Flights()[0].commands, (std::vector<Command>{{"UNLINK", "/z"},
                                                                  {"UNLINK", "/a"},
                                                                  {"UNLINK", "/a"},
                                                                  {"LREM", "/z", "0", "e"},
                                                                  {"HDEL", "/a", "f"},
                                                                  {"HDEL", "/b", "f2"},
                                                                  {"HDEL", "/b", "f1"}}));
}

TEST_F(Batches, ListsGoKeyByKeyInQueueOrder) {
  for (const char* key : {"b", "a", "b"}) PutItem(run, key, std::to_string(run.list_count));
  EXPECT_TRUE(FlushLists(run));
  EXPECT_EQ(endpoint.Flights()[0].commands,
            (std::vector<Command>{{"RPUSH", "a", "1"}, {"RPUSH", "b", "0"}, {"RPUSH", "b", "2"}}));
}

TEST_F(Batches, AFailedFlushEmptiesItsBatchAndKeepsTheCount) {
  store = {{"/l", {Hash{{"a", "1"}}}}};
  for (int i = 0; i < 2000; ++i) ASSERT_TRUE(PutItem(run, "/l", "x"));
  EXPECT_FALSE(PutItem(run, "/l", "y"));
  EXPECT_EQ(run.err,
            "Some errors occur while creating list data into database\n"
            "The data in database would be incorrect\n");
  EXPECT_TRUE(run.list_batch.empty());
  EXPECT_EQ(run.list_count, 2000u);
  EXPECT_TRUE(PutItem(run, "/m", "z"));
  EXPECT_EQ(run.list_count, 1u);
  EXPECT_EQ(endpoint.Flights().size(), 1u);
}

TEST_F(Batches, APushThatAnswersZeroIsBad) {
  ReplayEndpoint odd({{{{"RPUSH", "/l", "x"}}, {IntegerReply(0)}}});
  RunState odd_run(odd, "");
  PutItem(odd_run, "/l", "x");
  EXPECT_FALSE(FlushLists(odd_run));
}

TEST_F(ModelTest, TwoThousandElementsWaitForTheEnd) {
  Create("/r", "{\"L\": [" + Elements(2000) + "]}");
  EXPECT_EQ(FlightSizes(), (std::vector<std::size_t>{1, 1, 1, 1, 2000}));
  Create("/r", "{\"L\": [" + Elements(2001) + "]}");
  // KEYS finds the hash and the list of the run before: each is followed by its DEL.
  EXPECT_EQ(FlightSizes(), (std::vector<std::size_t>{1, 1, 1, 1, 1, 2000, 1, 1}));
}

TEST_F(ModelTest, AnUpdateOfManyMembersFlushesRemovalsOnTheirOwnCount) {
  // Each member queues four removals: the 501st member finds 2000 of them.
  EXPECT_EQ(Update("/r", "{" + Members(501) + "}").status, 0);
  std::vector<std::size_t> big;
  for (const std::size_t size : FlightSizes()) {
    if (size > 1) big.push_back(size);
  }
  EXPECT_EQ(big, (std::vector<std::size_t>{2000, 4, 501}));
}

TEST_F(ModelTest, AMidArrayFlushLosesNumbersThatEqualALaterIndex) {
  // 1999 sevens and a 2001 fill the batch. The first object's reference flushes them, and the
  // second object's removal of its index, 2001, then finds the number already in the list.
  std::string sevens;
  for (int i = 0; i < 1999; ++i) sevens += "7, ";
  Update("/r", "{\"L\": [" + sevens + "2001, {}, {}]}");
  const List& list = std::get<List>(store.at("&&/r/L").value);
  EXPECT_EQ(list.size(), 2001u);
  EXPECT_EQ(list[1998], "7");
  EXPECT_EQ(list[1999], "&&Object &&/r/L/2000");
  EXPECT_EQ(list[2000], "&&Object &&/r/L/2001");
}

TEST_F(ModelTest, ALostFlushIsForgottenWhenTheLastMemberSucceeds) {
  store = {{"&&/x", {List{"1"}}}};
  // The hash flush in the middle meets a list; what was queued is lost, and the run succeeds.
  const Outcome outcome = Create(
      "/r", R"({"A": {"@odata.id": "&&/x", "v": 1}, "O": {)" + Members(2000) + R"(}, "Z": 1})");
  EXPECT_EQ(outcome.err,
            "Some errors occur while creating hash data into database\n"
            "The data in database would be incorrect\n");
  EXPECT_EQ(outcome.out, kSuccessLine);
  EXPECT_EQ(outcome.status, 0);
  const Hash& root = std::get<Hash>(store.at("/r").value);
  EXPECT_EQ(root.count("Z"), 1u);
}

}  // namespace
}  // namespace model
