// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "store/pruning.h"

#include <gtest/gtest.h>

#include <string>

#include "store/store_fixture.h"
#include "store/store_state.h"

namespace ostrafel {

namespace {

class Pruning : public StoreTest {};
class StaleKeys : public StoreTest {};

// The removals that leave a hash for every former shape of one of its members.
std::string FieldRemovals(const std::string& key, const std::string& name,
                          const std::string& child_key) {
  return "HDEL | " + key + " | " + name + "\n" + "HDEL | " + key + " | &&Array " + name + " " +
         child_key + "\n" + "HDEL | " + key + " | &&ObjectRef " + name + " " + child_key + "\n" +
         "HDEL | " + key + " | &&Object " + name + " " + child_key + "\n";
}

TEST_F(Pruning, AScalarWithNothingStoredCostsTwoRoundTripsAndFourRemovals) {
  ASSERT_EQ(PruneProperty(server(), "/r", "A", "", ParentKind::kHash, StoredNone), 1U);
  EXPECT_EQ(PendingRemovalsText(), FieldRemovals("/r", "A", "&&/r/A"));
  EXPECT_EQ(Store->RemovalBatchCount, 4U);
  EXPECT_EQ(Sent(), "TYPE | &&/r/A\n--\nHSCAN | /r | 0 | MATCH | &&ObjectRef A *\n");
}

TEST_F(Pruning, EveryLinkOfTheMemberGoesWhateverItPointsTo) {
  (void)store.Run(
      "HSET | /r | &&ObjectRef A /x |  | &&ObjectRef A /y/z |  | &&ObjectRef A B /x |  | "
      "&&ObjectRef AB /x |  | &&ObjectRef B /x | ");
  ASSERT_EQ(PruneProperty(server(), "/r", "A", "", ParentKind::kHash, StoredNone), 1U);
  ASSERT_EQ(Store->RemovalBatchCount, 7U);  // the links of "A B" match as well
  ASSERT_EQ(Store->RemovalBatch.hash_fields.size(), 1U);
  (void)store.Run("HSET | /r | kept | 1");
  (void)Sent();
  for (const char* field : Store->RemovalBatch.hash_fields["/r"]) {
    (void)store.Run(model::Command{"HDEL", "/r", field});
  }
  EXPECT_EQ(store.Dump(),
            "hash | /r | &&ObjectRef AB /x | \n"
            "hash | /r | &&ObjectRef B /x | \n"
            "hash | /r | kept | 1\n");
}

TEST_F(Pruning, AScalarThatWasAnObjectTakesItsSubtreeAndTwinsAway) {
  (void)store.Run("HSET | &&/r/A | x | 1");
  (void)store.Run("RPUSH | &&/r/A/List | 1");
  ASSERT_EQ(PruneProperty(server(), "/r", "A", "", ParentKind::kHash, StoredNone), 1U);
  EXPECT_EQ(PendingRemovalsText(),
            "UNLINK | &&/r/A\nUNLINK | &&/r/A/List\n" + FieldRemovals("/r", "A", "&&/r/A"));
  EXPECT_EQ(Sent(),
            "TYPE | &&/r/A\n--\n"
            "SCAN | 0 | MATCH | &&/r/A/* | COUNT | 1000\n--\n"
            "HSCAN | /r | 0 | MATCH | &&ObjectRef A *\n");
}

TEST_F(Pruning, AnArrayThatWasAnObjectTakesTheHashAwayWithAllBelowIt) {
  (void)store.Run("HSET | &&/r/A | x | 1");
  (void)store.Run("HSET | &&/r/A/B | y | 2");
  ASSERT_EQ(PruneProperty(server(), "/r", "A", "&&/r/A", ParentKind::kHash, StoredList), 1U);
  EXPECT_EQ(PendingRemovalsText(),
            "UNLINK | &&/r/A\nUNLINK | &&/r/A/B\n" + FieldRemovals("/r", "A", "&&/r/A"));
}

TEST_F(Pruning, TheChildKeyIsTakenAsGiven) {
  ASSERT_EQ(PruneProperty(server(), "/r", "A", "/x//y", ParentKind::kHash, StoredHash), 1U);
  EXPECT_EQ(PendingRemovalsText(), FieldRemovals("/r", "A", "/x//y"));
  EXPECT_EQ(Sent(), "TYPE | /x//y\n--\nHSCAN | /r | 0 | MATCH | &&ObjectRef A *\n");
}

TEST_F(Pruning, AnEmptyChildKeyIsDerivedFromTheNameAndNormalized) {
  ASSERT_EQ(PruneProperty(server(), "/r//", "A", "", ParentKind::kHash, StoredHash), 1U);
  EXPECT_EQ(PendingRemovalsText(), FieldRemovals("/r//", "A", "&&/r/A"));
}

TEST_F(Pruning, AnElementOfAListLosesEqualElementsAndCostsNoFieldSearch) {
  ASSERT_EQ(PruneProperty(server(), "&&/r/L", "2", "&&/r/L/2", ParentKind::kList, StoredHash), 1U);
  EXPECT_EQ(PendingRemovalsText(),
            "LREM | &&/r/L | 0 | 2\n"
            "LREM | &&/r/L | 0 | &&Array &&/r/L/2\n"
            "LREM | &&/r/L | 0 | &&ObjectRef &&/r/L/2\n"
            "LREM | &&/r/L | 0 | &&Object &&/r/L/2\n");
  EXPECT_EQ(Sent(), "TYPE | &&/r/L/2\n");
}

TEST_F(Pruning, StopsAtAFailedFlush) {
  FillRemovalBatch(&store);
  EXPECT_EQ(Printed([&] {
              EXPECT_EQ(PruneProperty(server(), "/r", "A", "", ParentKind::kHash, StoredNone), 0U);
            }),
            "Some errors occur while removing data from database\n"
            "The data in database would be incorrect\n");
  EXPECT_EQ(PendingRemovalsText(), "");
  EXPECT_EQ(Store->RemovalBatchCount, BatchLimit);
  EXPECT_EQ(Sent(), "TYPE | &&/r/A\n--\nHDEL | no hash | f\n");
}

TEST_F(Pruning, StopsAtAFailedFlushBetweenTheRecords) {
  FillRemovalBatch(&store, 2);  // the field and the first record are queued
  (void)Printed([&] {
    EXPECT_EQ(PruneProperty(server(), "/r", "A", "", ParentKind::kHash, StoredNone), 0U);
  });
  EXPECT_EQ(PendingRemovalsText(), "");
  EXPECT_EQ(Sent(),
            "TYPE | &&/r/A\n--\n"
            "HDEL | /r | A\nHDEL | /r | &&Array A &&/r/A\nHDEL | no hash | f\n");
}

TEST_F(StaleKeys, StopAtAFailedFlush) {
  (void)store.Run("HSET | /c | f | v");
  FillRemovalBatch(&store);
  (void)Printed([&] { EXPECT_EQ(PruneStaleKey(server(), "/c", StoredNone), 0U); });
  EXPECT_EQ(Sent(), "TYPE | /c\n--\nHDEL | no hash | f\n");
}

TEST_F(StaleKeys, AListOfPlainValuesIsNotScannedBelow) {
  (void)store.Run("RPUSH | &&/r/A | 1 | 2");
  EXPECT_EQ(PruneStaleKey(server(), "&&/r/A", StoredList), 1U);
  EXPECT_EQ(PendingRemovalsText(), "UNLINK | &&/r/A\n");
  EXPECT_EQ(Sent(), "TYPE | &&/r/A\n--\nLINDEX | &&/r/A | 0\n");
}

TEST_F(StaleKeys, AListOfRecordsIsScannedBelow) {
  (void)store.Run("RPUSH | &&/r/A | &&Object &&/r/A/0");
  (void)store.Run("HSET | &&/r/A/0 | x | 1");
  EXPECT_EQ(PruneStaleKey(server(), "&&/r/A", StoredList), 1U);
  EXPECT_EQ(PendingRemovalsText(), "UNLINK | &&/r/A\nUNLINK | &&/r/A/0\n");
  EXPECT_EQ(Sent(),
            "TYPE | &&/r/A\n--\nLINDEX | &&/r/A | 0\n--\n"
            "SCAN | 0 | MATCH | &&/r/A/* | COUNT | 1000\n");
}

TEST_F(StaleKeys, AResourcesTwinsGoWithItButNotTheTwinKeyItself) {
  for (const char* key : {"/c", "&&/c", "/c/x", "&&/c/y", "/cc", "&&/cc/z"}) {
    (void)store.Run(model::Command{"HSET", key, "f", "v"});
  }
  EXPECT_EQ(PruneStaleKey(server(), "/c", StoredList), 1U);
  EXPECT_EQ(PendingRemovalsText(), "UNLINK | /c\nUNLINK | /c/x\nUNLINK | &&/c/y\n");
  EXPECT_EQ(Store->PrunedPrefixes.count("/c"), 1U);
  EXPECT_EQ(Store->PrunedPrefixes.count("&&/c"), 1U);
  EXPECT_EQ(Sent(),
            "TYPE | /c\n--\n"
            "SCAN | 0 | MATCH | /c/* | COUNT | 1000\n--\n"
            "SCAN | 0 | MATCH | &&/c/* | COUNT | 1000\n");
}

TEST_F(StaleKeys, TheTwinsAreScannedEvenWhenTheyWereScannedBefore) {
  (void)store.Run("HSET | /c | f | v");
  Store->PrunedPrefixes.insert("&&/c");
  EXPECT_EQ(PruneStaleKey(server(), "/c", StoredList), 1U);
  EXPECT_EQ(Sent(),
            "TYPE | /c\n--\n"
            "SCAN | 0 | MATCH | /c/* | COUNT | 1000\n--\n"
            "SCAN | 0 | MATCH | &&/c/* | COUNT | 1000\n");
}

TEST_F(StaleKeys, AChildKeyWithASlashAtItsEndGetsNoSecondOne) {
  (void)store.Run("HSET | /c/ | f | v");
  (void)store.Run("HSET | /c/x | f | v");
  EXPECT_EQ(PruneStaleKey(server(), "/c/", StoredNone), 1U);
  EXPECT_EQ(Store->PrunedPrefixes.count("/c"), 1U);
  EXPECT_EQ(Store->PrunedPrefixes.count("&&/c"), 1U);
  EXPECT_EQ(Store->PrunedPrefixes.count("/c/"), 0U);
  EXPECT_EQ(Sent(),
            "TYPE | /c/\n--\n"
            "SCAN | 0 | MATCH | /c/* | COUNT | 1000\n--\n"
            "SCAN | 0 | MATCH | &&/c/* | COUNT | 1000\n");
}

TEST_F(StaleKeys, TheSameKeyAgainIsUnlinkedAgainButNotScannedAgain) {
  (void)store.Run("HSET | /c | f | v");
  (void)store.Run("HSET | /c/x | f | v");
  EXPECT_EQ(PruneStaleKey(server(), "/c", StoredNone), 1U);
  EXPECT_EQ(PruneStaleKey(server(), "/c", StoredNone), 1U);
  EXPECT_EQ(PendingRemovalsText(), "UNLINK | /c\nUNLINK | /c/x\nUNLINK | /c\n");
  EXPECT_EQ(Sent(),
            "TYPE | /c\n--\n"
            "SCAN | 0 | MATCH | /c/* | COUNT | 1000\n--\n"
            "SCAN | 0 | MATCH | &&/c/* | COUNT | 1000\n--\n"
            "TYPE | /c\n");
}

TEST_F(StaleKeys, ASubtreeInsideAPrunedOneIsNotScanned) {
  (void)store.Run("HSET | /c/x | f | v");
  Store->PrunedPrefixes.insert("/c");
  EXPECT_EQ(PruneStaleKey(server(), "/c/x", StoredNone), 1U);
  EXPECT_EQ(PendingRemovalsText(), "UNLINK | /c/x\n");
  EXPECT_EQ(Sent(), "TYPE | /c/x\n");
}

}  // namespace

}  // namespace ostrafel
