// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "diff/filter.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace ostrafel {

namespace {

using Words = std::vector<std::string>;

Differences Some() {
  const auto place = [](const std::string& pointer) { return TreePlace{"f", pointer, {}}; };
  return {
      {Change::kChanged, "/r", KeyType::kHash, "A", "1", "2", place("/A")},
      {Change::kExtra, "/r", KeyType::kHash, "ETag", "1", std::nullopt, place("/ETag")},
      {Change::kExtra, "/r/a", KeyType::kHash, WholeKey(), std::nullopt, std::nullopt,
       std::nullopt},
      {Change::kMissing, "/r/b", KeyType::kHash, WholeKey(), std::nullopt, std::nullopt, place("")},
  };
}

// The keys of what is left, with a record's field.
Words Left(const Words& ignored, bool has_extra = true) {
  DiffOptions options;
  options.ignored = ignored;
  options.has_extra = has_extra;
  Differences differences = Some();
  LeaveOut(options, &differences);
  Words left;
  for (const Difference& difference : differences) {
    const std::string* field = std::get_if<std::string>(&difference.record);
    left.push_back(difference.key + (field == nullptr ? "" : " " + *field));
  }
  return left;
}

TEST(LeaveOut, KeepsAllUnlessTold) {
  EXPECT_EQ(Left({}), (Words{"/r A", "/r ETag", "/r/a", "/r/b"}));
}

TEST(LeaveOut, TakesAwayWhatOnlyTheStoreHas) {
  EXPECT_EQ(Left({}, false), (Words{"/r A", "/r/b"}));
}

TEST(LeaveOut, TakesAwayKeysAndPointersThatMatchWholly) {
  EXPECT_EQ(Left({"/r/a"}), (Words{"/r A", "/r ETag", "/r/b"}));
  EXPECT_EQ(Left({"/r"}), (Words{"/r/a", "/r/b"}));
  EXPECT_EQ(Left({"/ETag"}), (Words{"/r A", "/r/a", "/r/b"}));
  EXPECT_EQ(Left({"ETag"}), (Words{"/r A", "/r ETag", "/r/a", "/r/b"}));
  EXPECT_EQ(Left({"/r/"}), (Words{"/r A", "/r ETag", "/r/a", "/r/b"}));
}

TEST(LeaveOut, TakesGlobs) {
  EXPECT_EQ(Left({"/r/*"}), (Words{"/r A", "/r ETag"}));
  EXPECT_EQ(Left({"/[A-Z]*"}), (Words{"/r/a", "/r/b"}));
  EXPECT_EQ(Left({"/?", "*b"}), (Words{"/r/a"}));
  EXPECT_EQ(Left({"*"}), Words{});
}

TEST(LeaveOut, TakesEveryPattern) {
  EXPECT_EQ(Left({"/A", "/r/b"}), (Words{"/r ETag", "/r/a"}));
  EXPECT_EQ(Left({"/A"}, false), Words{"/r/b"});
}

}  // namespace

}  // namespace ostrafel
