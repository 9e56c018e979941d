// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "store/store_state.h"

#include <gtest/gtest.h>

namespace ostrafel {

namespace {

void ExpectStart() {
  EXPECT_TRUE(MergeMode);
  EXPECT_TRUE(VisitedResourceMap.empty());
  EXPECT_TRUE(PrunedPrefixes.empty());
  EXPECT_TRUE(HashBatch.empty());
  EXPECT_TRUE(ListBatch.empty());
  EXPECT_TRUE(RemovalBatch.keys.empty());
  EXPECT_TRUE(RemovalBatch.list_values.empty());
  EXPECT_TRUE(RemovalBatch.hash_fields.empty());
  EXPECT_EQ(HashBatchCount, 0U);
  EXPECT_EQ(ListBatchCount, 0U);
  EXPECT_EQ(RemovalBatchCount, 0U);
}

TEST(StoreState, IsEmptyAtTheStartAndMergeModeIsOn) { ExpectStart(); }

TEST(StoreState, BatchesHold2000Items) { EXPECT_EQ(BatchLimit, 2000U); }

TEST(StoreState, ResetBringsTheStartBack) {
  MergeMode = false;
  VisitedResourceMap["/r"] = true;
  PrunedPrefixes["/r"] = true;
  HashBatch["/r"].push_back({"A", "1"});
  HashBatchCount = 1;
  ListBatch["/r"].push_back("1");
  ListBatchCount = 1;
  RemovalBatch.keys.push_back("/r");
  RemovalBatch.list_values["/r"].push_back("1");
  RemovalBatch.hash_fields["/r"].push_back("A");
  RemovalBatchCount = 3;
  ResetStoreState();
  ExpectStart();
}

}  // namespace

}  // namespace ostrafel
