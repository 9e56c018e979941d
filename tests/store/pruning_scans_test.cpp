// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// The searches that pruning makes, and the memory of what was searched.
#include <gtest/gtest.h>

#include <map>
#include <string>

#include "store/pruning.h"
#include "store/queue.h"
#include "store/store_fixture.h"
#include "store/store_state.h"

namespace ostrafel {

namespace {

class MatchingKeys : public StoreTest {};
class MatchingFields : public StoreTest {};
class PrunedPrefix : public StoreTest {};

TEST_F(MatchingKeys, AreFoundThroughEveryCursor) {
  recorder.Answer(0, "*2\r\n$2\r\n17\r\n*2\r\n$1\r\na\r\n$1\r\nb\r\n");
  recorder.Answer(1, "*2\r\n$1\r\n5\r\n*0\r\n");
  recorder.Answer(2, "*2\r\n$1\r\n0\r\n*1\r\n$1\r\na\r\n");
  EXPECT_EQ(UnlinkMatchingKeys(server(), "/p/*"), 1U);
  EXPECT_EQ(PendingRemovalsText(), "UNLINK | a\nUNLINK | b\nUNLINK | a\n");
  EXPECT_EQ(Store->PrunedPrefixes, (std::set<std::string, std::less<>>{"/p"}));
  EXPECT_EQ(Sent(),
            "SCAN | 0 | MATCH | /p/* | COUNT | 1000\n--\n"
            "SCAN | 17 | MATCH | /p/* | COUNT | 1000\n--\n"
            "SCAN | 5 | MATCH | /p/* | COUNT | 1000\n");
}

TEST_F(MatchingKeys, ACursorIsNarrowedToAnInt) {
  recorder.Answer(0, "*2\r\n$10\r\n4294967301\r\n*0\r\n");
  recorder.Answer(1, "*2\r\n$1\r\n0\r\n*0\r\n");
  EXPECT_EQ(UnlinkMatchingKeys(server(), "/p/*"), 1U);
  // Where long has 32 bits, parsing stops at its largest value.
  const std::string second = sizeof(long) > sizeof(int) ? "5" : "2147483647";
  EXPECT_EQ(Sent(), "SCAN | 0 | MATCH | /p/* | COUNT | 1000\n--\nSCAN | " + second +
                        " | MATCH | /p/* | COUNT | 1000\n");
}

TEST_F(MatchingKeys, AShortPatternIsMarkedWhole) {
  EXPECT_EQ(UnlinkMatchingKeys(server(), "*"), 1U);
  EXPECT_EQ(UnlinkMatchingKeys(server(), "/*"), 1U);
  EXPECT_EQ(Store->PrunedPrefixes, (std::set<std::string, std::less<>>{"*", ""}));
}

TEST_F(MatchingKeys, StopAtAFailedFlush) {
  FillRemovalBatch(&store, 1);
  recorder.Answer(0, "*2\r\n$1\r\n7\r\n*3\r\n$1\r\na\r\n$1\r\nb\r\n$1\r\nc\r\n");
  (void)Printed([&] { EXPECT_EQ(UnlinkMatchingKeys(server(), "/p/*"), 0U); });
  EXPECT_EQ(PendingRemovalsText(), "");
  EXPECT_TRUE(Store->PrunedPrefixes.empty());
  EXPECT_EQ(Sent(),
            "SCAN | 0 | MATCH | /p/* | COUNT | 1000\n--\n"
            "UNLINK | a\nHDEL | no hash | f\n");
}

TEST_F(MatchingFields, AreTakenFromEverySecondItem) {
  recorder.Answer(0, "*2\r\n$1\r\n3\r\n*4\r\n$1\r\na\r\n$1\r\n1\r\n$1\r\nb\r\n$1\r\n2\r\n");
  recorder.Answer(1, "*2\r\n$1\r\n0\r\n*2\r\n$1\r\nc\r\n$1\r\n3\r\n");
  EXPECT_EQ(RemoveMatchingFields(server(), "h", "x *"), 1U);
  EXPECT_EQ(PendingRemovalsText(), "HDEL | h | a\nHDEL | h | b\nHDEL | h | c\n");
  EXPECT_EQ(Sent(), "HSCAN | h | 0 | MATCH | x *\n--\nHSCAN | h | 3 | MATCH | x *\n");
}

TEST_F(PrunedPrefix, IsAnyPartBeforeASlash) {
  Store->PrunedPrefixes.insert("&&/r/A");
  EXPECT_TRUE(IsUnderPrunedPrefix("&&/r/A/*"));
  EXPECT_TRUE(IsUnderPrunedPrefix("&&/r/A/B/C/*"));
  EXPECT_FALSE(IsUnderPrunedPrefix("&&/r/AB/*"));
  EXPECT_FALSE(IsUnderPrunedPrefix("/r/A/*"));
  EXPECT_FALSE(IsUnderPrunedPrefix("&&/r/A"));  // ends before the part would
  EXPECT_FALSE(IsUnderPrunedPrefix("no slash"));
  EXPECT_FALSE(IsUnderPrunedPrefix(""));
}

TEST_F(PrunedPrefix, TheEmptyPartBeforeALeadingSlashCounts) {
  Store->PrunedPrefixes.insert("");
  EXPECT_TRUE(IsUnderPrunedPrefix("/r/*"));
  EXPECT_FALSE(IsUnderPrunedPrefix("&&/r/*"));
}

}  // namespace

}  // namespace ostrafel
