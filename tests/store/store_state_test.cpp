// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "store/store_state.h"

#include <gtest/gtest.h>

namespace ostrafel {

namespace {

void ExpectStart() {
  EXPECT_TRUE(Store->MergeMode);
  EXPECT_TRUE(Store->VisitedResourceMap.empty());
  EXPECT_TRUE(Store->PrunedPrefixes.empty());
  EXPECT_TRUE(Store->HashBatch.empty());
  EXPECT_TRUE(Store->ListBatch.empty());
  EXPECT_TRUE(Store->RemovalBatch.keys.empty());
  EXPECT_TRUE(Store->RemovalBatch.list_values.empty());
  EXPECT_TRUE(Store->RemovalBatch.hash_fields.empty());
  EXPECT_EQ(Store->HashBatchCount, 0U);
  EXPECT_EQ(Store->ListBatchCount, 0U);
  EXPECT_EQ(Store->RemovalBatchCount, 0U);
}

TEST(StoreState, IsEmptyAtTheStartAndMergeModeIsOn) { ExpectStart(); }

TEST(StoreState, BatchesHold2000Items) { EXPECT_EQ(BatchLimit, 2000U); }

TEST(StoreState, IsFreshAfterEmplace) {
  Store->MergeMode = false;
  Store->HashBatch["/r"].push_back({"A", "1"});
  Store.emplace();
  ExpectStart();
}

}  // namespace

}  // namespace ostrafel
