// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "diff/list_alignment.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "diff/processor_time.h"
#include "support/test_factor.h"

namespace ostrafel {

namespace {

List Letters(const std::string& letters) {
  List list;
  for (const char letter : letters) list.emplace_back(1, letter);
  return list;
}

// "-0a" for an extra one of the stored list, "+1b" for a missing one of
// the wanted list, "0a>1b" for a changed one.
std::string Aligned(const std::string& stored, const std::string& wanted) {
  std::string text;
  for (const ListEdit& edit : AlignLists(Letters(stored), Letters(wanted))) {
    const Element& at = edit.element;
    std::string old_element;
    std::string new_element;
    if (edit.change != Change::kMissing) {
      old_element = std::to_string(at.stored_index) + stored.at(at.stored_index);
    }
    if (edit.change != Change::kExtra) {
      new_element = std::to_string(at.wanted_index) + wanted.at(at.wanted_index);
    }
    text += text.empty() ? "" : " ";
    text += edit.change == Change::kChanged ? old_element + ">" + new_element
            : edit.change == Change::kExtra ? "-" + old_element
                                            : "+" + new_element;
  }
  return text;
}

// The fewest elements that are missing or extra, by what they are for all shorter lists.
std::size_t FewestEdits(const List& stored, const List& wanted) {
  std::vector<std::size_t> row(wanted.size() + 1);
  for (std::size_t y = 0; y <= wanted.size(); ++y) row[y] = y;
  for (std::size_t x = 1; x <= stored.size(); ++x) {
    std::size_t diagonal = row[0];
    row[0] = x;
    for (std::size_t y = 1; y <= wanted.size(); ++y) {
      const std::size_t above = row[y];
      row[y] = stored[x - 1] == wanted[y - 1] ? diagonal : std::min(row[y - 1], above) + 1;
      diagonal = above;
    }
  }
  return row.back();
}

// The elements that the edits tell to be missing or extra; a changed one is both.
std::size_t CountEdits(const std::vector<ListEdit>& edits) {
  std::size_t count = 0;
  for (const ListEdit& edit : edits) count += edit.change == Change::kChanged ? 2 : 1;
  return count;
}

// What the edits make of the stored list. Fails where an edit does not stand where it says, or
// tells an element to be changed that is not.
List Edited(const List& stored, const List& wanted, const std::vector<ListEdit>& edits) {
  List list;
  std::size_t next = 0;
  for (const ListEdit& edit : edits) {
    const Element& at = edit.element;
    EXPECT_LE(next, at.stored_index);
    for (; next < at.stored_index; ++next) list.push_back(stored.at(next));
    EXPECT_EQ(list.size(), at.wanted_index);
    if (edit.change == Change::kChanged && stored.at(at.stored_index) == wanted[at.wanted_index]) {
      ADD_FAILURE() << "what is told to be changed is equal";
      return {};
    }
    if (edit.change != Change::kMissing) ++next;
    if (edit.change != Change::kExtra) list.push_back(wanted.at(at.wanted_index));
  }
  for (; next < stored.size(); ++next) list.push_back(stored[next]);
  return list;
}

// True when the edits make the wanted list of the stored one.
bool IsRight(const List& stored, const List& wanted) {
  return Edited(stored, wanted, AlignLists(stored, wanted)) == wanted;
}

bool IsRightAndShort(const List& stored, const List& wanted) {
  const std::vector<ListEdit> edits = AlignLists(stored, wanted);
  return Edited(stored, wanted, edits) == wanted &&
         CountEdits(edits) == FewestEdits(stored, wanted);
}

// All texts of up to so many of the letters a, b and c.
std::vector<std::string> AllTexts(std::size_t longest) {
  std::vector<std::string> texts = {""};
  for (std::size_t i = 0; i < texts.size(); ++i) {
    if (texts[i].size() == longest) break;
    for (const char letter : {'a', 'b', 'c'}) texts.push_back(texts[i] + letter);
  }
  return texts;
}

std::size_t Below(std::mt19937_64& generator, std::size_t count) {
  return static_cast<std::size_t>(generator() % count);
}

// So many elements of so many different ones.
List RandomList(std::mt19937_64& generator, std::size_t size, std::size_t kinds) {
  List list;
  for (std::size_t i = 0; i < size; ++i) list.push_back(std::to_string(Below(generator, kinds)));
  return list;
}

// The list with so many elements changed, inserted or removed.
List Changed(std::mt19937_64& generator, List list, std::size_t changes) {
  for (std::size_t i = 0; i < changes && !list.empty(); ++i) {
    const std::size_t index = Below(generator, list.size());
    const auto at = list.begin() + static_cast<std::ptrdiff_t>(index);
    switch (Below(generator, 3)) {
      case 0:
        *at = "changed " + std::to_string(i);
        break;
      case 1:
        list.insert(at, std::to_string(Below(generator, 20)));
        break;
      default:
        list.erase(at);
    }
  }
  return list;
}

TEST(ListAlignment, OfEqualListsIsEmpty) {
  EXPECT_EQ(Aligned("", ""), "");
  EXPECT_EQ(Aligned("abc", "abc"), "");
}

TEST(ListAlignment, TellsWhereElementsAreMissingExtraOrChanged) {
  EXPECT_EQ(Aligned("bc", "abc"), "+0a");
  EXPECT_EQ(Aligned("abc", "ac"), "-1b");
  EXPECT_EQ(Aligned("abc", "axc"), "1b>1x");
  EXPECT_EQ(Aligned("", "ab"), "+0a +1b");
  EXPECT_EQ(Aligned("ab", ""), "-0a -1b");
  EXPECT_EQ(Aligned("abcd", "xbcyz"), "0a>0x 3d>3y +4z");
  EXPECT_EQ(Aligned("abcd", "cd"), "-0a -1b");
  EXPECT_EQ(Aligned("abcdef", "bcxdf"), "-0a +2x -4e");
}

TEST(ListAlignment, TellsOneChangeAmongEqualElementsAsOne) {
  EXPECT_EQ(Aligned("bbc", "abc"), "0b>0a");
  EXPECT_EQ(Aligned("aab", "aaa"), "2b>2a");
  EXPECT_EQ(Aligned("aaa", "aa"), "-2a");
}

TEST(ListAlignment, IsTheShortestOfAllSmallLists) {
  const std::vector<std::string> texts = AllTexts(TestFactor() > 1 ? 5 : 4);
  ASSERT_EQ(texts.size(), TestFactor() > 1 ? 364U : 121U);
  for (const std::string& stored : texts) {
    for (const std::string& wanted : texts) {
      ASSERT_TRUE(IsRightAndShort(Letters(stored), Letters(wanted))) << stored << " " << wanted;
    }
  }
}

TEST(ListAlignment, IsTheShortestOfRandomLists) {
  for (unsigned long seed = 0; seed < 300 * TestFactor(); ++seed) {
    std::mt19937_64 generator(seed);
    const std::size_t kinds = 1 + Below(generator, 30);
    const List stored = RandomList(generator, Below(generator, 60), kinds);
    const List wanted = RandomList(generator, Below(generator, 60), kinds);
    ASSERT_TRUE(IsRightAndShort(stored, wanted)) << "seed " << seed;
  }
}

TEST(ListAlignment, IsTheShortestUpToManyEdits) {
  for (unsigned long seed = 0; seed < 5 * TestFactor(); ++seed) {
    std::mt19937_64 generator(seed);
    const List stored = RandomList(generator, 600, 20);
    const List wanted = Changed(generator, stored, 1 + Below(generator, kMostEdits / 2));
    ASSERT_LE(FewestEdits(stored, wanted), kMostEdits);
    ASSERT_TRUE(IsRightAndShort(stored, wanted)) << "seed " << seed;
  }
}

TEST(ListAlignment, IsRightOfListsThatDifferInMore) {
  for (unsigned long seed = 0; seed < 20 * TestFactor(); ++seed) {
    std::mt19937_64 generator(seed);
    const std::size_t kinds = 1 + Below(generator, 5000);
    const List stored = RandomList(generator, Below(generator, 3000), kinds);
    const List wanted = RandomList(generator, Below(generator, 3000), kinds);
    ASSERT_TRUE(IsRight(stored, wanted)) << "seed " << seed;
  }
}

TEST(ListAlignment, IsRightOfListsOfVeryDifferentLength) {
  std::mt19937_64 generator(0);
  const List many = RandomList(generator, 4 * kMostEdits, 10);
  for (const std::size_t few : {0U, 1U, 2U, 7U}) {
    const List list = RandomList(generator, few, 20);
    EXPECT_TRUE(IsRight(many, list));
    EXPECT_TRUE(IsRight(list, many));
  }
}

TEST(ListAlignment, FindsWhatIsInCommonAmongManyChanges) {
  std::mt19937_64 generator(0);
  const List stored = RandomList(generator, 20000, 1000000);
  const List wanted = Changed(generator, stored, 6 * kMostEdits);
  const std::vector<ListEdit> edits = AlignLists(stored, wanted);
  EXPECT_TRUE(Edited(stored, wanted, edits) == wanted);
  EXPECT_LE(CountEdits(edits), 12 * kMostEdits);  // a change is two at most
}

// Lists with so many elements, none of which is in both.
std::pair<List, List> DifferentLists(std::size_t size) {
  List stored;
  List wanted;
  for (std::size_t i = 0; i < size; ++i) {
    stored.push_back("stored " + std::to_string(i));
    wanted.push_back("wanted " + std::to_string(i));
  }
  return {stored, wanted};
}

TEST(ListAlignment, ComparesElementByElementWhereNothingIsInCommon) {
  const auto [stored, wanted] = DifferentLists(20 * kMostEdits);
  const std::vector<ListEdit> edits = AlignLists(stored, wanted);
  ASSERT_EQ(edits.size(), stored.size());
  EXPECT_TRUE(std::all_of(edits.begin(), edits.end(), [](const ListEdit& edit) {
    return edit.change == Change::kChanged &&
           edit.element.stored_index == edit.element.wanted_index;
  }));
}

TEST(ListAlignment, TakesATimeThatGrowsWithTheLists) {
  const auto time_of = [](std::size_t size) {
    const auto [stored, wanted] = DifferentLists(size);
    return ProcessorTimeOf(
        [&stored = stored, &wanted = wanted] { EXPECT_FALSE(AlignLists(stored, wanted).empty()); });
  };
  EXPECT_LT(time_of(100000), kLinear * time_of(10000));
}

TEST(ListAlignment, TellsNothingToBeChangedThatIsEqual) {
  // What is in common lures the search away from where most is in common.
  std::mt19937_64 generator(0);
  const List first = RandomList(generator, 3 * kMostEdits, 1000000);
  List stored(kMostEdits, "x");
  stored.insert(stored.end(), first.begin(), first.end());
  stored.insert(stored.end(), 20, "y");
  List wanted(first.begin(), first.begin() + static_cast<std::ptrdiff_t>(kMostEdits));
  wanted.insert(wanted.end(), 20, "y");
  wanted.insert(wanted.end(), kMostEdits, "x");
  wanted.insert(wanted.end(), first.begin() + static_cast<std::ptrdiff_t>(kMostEdits), first.end());
  EXPECT_TRUE(IsRight(stored, wanted));
  EXPECT_TRUE(IsRight(wanted, stored));
}

TEST(ListAlignment, FindsWhatIsInCommonBehindMuchThatIsNot) {
  std::mt19937_64 generator(0);
  List stored = RandomList(generator, 2 * kMostEdits, 1000000000);
  List wanted = RandomList(generator, 2 * kMostEdits, 1000000000);
  stored.insert(stored.end(), 100000, "same");
  wanted.insert(wanted.end(), 100000, "same");
  stored.push_back("stored");
  wanted.push_back("wanted");
  const std::vector<ListEdit> edits = AlignLists(stored, wanted);
  EXPECT_TRUE(Edited(stored, wanted, edits) == wanted);
  EXPECT_EQ(edits.size(), 2 * kMostEdits + 1);
}

}  // namespace

}  // namespace ostrafel
