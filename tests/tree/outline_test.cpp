// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "tree/outline.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "document/document.h"

namespace ostrafel {

namespace {

const char* const kText = R"({"@odata.id": "/r", "Status": {"State": "on"},
    "Fans": [3, {"x": true}], "Chassis": {"@odata.id": "/c"}, "Bad": {"@odata.id": 1, "In": 2},
    "Own": {"@odata.id": "/o", "a/b~": {}}, "&&ETag": "\"e\""})";

class OutlineTest : public ::testing::Test {
 protected:
  Document root{json_loads(kText, 0, nullptr)};
  Outline outline = OutlineOf(root.get(), "/r");
};

TEST_F(OutlineTest, HoldsEachValueWithItsPointerAndKey) {
  std::vector<std::string> found;
  for (std::size_t i = 0; i < outline.size(); ++i) {
    found.push_back(PointerOf(outline, i) + " " + outline[i].key);
  }
  EXPECT_EQ(found,
            (std::vector<std::string>{" /r", "/@odata.id ", "/Status &&/r/Status", "/Status/State ",
                                      "/Fans &&/r/Fans", "/Fans/0 ", "/Fans/1 &&/r/Fans/1",
                                      "/Fans/1/x ", "/Chassis /c", "/Bad ", "/Own /o",
                                      "/Own/@odata.id ", "/Own/a~1b~0 &&/o/a/b~", "/&&ETag "}));
}

TEST_F(OutlineTest, KnowsTheRecordOfEachValue) {
  std::vector<std::string> found;
  for (std::size_t i = 1; i < outline.size(); ++i) {
    const Record record = RecordOf(outline, i);
    found.push_back(record.field + "=" + record.value);
  }
  EXPECT_EQ(found, (std::vector<std::string>{
                       "@odata.id=\"/r\"", "&&Object Status &&/r/Status=", "State=\"on\"",
                       "&&Array Fans &&/r/Fans=", "=3", "=&&Object &&/r/Fans/1", "x=true",
                       "&&ObjectRef Chassis /c=", "&&Object Bad =", "&&Object Own /o=",
                       "@odata.id=\"/o\"", "&&Object a/b~ &&/o/a/b~=", "&&ETag=\\\"e\\\""}));
}

TEST_F(OutlineTest, OfWhatIsNoObjectIsEmpty) {
  const Document array(json_loads("[1]", 0, nullptr));
  EXPECT_TRUE(OutlineOf(array.get(), "/r").empty());
  EXPECT_TRUE(OutlineOf(nullptr, "/r").empty());
}

}  // namespace

}  // namespace ostrafel
