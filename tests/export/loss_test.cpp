// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "export/loss.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "export/memory_export.h"

namespace ostrafel {

namespace {

using Texts = std::vector<std::string>;

TEST(Losses, AreSortedAndEachIsThereOnce) {
  Losses losses;
  losses.insert({"/b", "x", "why"});
  losses.insert({"/a", "y", "why"});
  losses.insert({"/b", "", "why"});
  losses.insert({"/b", "x", "because"});
  losses.insert({"/b", "x", "why"});
  EXPECT_EQ(TextsOf(losses),
            (Texts{"/a | y | why", "/b |  | why", "/b | x | because", "/b | x | why"}));
  EXPECT_EQ(losses.size(), 4U);
}

TEST(Losses, TakeWhatOthersHave) {
  Losses losses;
  losses.insert({"/a", "x", "why"});
  losses.insert({"/b", "x", "why"});
  Losses others;
  others.insert({"/b", "x", "why"});
  others.insert({"/b", "y", "why"});
  others.insert({"/c", "x", "why"});
  losses.merge(others);
  EXPECT_EQ(TextsOf(losses),
            (Texts{"/a | x | why", "/b | x | why", "/b | y | why", "/c | x | why"}));
  EXPECT_TRUE(others.empty());
}

TEST(Losses, TellWhatIsOfAWholeKey) {
  Losses losses;
  EXPECT_FALSE(losses.HasWhole("/a"));
  losses.insert({"/a", "x", "why"});
  EXPECT_FALSE(losses.HasWhole("/a"));
  losses.insert({"/a", "", "why"});
  EXPECT_TRUE(losses.HasWhole("/a"));
}

TEST(Losses, OfNamesThatLookAlikeWhenTheyAreShortenedAreDifferent) {
  const std::string half(1500, 'n');
  Losses losses;
  for (const char* middle : {"a", "b", "a"}) {
    const std::string name = half + middle + half;
    losses.insert({name, "x", "why"});
    losses.insert({"/a", name, "why"});
  }
  EXPECT_EQ(losses.size(), 4U);
  EXPECT_EQ(losses.ByKey().size(), 3U);
  const std::string name = half + "a" + half;
  EXPECT_EQ(TextsOf(losses).front(), "/a | " + ShownName(name) + " | why");
  EXPECT_FALSE(losses.HasWhole(name));
}

TEST(Losses, OfAKeyOfMegabytesHaveItOnce) {
  const std::string key(1000000, 'k');
  Losses losses;
  for (int i = 0; i < 1000; ++i) losses.insert({key, "element " + std::to_string(i), "why"});
  EXPECT_EQ(losses.size(), 1000U);
  ASSERT_EQ(losses.ByKey().size(), 1U);
  EXPECT_EQ(losses.ByKey().begin()->first, key);
}

TEST(ShownName, LacksTheMiddleOfALongName) {
  const std::string longest(2000, 'n');
  EXPECT_EQ(ShownName(longest), longest);
  EXPECT_EQ(ShownName(longest + "end"),
            std::string(1000, 'n') + "... (2,003 bytes) ..." + std::string(997, 'n') + "end");
}

}  // namespace

}  // namespace ostrafel
