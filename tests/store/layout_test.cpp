// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "layout/layout.h"

#include <gtest/gtest.h>

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

TEST(ReferenceFields, HoldMarkerNameAndTarget) {
  EXPECT_EQ(ReferenceField(ObjectMarker, "Status", "&&/r/Status"), "&&Object Status &&/r/Status");
  EXPECT_EQ(ReferenceField(ObjectRefMarker, "Chassis", "/r/Chassis"),
            "&&ObjectRef Chassis /r/Chassis");
  EXPECT_EQ(ReferenceField(ArrayMarker, "Fans", "&&/r/Fans"), "&&Array Fans &&/r/Fans");
}

TEST(ReferenceFields, KeepBlanksInTheName) {
  EXPECT_EQ(ReferenceField(ObjectMarker, "A ", "&&/r/A "), "&&Object A  &&/r/A ");
  EXPECT_EQ(ReferenceField(ObjectMarker, "", "&&/r/"), "&&Object  &&/r/");
}

TEST(SubtreePatterns, CoverWhatLiesBelowAKey) {
  EXPECT_EQ(SubtreePattern("/r"), "/r/*");
  EXPECT_EQ(SubtreePattern("/r/"), "/r/*");
  EXPECT_EQ(SubtreePattern("&&/r/A"), "&&/r/A/*");
  EXPECT_EQ(SubtreePattern(""), "/*");
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
