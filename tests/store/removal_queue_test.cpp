// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// The one way into the batch of removals.
#include <gtest/gtest.h>

#include <string>

#include "store/pruning.h"
#include "store/queue.h"
#include "store/store_fixture.h"
#include "store/store_state.h"

namespace ostrafel {

namespace {

class RemovalQueue : public StoreTest {};

TEST_F(RemovalQueue, KeepsDuplicatesAndCountsAllKindsTogether) {
  EXPECT_EQ(QueueRemoval(server(), "k", {"unused"}, RemoveKey), 1U);
  EXPECT_EQ(QueueRemoval(server(), "k", {}, RemoveKey), 1U);
  EXPECT_EQ(QueueRemoval(server(), "l", {"v"}, RemoveListValue), 1U);
  EXPECT_EQ(QueueRemoval(server(), "l", {"v"}, RemoveListValue), 1U);
  EXPECT_EQ(QueueRemoval(server(), "h", {"f"}, RemoveField), 1U);
  EXPECT_EQ(Store->RemovalBatchCount, 5U);
  EXPECT_EQ(PendingRemovalsText(),
            "UNLINK | k\nUNLINK | k\nLREM | l | 0 | v\nLREM | l | 0 | v\nHDEL | h | f\n");
}

TEST_F(RemovalQueue, AnyOtherKindIsAKey) {
  EXPECT_EQ(QueueRemoval(server(), "k", {""}, static_cast<RemovalKind>(3)), 1U);
  EXPECT_EQ(PendingRemovalsText(), "UNLINK | k\n");
}

TEST_F(RemovalQueue, The2001stRemovalFlushesFirst) {
  std::string expected;
  for (int i = 0; i < 2000; ++i) {
    ASSERT_EQ(QueueRemoval(server(), std::to_string(i), {}, RemoveKey), 1U);
    expected += "UNLINK | " + std::to_string(i) + "\n";
  }
  EXPECT_EQ(Store->RemovalBatchCount, 2000U);
  ASSERT_EQ(QueueRemoval(server(), "last", {}, RemoveKey), 1U);
  EXPECT_EQ(Store->RemovalBatchCount, 1U);
  EXPECT_EQ(PendingRemovalsText(), "UNLINK | last\n");
  EXPECT_EQ(Sent(), expected);
}

TEST_F(RemovalQueue, OnlyACountOfExactly2000Flushes) {
  Store->RemovalBatchCount = 2001;
  ASSERT_EQ(QueueRemoval(server(), "k", {}, RemoveKey), 1U);
  EXPECT_EQ(Store->RemovalBatchCount, 2002U);
  EXPECT_EQ(Sent(), "");
}

TEST_F(RemovalQueue, FlushesThatOthersMakeDoNotResetTheCount) {
  ASSERT_EQ(QueueRemoval(server(), "k", {}, RemoveKey), 1U);
  ASSERT_EQ(FlushRemovalBatch(server()), 1U);
  EXPECT_EQ(Store->RemovalBatchCount, 1U);
}

TEST_F(RemovalQueue, AFailedFlushQueuesNothingAndTheNextRemovalFlushesAgain) {
  (void)store.Run("SET | s | in the way");
  for (int i = 0; i < 2000; ++i) {
    ASSERT_EQ(QueueRemoval(server(), "s", {"f"}, RemoveField), 1U);
  }
  EXPECT_EQ(Printed([&] { EXPECT_EQ(QueueRemoval(server(), "k", {}, RemoveKey), 0U); }),
            "Some errors occur while removing data from database\n"
            "The data in database would be incorrect\n");
  EXPECT_EQ(Store->RemovalBatchCount, 2000U);
  EXPECT_EQ(PendingRemovalsText(), "");
  EXPECT_EQ(Printed([&] { EXPECT_EQ(QueueRemoval(server(), "k", {}, RemoveKey), 1U); }), "");
  EXPECT_EQ(Store->RemovalBatchCount, 1U);
  EXPECT_EQ(PendingRemovalsText(), "UNLINK | k\n");
}

}  // namespace

}  // namespace ostrafel
