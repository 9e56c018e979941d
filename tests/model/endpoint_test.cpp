// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "model/endpoint.h"

#include <gtest/gtest.h>

// A difference that is not found would fail no other test.
namespace model {
namespace {

const Command kType = {"TYPE", "/r"};
const Command kSet = {"HSET", "/r", "A", "1"};
const Command kDelete = {"HDEL", "/r", "B"};

TEST(ReplayEndpoint, ReportsTheFirstFlightThatDiffersAndAnswersNoMore) {
  ReplayEndpoint endpoint(
      {{{kType}, {StatusReply("hash")}}, {{kSet}, {IntegerReply(1)}}, {{kType}, {NilReply()}}});
  endpoint.Exchange({kType});
  EXPECT_TRUE(endpoint.Exchange({kDelete}).empty());
  EXPECT_TRUE(endpoint.Exchange({kType}).empty());
  ASSERT_TRUE(endpoint.FirstDivergence());
  EXPECT_EQ(endpoint.FirstDivergence()->flight, 1u);
  EXPECT_EQ(endpoint.FirstDivergence()->expected, std::vector<Command>{kDelete});
  EXPECT_EQ(endpoint.FirstDivergence()->recorded, std::vector<Command>{kSet});
}

TEST(ReplayEndpoint, ACommandInAFlightOfItsOwnIsADifference) {
  ReplayEndpoint endpoint({{{kDelete}, {IntegerReply(0)}}, {{kSet}, {IntegerReply(1)}}});
  endpoint.Exchange({kDelete, kSet});
  ASSERT_TRUE(endpoint.FirstDivergence());
  EXPECT_EQ(endpoint.FirstDivergence()->flight, 0u);
}

TEST(ReplayEndpoint, ReportsFlightsThatOnlyOneSideHas) {
  ReplayEndpoint too_short({});
  too_short.Exchange({kType});
  ASSERT_TRUE(too_short.FirstDivergence());
  EXPECT_EQ(too_short.FirstDivergence()->expected, std::vector<Command>{kType});
  EXPECT_TRUE(too_short.FirstDivergence()->recorded.empty());

  const ReplayEndpoint too_long({{{kSet}, {IntegerReply(1)}}});
  ASSERT_TRUE(too_long.FirstDivergence());
  EXPECT_EQ(too_long.FirstDivergence()->recorded, std::vector<Command>{kSet});
}

TEST(ReplayEndpoint, AFlightThatWasCutShortHoldsTheFirstCommands) {
  ReplayEndpoint bad({{{kSet}, {IntegerReply(1)}, /*cut_short=*/true}});
  bad.Exchange({kDelete, kSet});
  EXPECT_TRUE(bad.FirstDivergence());
}

TEST(ReplayEndpoint, DescribesADivergence) {
  ReplayEndpoint endpoint({{{kDelete, kSet}, {IntegerReply(0), IntegerReply(1)}}});
  endpoint.Exchange({kDelete, kType});
  ASSERT_TRUE(endpoint.FirstDivergence());
  EXPECT_EQ(Describe(*endpoint.FirstDivergence()),
            "flight 0, command 1\n"
            "  expected, of 2:\n"
            "    0: HDEL | /r | B\n"
            "  > 1: TYPE | /r\n"
            "  recorded, of 2:\n"
            "    0: HDEL | /r | B\n"
            "  > 1: HSET | /r | A | 1\n");
}

}  // namespace
}  // namespace model
