// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "diff/comparison.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace ostrafel {

namespace {

using Lines = std::vector<std::string>;

std::string TextOf(const std::optional<std::string>& text) {
  return text ? "'" + *text + "'" : "-";
}

std::string RecordText(const Difference& difference) {
  if (const std::string* field = std::get_if<std::string>(&difference.record)) return *field;
  if (const Element* element = std::get_if<Element>(&difference.record)) {
    return std::to_string(element->stored_index) + "/" + std::to_string(element->wanted_index);
  }
  return "*";
}

// "CHANGE KIND KEY RECORD STORED WANTED" of each difference.
Lines Compared(const Server& stored, const Server& wanted) {
  Lines lines;
  for (const Difference& difference : CompareStores(stored, wanted)) {
    EXPECT_FALSE(difference.place);
    const char* change = difference.change == Change::kMissing ? "missing "
                         : difference.change == Change::kExtra ? "extra "
                                                               : "changed ";
    lines.push_back(change + std::string(NameOf(difference.type)) + " " + difference.key + " " +
                    RecordText(difference) + " " + TextOf(difference.stored) + " " +
                    TextOf(difference.wanted));
  }
  return lines;
}

TEST(CompareStores, TellsNothingOfEqualStores) {
  const Server server = {{{"/a", Hash{{"x", "1"}}}, {"/b", List{"1"}}, {"/c", OtherType()}}};
  EXPECT_EQ(Compared(server, server), Lines{});
  EXPECT_EQ(Compared({}, {}), Lines{});
}

TEST(CompareStores, TellsWholeKeysOnce) {
  const Server stored = {{{"/a", Hash{{"x", "1"}, {"y", "1"}}}, {"/c", OtherType()}}};
  const Server wanted = {{{"/b", List{"1", "2"}}}};
  EXPECT_EQ(Compared(stored, wanted),
            (Lines{"extra hash /a * - -", "missing list /b * - -", "extra other /c * - -"}));
}

TEST(CompareStores, TellsOtherTypes) {
  const Server stored = {{{"/a", Hash{{"x", "1"}}}, {"/b", List{"1"}}, {"/c", OtherType()}}};
  const Server wanted = {{{"/a", List{"1"}}, {"/b", Hash{{"x", "1"}}}, {"/c", List{"1"}}}};
  EXPECT_EQ(Compared(stored, wanted),
            (Lines{"changed list /a * 'hash' 'list'", "changed hash /b * 'list' 'hash'",
                   "changed list /c * 'other' 'list'"}));
}

TEST(CompareStores, TellsFieldsInTheOrderOfTheirBytes) {
  const Server stored = {{{"/a", Hash{{"a", "1"}, {"b", ""}, {"d", "1"}, {"\xff", "1"}}}}};
  const Server wanted = {{{"/a", Hash{{"B", "1"}, {"b", "2"}, {"d", "1"}, {"~", ""}}}}};
  EXPECT_EQ(Compared(stored, wanted),
            (Lines{"missing hash /a B - '1'", "extra hash /a a '1' -", "changed hash /a b '' '2'",
                   "missing hash /a ~ - ''", "extra hash /a \xff '1' -"}));
}

TEST(CompareStores, TellsElementsWithBothIndexes) {
  const Server stored = {{{"/a", List{"1", "2", "3", "4"}}}};
  const Server wanted = {{{"/a", List{"0", "1", "3", "5", "6"}}}};
  EXPECT_EQ(Compared(stored, wanted),
            (Lines{"missing list /a 0/0 - '0'", "extra list /a 1/2 '2' -",
                   "changed list /a 3/3 '4' '5'", "missing list /a 4/4 - '6'"}));
}

TEST(CompareStores, GoesByTheOrderOfTheKeys) {
  const Server stored = {{{"&&/a", List{"1"}}, {"/a", List{"1"}}, {"/a/b", List{"1"}}}};
  const Server wanted = {{{"/a", List{"2"}}, {"/a.", List{"1"}}}};
  EXPECT_EQ(Compared(stored, wanted), (Lines{"extra list &&/a * - -", "changed list /a 0/0 '1' '2'",
                                             "missing list /a. * - -", "extra list /a/b * - -"}));
}

TEST(CountRecords, CountsFieldsAndElements) {
  EXPECT_EQ(CountRecords(Hash{{"x", "1"}, {"y", "1"}}), 2U);
  EXPECT_EQ(CountRecords(List{"1", "1", "1"}), 3U);
  EXPECT_EQ(CountRecords(OtherType()), 0U);
}

}  // namespace

}  // namespace ostrafel
