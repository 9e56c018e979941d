// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>

#include "store/queue.h"
#include "store/store_fixture.h"
#include "store/store_state.h"
#include "support/sandbox.h"

namespace ostrafel {

namespace {

class HashBatching : public StoreTest {};
class ListBatching : public StoreTest {};
class RemovalBatching : public StoreTest {};
class BrokenFlush : public StoreTest {};

TEST_F(HashBatching, AnEmptyBatchSendsNothing) {
  EXPECT_EQ(FlushHashBatch(server()), 1U);
  EXPECT_EQ(FlushListBatch(server()), 1U);
  EXPECT_EQ(FlushRemovalBatch(server()), 1U);
  EXPECT_EQ(Sent(), "");
}

TEST_F(HashBatching, KeysAndFieldsGoInAscendingByteOrder) {
  ASSERT_EQ(PutHashField(server(), "b", {"x"}, "1"), 1U);
  ASSERT_EQ(PutHashField(server(), "a", {"y"}, "2"), 1U);
  ASSERT_EQ(PutHashField(server(), "a", {"\xC3\xA9"}, "3"), 1U);
  ASSERT_EQ(PutHashField(server(), "a", {"Z"}, ""), 1U);
  ASSERT_EQ(PutHashField(server(), "a/b", {"%s"}, "blank %d in it"), 1U);
  ASSERT_EQ(FlushHashBatch(server()), 1U);
  EXPECT_TRUE(Store->HashBatch.empty());
  EXPECT_EQ(store.Dump(),
            "hash | a | Z | \n"
            "hash | a | y | 2\n"
            "hash | a | \xC3\xA9 | 3\n"
            "hash | a/b | %s | blank %d in it\n"
            "hash | b | x | 1\n");
  EXPECT_EQ(Sent(),
            "HSET | a | Z | \n"
            "HSET | a | y | 2\n"
            "HSET | a | \xC3\xA9 | 3\n"
            "HSET | a/b | %s | blank %d in it\n"
            "HSET | b | x | 1\n");
}

TEST_F(HashBatching, TheLastValueQueuedForAFieldWins) {
  ASSERT_EQ(PutHashField(server(), "k", {"f"}, "1"), 1U);
  ASSERT_EQ(PutHashField(server(), "k", {"f"}, "2"), 1U);
  EXPECT_EQ(Store->HashBatchCount, 2U);
  ASSERT_EQ(FlushHashBatch(server()), 1U);
  EXPECT_EQ(Store->HashBatchCount, 2U);  // only PutHashField's own flush resets it
  EXPECT_EQ(Sent(), "HSET | k | f | 2\n");
}

TEST_F(HashBatching, The2001stFieldFlushesRemovalsAndThenFields) {
  Store->RemovalBatch.keys.emplace_back("stale");
  ASSERT_EQ(PutListItem(server(), "list", {"waits"}), 1U);
  for (int i = 0; i < 2000; ++i) ASSERT_EQ(PutHashField(server(), "k", {"f"}, "v"), 1U);
  EXPECT_EQ(Store->HashBatchCount, 2000U);
  ASSERT_EQ(PutHashField(server(), "k", {"g"}, "w"), 1U);
  EXPECT_EQ(Store->HashBatchCount, 1U);
  EXPECT_EQ(PendingFields(),
            (std::map<std::string, std::map<std::string, std::string>>{{"k", {{"g", "w"}}}}));
  EXPECT_EQ(Store->ListBatch.size(), 1U);
  EXPECT_EQ(Sent(),
            "UNLINK | stale\n"
            "--\n"
            "HSET | k | f | v\n");
}

TEST_F(HashBatching, AFailedFlushQueuesNothingAndTheNextPutFlushesAgain) {
  (void)store.Run("SET | k | in the way");
  for (int i = 0; i < 2000; ++i) ASSERT_EQ(PutHashField(server(), "k", {"f"}, "v"), 1U);
  EXPECT_EQ(Printed([&] { EXPECT_EQ(PutHashField(server(), "a", {"g"}, "w"), 0U); }),
            HashFlushFailed);
  EXPECT_EQ(Store->HashBatchCount, 2000U);
  EXPECT_TRUE(Store->HashBatch.empty());
  EXPECT_EQ(Printed([&] { EXPECT_EQ(PutHashField(server(), "a", {"g"}, "w"), 1U); }), "");
  EXPECT_EQ(Store->HashBatchCount, 1U);
  EXPECT_EQ(Sent(), "HSET | k | f | v\n");
}

TEST_F(HashBatching, AFailedRemovalKeepsTheFieldsWaiting) {
  (void)store.Run("SET | other | in the way");
  Store->RemovalBatch.hash_fields["other"].emplace_back("f");
  for (int i = 0; i < 2000; ++i) ASSERT_EQ(PutHashField(server(), "k", {"f"}, "v"), 1U);
  EXPECT_EQ(Printed([&] { EXPECT_EQ(PutHashField(server(), "k", {"g"}, "w"), 0U); }),
            RemovalFlushFailed);
  EXPECT_EQ(Store->HashBatchCount, 2000U);
  EXPECT_EQ(PendingFields().at("k").size(), 1U);
  EXPECT_EQ(Sent(), "HDEL | other | f\n");
}

TEST_F(HashBatching, OnlyACountOfExactly2000Flushes) {
  Store->HashBatchCount = 2001;
  Store->ListBatchCount = 2001;
  ASSERT_EQ(PutHashField(server(), "k", {"f"}, "v"), 1U);
  ASSERT_EQ(PutListItem(server(), "l", {"v"}), 1U);
  EXPECT_EQ(Store->HashBatchCount, 2002U);
  EXPECT_EQ(Store->ListBatchCount, 2002U);
  EXPECT_EQ(Sent(), "");
}

TEST_F(ListBatching, KeysGoInAscendingOrderAndValuesInQueueOrder) {
  ASSERT_EQ(PutListItem(server(), "b", {"z"}), 1U);
  ASSERT_EQ(PutListItem(server(), "a", {"2"}), 1U);
  ASSERT_EQ(PutListItem(server(), "b", {"y"}), 1U);
  ASSERT_EQ(PutListItem(server(), "a", {"1"}), 1U);
  ASSERT_EQ(PutListItem(server(), "a", {"2"}), 1U);
  EXPECT_EQ(Store->ListBatchCount, 5U);
  ASSERT_EQ(FlushListBatch(server()), 1U);
  EXPECT_TRUE(Store->ListBatch.empty());
  EXPECT_EQ(Sent(),
            "RPUSH | a | 2\n"
            "RPUSH | a | 1\n"
            "RPUSH | a | 2\n"
            "RPUSH | b | z\n"
            "RPUSH | b | y\n");
}

TEST_F(ListBatching, ALengthOfZeroIsBad) {
  recorder.Answer(0, ":1\r\n:0\r\n:1\r\n");
  for (const char* value : {"1", "2", "3"}) ASSERT_EQ(PutListItem(server(), "a", {value}), 1U);
  EXPECT_EQ(Printed([&] { EXPECT_EQ(FlushListBatch(server()), 0U); }), ListFlushFailed);
}

TEST_F(ListBatching, LengthsAreComparedAs64BitNumbers) {
  recorder.Answer(0, ":4294967296\r\n");
  ASSERT_EQ(PutListItem(server(), "a", {"1"}), 1U);
  EXPECT_EQ(FlushListBatch(server()), 1U);
  recorder.Answer(1, ":-4294967295\r\n");
  ASSERT_EQ(PutListItem(server(), "a", {"1"}), 1U);
  EXPECT_EQ(Printed([&] { EXPECT_EQ(FlushListBatch(server()), 0U); }), ListFlushFailed);
}

TEST_F(ListBatching, The2001stValueFlushesRemovalsAndThenValues) {
  Store->RemovalBatch.keys.emplace_back("stale");
  ASSERT_EQ(PutHashField(server(), "hash", {"waits"}, ""), 1U);
  std::string expected = "UNLINK | stale\n--\n";
  for (int i = 0; i < 2000; ++i) {
    ASSERT_EQ(PutListItem(server(), "k", {std::to_string(i).c_str()}), 1U);
    expected += "RPUSH | k | " + std::to_string(i) + "\n";
  }
  EXPECT_EQ(Store->ListBatchCount, 2000U);
  ASSERT_EQ(PutListItem(server(), "k", {"last"}), 1U);
  EXPECT_EQ(Store->ListBatchCount, 1U);
  EXPECT_EQ(PendingValues().at("k"), std::vector<std::string>{"last"});
  EXPECT_EQ(Store->HashBatch.size(), 1U);
  EXPECT_EQ(Sent(), expected);
}

TEST_F(ListBatching, AFailedFlushQueuesNothingAndTheNextPutFlushesAgain) {
  (void)store.Run("SET | k | in the way");
  for (int i = 0; i < 2000; ++i) ASSERT_EQ(PutListItem(server(), "k", {"v"}), 1U);
  EXPECT_EQ(Printed([&] { EXPECT_EQ(PutListItem(server(), "a", {"w"}), 0U); }), ListFlushFailed);
  EXPECT_EQ(Store->ListBatchCount, 2000U);
  EXPECT_TRUE(Store->ListBatch.empty());
  EXPECT_EQ(PutListItem(server(), "a", {"w"}), 1U);
  EXPECT_EQ(Store->ListBatchCount, 1U);
}

TEST_F(RemovalBatching, KeysGoBeforeListValuesBeforeFields) {
  Store->RemovalBatch.keys = {"z", "a", "z"};
  Store->RemovalBatch.list_values["l2"] = {"v"};
  Store->RemovalBatch.list_values["l1"] = {"b", "a", "b"};
  Store->RemovalBatch.hash_fields["h2"] = {"f"};
  Store->RemovalBatch.hash_fields["h1"] = {"g with blanks", "", "f"};
  ASSERT_EQ(FlushRemovalBatch(server()), 1U);
  EXPECT_EQ(PendingRemovalsText(), "");
  EXPECT_EQ(Sent(),
            "UNLINK | z\n"
            "UNLINK | a\n"
            "UNLINK | z\n"
            "LREM | l1 | 0 | b\n"
            "LREM | l1 | 0 | a\n"
            "LREM | l1 | 0 | b\n"
            "LREM | l2 | 0 | v\n"
            "HDEL | h1 | g with blanks\n"
            "HDEL | h1 | \n"
            "HDEL | h1 | f\n"
            "HDEL | h2 | f\n");
}

// A connection that does not wait reads "no reply yet" without an error.
TEST_F(BrokenFlush, AReplyThatIsReadAsNothingIsBad) {
  Server impatient = {StoreConnection(redisConnectUnixNonBlock(ServerSocket().c_str()))};
  ASSERT_NE(impatient.connection, nullptr);
  ASSERT_EQ(PutHashField(&impatient, "k", {"f"}, "v"), 1U);
  EXPECT_EQ(Printed([&] { EXPECT_EQ(FlushHashBatch(&impatient), 0U); }),
            "Some errors occur while creating hash data into database\n"
            "The data in database would be incorrect\n");
  ASSERT_EQ(PutListItem(&impatient, "l", {"v"}), 1U);
  EXPECT_EQ(Printed([&] { EXPECT_EQ(FlushListBatch(&impatient), 0U); }),
            "Some errors occur while creating list data into database\n"
            "The data in database would be incorrect\n");
  EXPECT_TRUE(Store->HashBatch.empty());
}

}  // namespace

}  // namespace ostrafel
