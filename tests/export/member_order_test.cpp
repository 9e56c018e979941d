// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "export/member_order.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>
#include <vector>

namespace ostrafel {

namespace {

// All groups, several names of each, in their order.
const std::vector<std::string> kOrdered = {"@odata.type",
                                           "@odata.id",
                                           "@",
                                           "@Message.ExtendedInfo",
                                           "@odata.context",
                                           "@odata.id ",
                                           "@odata.ty",
                                           "Id",
                                           "Name",
                                           "Description",
                                           "",
                                           " ",
                                           "&",
                                           "&A",
                                           "Actions",
                                           "Id@x",
                                           "Members",
                                           "Members@odata.count",
                                           "Name ",
                                           "Namesake",
                                           "description",
                                           "\x7f",
                                           "\xC3\xA9",
                                           "&&",
                                           "&&ETag",
                                           "&&File",
                                           "&&Object "};

TEST(StandsBefore, IsTheOrderOfTheGroupsAndThenOfTheBytes) {
  for (std::size_t i = 0; i < kOrdered.size(); ++i) {
    for (std::size_t k = 0; k < kOrdered.size(); ++k) {
      EXPECT_EQ(StandsBefore(kOrdered[i], kOrdered[k]), i < k)
          << kOrdered[i] << ", " << kOrdered[k];
    }
  }
}

TEST(StandsBefore, SortsAnyOrderOfNamesTheSame) {
  std::mt19937 generator(1);
  for (int round = 0; round < 100; ++round) {
    std::vector<std::string> names = kOrdered;
    std::shuffle(names.begin(), names.end(), generator);
    std::sort(names.begin(), names.end(), StandsBefore);
    ASSERT_EQ(names, kOrdered);
  }
}

TEST(StandsBefore, IsAStrictWeakOrder) {
  std::mt19937 generator(2);
  const auto name = [&] {
    const std::string letters("@&Io\0\xFF", 6);
    std::string text = generator() % 3 == 0 ? kOrdered[generator() % kOrdered.size()] : "";
    for (std::size_t i = generator() % 4; i > 0; --i) text += letters[generator() % letters.size()];
    return text;
  };
  for (int round = 0; round < 5000; ++round) {
    const std::string a = name();
    const std::string b = name();
    const std::string c = name();
    ASSERT_FALSE(StandsBefore(a, a)) << a;
    // One of two that are not the same stands before the other: it is even a total order.
    ASSERT_EQ(StandsBefore(a, b) + StandsBefore(b, a), a == b ? 0 : 1) << a << ", " << b;
    if (StandsBefore(a, b) && StandsBefore(b, c)) {
      ASSERT_TRUE(StandsBefore(a, c)) << a << ", " << b << ", " << c;
    }
  }
}

}  // namespace

}  // namespace ostrafel
