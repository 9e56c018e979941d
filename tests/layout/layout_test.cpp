// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "layout/layout.h"

#include <gtest/gtest.h>

#include <array>
#include <stdexcept>
#include <string>

namespace ostrafel {

namespace {

TEST(NormalizeKey, CollapsesSlashesAndPutsThePrefixInFront) {
  const struct {
    const char* path;
    const char* key;
  } cases[] = {
      {"/redfish/v1/Chassis/1/Status", "&&/redfish/v1/Chassis/1/Status"},
      {"/redfish/v1//Status", "&&/redfish/v1/Status"},
      {"/redfish/v1///A", "&&/redfish/v1/A"},
      {"//////", "&&/"},
      {"/a//b///c////d", "&&/a/b/c/d"},
      {"redfish/A", "&&redfish/A"},
      {"&&/redfish/v1/Chassis/1/Sensors/0", "&&/redfish/v1/Chassis/1/Sensors/0"},
      {"&&//a", "&&/a"},
      {"&/a", "&&&/a"},
      {"&", "&&&"},
      {"", "&&"},
      {"&&", "&&"},
      {"&&&&x", "&&&&x"},
      {"//&&/x", "&&/&&/x"},
      {"/a/ //b ", "&&/a/ /b "},
  };
  for (const auto& c : cases) {
    std::string key = c.path;
    NormalizeKey(key);
    EXPECT_EQ(key, c.key) << c.path;
    NormalizeKey(key);
    EXPECT_EQ(key, c.key) << "normalized again";
  }
}

TEST(DerivedKeys, JoinParentAndName) {
  const struct {
    const char* parent;
    const char* name;
    const char* key;
  } cases[] = {
      {"/redfish/v1/Chassis/1", "Status", "&&/redfish/v1/Chassis/1/Status"},
      {"/redfish/v1/", "Status", "&&/redfish/v1/Status"},
      {"/redfish/v1//", "A", "&&/redfish/v1/A"},
      {"&&/redfish/v1/Chassis/1/Sensors", "0", "&&/redfish/v1/Chassis/1/Sensors/0"},
      {"redfish", "A", "&&redfish/A"},
      {"/redfish/v1/X", "&&Privileges", "&&/redfish/v1/X/&&Privileges"},
      {"/r", "", "&&/r/"},
      {"", "A", "&&/A"},
      {"/r", "a//b/", "&&/r/a/b/"},
      {"/r", "with blank ", "&&/r/with blank "},
  };
  for (const auto& c : cases) EXPECT_EQ(DerivedKey(c.parent, c.name), c.key);
}

std::string Record(ParentKind parent, const char* marker, const char* name, const char* target) {
  return Join(ReferenceRecord(parent, marker, name, target));
}

TEST(ReferenceRecords, OfAHashHoldMarkerNameAndTarget) {
  const ParentKind hash = ParentKind::kHash;
  EXPECT_EQ(Record(hash, ObjectMarker, "Status", "&&/r/Status"), "&&Object Status &&/r/Status");
  EXPECT_EQ(Record(hash, ObjectRefMarker, "A", "/r/A"), "&&ObjectRef A /r/A");
  EXPECT_EQ(Record(hash, ArrayMarker, "Fans", "&&/r/Fans"), "&&Array Fans &&/r/Fans");
}

TEST(ReferenceRecords, KeepSpacesInTheName) {
  EXPECT_EQ(Record(ParentKind::kHash, ObjectMarker, "A ", "&&/r/A "), "&&Object A  &&/r/A ");
  EXPECT_EQ(Record(ParentKind::kHash, ObjectMarker, "", "&&/r/"), "&&Object  &&/r/");
}

TEST(ReferenceRecords, OfAListHoldMarkerAndTarget) {
  EXPECT_EQ(Record(ParentKind::kList, ArrayMarker, "0", "&&/r/L/0"), "&&Array &&/r/L/0");
}

TEST(ReferenceRecords, AreToldFromPlainValues) {
  for (const char* record : {"&&Object x", "&&ObjectRef x", "&&Array x", "&&Array  "}) {
    EXPECT_TRUE(IsReferenceRecord(record)) << record;
  }
  for (const char* value : {"&&Object ", "&&ObjectRef ", "&&Array ", "&&Array", "&&Objects x",
                            "\"&&Array x\"", " &&Array x", ""}) {
    EXPECT_FALSE(IsReferenceRecord(value)) << value;
  }
}

TEST(LinkPatterns, TakeAnyTargetAndKeepGlobs) {
  EXPECT_EQ(LinkPattern("A"), "&&ObjectRef A *");
  EXPECT_EQ(LinkPattern("[a]*"), "&&ObjectRef [a]* *");
}

TEST(SubtreePatterns, CoverWhatLiesBelowAKey) {
  EXPECT_EQ(SubtreePattern("/r"), "/r/*");
  EXPECT_EQ(SubtreePattern("/r/"), "/r/*");
  EXPECT_EQ(SubtreePattern("&&/r/A"), "&&/r/A/*");
  EXPECT_EQ(SubtreePattern(""), "/*");
}

TEST(TwinPatterns, HaveThePrefixOnceMore) {
  EXPECT_EQ(TwinPattern("/r/*"), "&&/r/*");
  EXPECT_TRUE(IsTwinPattern("&&/r/*"));
  EXPECT_FALSE(IsTwinPattern("/r/*"));
  EXPECT_FALSE(IsTwinPattern("&"));
}

TEST(TreePatterns, AreTheUriAndWhatLiesBelowItAndItsTwin) {
  EXPECT_EQ(TreePatterns("/r"), (std::array<std::string, 3>{"/r", "/r/*", "&&/r/*"}));
  EXPECT_EQ(TreePatterns("/r/"), (std::array<std::string, 3>{"/r/", "/r/*", "&&/r/*"}));
  EXPECT_THROW((void)TreePatterns(""), std::out_of_range);
}

TEST(ReservedProperties, AreTheseFifteenToTheByte) {
  for (const char* name : {"&&AllowMethod", "&&CRUDprefix", "&&POSTValidation", "&&PATCHValidation",
                           "&&PUTValidation", "&&Validation", "&&SensitiveData", "&&ETag",
                           "&&Async", "&&BlockCSRGeneration", "&&BlockReplaceCertificate",
                           "&&OwnerName", "&&Privileges", "&&AllowDeepMethod", "&&DateTime"}) {
    EXPECT_TRUE(IsReservedProperty(name)) << name;
  }
  EXPECT_EQ(ReservedPropertySet.size(), 15U);
  for (const char* name : {"&&File", "&&etag", "ETag", "&&ETag ", "&&", "", "&&Object"}) {
    EXPECT_FALSE(IsReservedProperty(name)) << name;
  }
}

}  // namespace

}  // namespace ostrafel
