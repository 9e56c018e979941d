// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "layout/resource_id.h"

#include <gtest/gtest.h>

#include "document/document.h"

namespace ostrafel {

namespace {

Document Parse(const char* json) { return Document(json_loads(json, 0, nullptr)); }

TEST(Links, HoldNothingButAnIdString) {
  EXPECT_TRUE(IsLink(Parse(R"({"@odata.id": "/x"})").get()));
  for (const char* json : {R"({"@odata.id": 5})", R"({"@odata.id": "/x", "a": 1})",
                           R"({"id": "/x"})", "{}", R"(["@odata.id"])"}) {
    EXPECT_FALSE(IsLink(Parse(json).get())) << json;
  }
}

TEST(KeysOfRoots, AreTheirIdsWhenThereIsMore) {
  const auto key = [](const char* json) { return ChooseKey(Parse(json).get(), "/listed"); };
  EXPECT_EQ(key(R"({"@odata.id": "/own", "a": 1})"), "/own");
  EXPECT_EQ(key(R"({"@odata.id": "", "a": 1})"), "");
  EXPECT_EQ(key(R"({"@odata.id": "/own"})"), "/listed");
  EXPECT_EQ(key(R"({"@odata.id": 5})"), "/listed");
  EXPECT_EQ(key(R"({"a": 1})"), "/listed");
  EXPECT_EQ(key("{}"), "/listed");
  EXPECT_EQ(key(R"({"@odata.id": 5, "a": 1})"), std::nullopt);
  EXPECT_EQ(key(R"({"@odata.id": null, "a": 1})"), std::nullopt);
}

}  // namespace

}  // namespace ostrafel
