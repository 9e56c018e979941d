// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "layout/record_parts.h"

#include <gtest/gtest.h>

#include <string>

#include "layout/layout.h"

namespace ostrafel {

namespace {

TEST(MemberOfField, OfAScalarIsTheField) {
  EXPECT_EQ(MemberOfField("/r", "Name"), "Name");
  EXPECT_EQ(MemberOfField("/r", "A name /with blanks"), "A name /with blanks");
  EXPECT_EQ(MemberOfField("/r", "&&ETag"), "&&ETag");
  EXPECT_EQ(MemberOfField("/r", ""), "");
}

TEST(MemberOfField, OfAReferenceRecordIsTheNameInIt) {
  EXPECT_EQ(MemberOfField("/r", "&&Object Status &&/r/Status"), "Status");
  EXPECT_EQ(MemberOfField("/r", "&&Array Fans &&/r/Fans"), "Fans");
  EXPECT_EQ(MemberOfField("/r", "&&ObjectRef Chassis /c"), "Chassis");
  EXPECT_EQ(MemberOfField("&&/r/A", "&&Object Own /o"), "Own");
}

TEST(MemberOfField, OfABareMarkerIsTheField) {
  for (const char* field : {"&&Object ", "&&Object Status", "&&Array", "&&Objects a b"}) {
    EXPECT_EQ(MemberOfField("/r", field), field);
  }
}

TEST(MemberOfField, WithBlanksHasTheDerivedKeyAsItsTarget) {
  EXPECT_EQ(MemberOfField("/r", "&&Object My /Name &&/r/My /Name"), "My /Name");
  EXPECT_EQ(MemberOfField("/r/", "&&Array a b &&/r/a b"), "a b");
  EXPECT_EQ(MemberOfField("/a key", "&&Array a &&/a b &&/a key/a &&/a b"), "a &&/a b");
}

TEST(MemberOfField, WithBlanksAndAnotherTargetEndsBeforeTheFirstKey) {
  EXPECT_EQ(MemberOfField("/r", "&&ObjectRef A name /c d /e"), "A name");
  EXPECT_EQ(MemberOfField("/r", "&&ObjectRef A name &&/c d"), "A name");
}

TEST(MemberOfField, WithBlanksAndNoKeyEndsBeforeTheLastBlank) {
  EXPECT_EQ(MemberOfField("/r", "&&ObjectRef A name target"), "A name");
  EXPECT_EQ(MemberOfField("/r", "&&ObjectRef A "), "A");
}

TEST(MemberOfField, IsTheNameOfEveryDerivedKey) {
  for (const std::string key : {"/r", "/r/", "&&/r/A", "/a b", "", "//r//x", "/r/a "}) {
    for (const std::string name :
         {"A", "", "A B", " ", "a /b", "/", "a//b", "&&/r/x", "a &&/r/a"}) {
      const std::string field =
          Join(ReferenceRecord(ParentKind::kHash, ArrayMarker, name, DerivedKey(key, name)));
      EXPECT_EQ(MemberOfField(key, field), name) << key;
    }
  }
}

TEST(IsDerivedKey, TellsThePrefix) {
  EXPECT_TRUE(IsDerivedKey("&&/r/A"));
  EXPECT_TRUE(IsDerivedKey("&&"));
  EXPECT_FALSE(IsDerivedKey("/r"));
  EXPECT_FALSE(IsDerivedKey("&"));
  EXPECT_FALSE(IsDerivedKey(""));
}

}  // namespace

}  // namespace ostrafel
