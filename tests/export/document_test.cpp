// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "export/document.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <string>

#include "export/document_texts.h"
#include "layout/layout.h"

namespace ostrafel {

namespace {

TEST(WriteDocument, HasFourBlanksAndItsMembersInOrder) {
  const Server server = Created(
      R"({"Status": {"State": "on"}, "Fans": [3, {"x": true}, [], {}], "Name": "A", "&&ETag": "W/\"1\"",
          "Id": "r", "@odata.id": "/r", "@odata.type": "#T", "Chassis": {"@odata.id": "/c"},
          "Real": 5.0, "Text": "a\nb\u0001\u007f\\\"", "Empty": {}})");
  EXPECT_EQ(TextOf(server), R"({
    "@odata.type": "#T",
    "@odata.id": "/r",
    "Id": "r",
    "Name": "A",
    "Chassis": {
        "@odata.id": "/c"
    },
    "Empty": {},
    "Fans": [
        3,
        {
            "x": true
        },
        [],
        {}
    ],
    "Real": 5.0,
    "Status": {
        "State": "on"
    },
    "Text": "a\nb\u0001\u007f\\\"",
    "&&ETag": "W/\"1\""
}
)");
}

TEST(WriteDocument, HasAnObjectOfItsOwnKeyWholeOnceAndThenAsAStub) {
  const Server server = Created(
      R"({"A": {"@odata.id": "/x", "y": [1], "z": 2}, "B": {"@odata.id": "/x", "q": 1},
          "C": [{"@odata.id": "/x", "q": 1}]})");
  EXPECT_EQ(Compact(TextOf(server)),
            R"({"A":{"@odata.id":"/x","y":[1],"z":2},"B":{"@odata.id":"/x","z":2},)"
            R"("C":[{"@odata.id":"/x","z":2}]})");
}

TEST(WriteDocument, HasAStubOfAnotherShapeWhereAllElseIsObjectsAndArrays) {
  EXPECT_EQ(Compact(TextOf(Created(R"({"A": {"@odata.id": "/x", "y": [1]},
                                       "B": {"@odata.id": "/x", "y": []}})"))),
            R"({"A":{"@odata.id":"/x","y":[1]},"B":{"@odata.id":"/x","y":[]}})");
}

TEST(WriteDocument, HasMembersOfAStubInTheirOrder) {
  EXPECT_EQ(Compact(TextOf(Created(R"({"A": {"@odata.id": "/x", "@odata.type": "#T"},
                                       "B": {"@odata.id": "/x", "@odata.type": "#T"}})"))),
            R"({"A":{"@odata.type":"#T","@odata.id":"/x"},)"
            R"("B":{"@odata.type":"#T","@odata.id":"/x"}})");
}

TEST(WriteDocument, EndsWhereObjectsHoldEachOther) {
  const Server server = Created(
      R"({"A": {"@odata.id": "/x", "B": {"@odata.id": "/y", "A": {"@odata.id": "/x", "q": 1}}}})");
  EXPECT_EQ(Compact(TextOf(server)),
            R"({"A":{"@odata.id":"/x","B":{"@odata.id":"/y","A":{"@odata.id":"/x","B":{}}}}})");
}

TEST(WriteDocument, HasTheRootAgainAsAStub) {
  // With its key in "@odata.id" and without.
  EXPECT_EQ(Compact(TextOf(Created(R"({"@odata.id": "/r", "A": {"@odata.id": "/r", "x": 1}})"))),
            R"({"@odata.id":"/r","A":{"@odata.id":"/r","A":{}}})");
  EXPECT_EQ(
      Compact(TextOf(Created(R"({"A": [{"@odata.id": "/r", "x": 1}], "B": {"@odata.id": "/r"}})"))),
      R"({"A":[{"@odata.id":"/r","A":[]}],"B":{"@odata.id":"/r"}})");
}

TEST(WriteDocument, HasTheRootInAnObjectOfAnotherKeyAsALink) {
  const std::string record = "&&Object A /r";
  Server server;
  server.keys["/r"] = Hash{{"&&Object X /x", ""}};
  server.keys["/x"] = Hash{{"@odata.id", "\"/x\""}, {record, ""}};
  const Texts losses = {"/x | " + record + R"( | its hash does not have its key in "@odata.id")"};
  EXPECT_EQ(Compact(TextOf(server, losses)), R"({"X":{"@odata.id":"/x","A":{"@odata.id":"/r"}}})");
}

TEST(WriteDocument, HasLinksToTheEmptyIdInArrays) {
  const std::string text =
      R"({"A":[{"@odata.id":""},{"@odata.id":"","x":1}],"B":{"@odata.id":""}})";
  EXPECT_EQ(Compact(TextOf(Created(text))), text);
}

TEST(WriteDocument, WritesAPartOnceAndIsEmptyAfterThat) {
  // Both records come of names with slashes that lead to one key.
  EXPECT_EQ(Compact(TextOf(Created(R"({"A": {"/B": [1]}, "A/": {"B": []}})"))),
            R"({"A":{"/B":[1]},"A/":{"B":[]}})");
}

TEST(WriteDocument, KeepsTheStoredTextOfNumbers) {
  const std::string text =
      R"({"A":[0,-7,999999999,2147483646,0.0,-0.0,0.1,12345.678901,true,null]})";
  const Server server = Created(text);
  EXPECT_EQ(Created(TextOf(server)).keys, server.keys);
}

TEST(WriteDocument, IsEmptyWhereAPartIsOfAnotherTypeThanItsRecordSays) {
  // The record comes back; the key is listed.
  Server server;
  server.keys["/r"] = Hash{{"&&Object A &&/r/A", ""}, {"&&Array B &&/r/B", ""}};
  server.keys["&&/r/A"] = List{"1"};
  server.keys["&&/r/B"] = Hash{{"x", "1"}};
  EXPECT_EQ(Compact(TextOf(server, {"&&/r/A |  | unplaced", "&&/r/B |  | unplaced"})),
            R"({"A":{},"B":[]})");
}

TEST(WriteDocument, ReadsARecordOfAnObjectSoThatItIsThere) {
  Server server;
  server.keys["/r"] = Hash{{"&&Object A /b /c", ""}};
  server.keys["/c"] = Hash{{"@odata.id", "\"/c\""}, {"x", "1"}};
  EXPECT_EQ(Compact(TextOf(server)), R"({"A /b":{"@odata.id":"/c","x":1}})");
}

TEST(WriteDocument, ReadsARecordOfAnObjectSoThatItIsThereThoughAnotherNameWouldHaveItInPlace) {
  const std::string text = R"({"a":{"@odata.id":"/o &&/r/a /o","v":1}})";
  EXPECT_EQ(Compact(TextOf(Created(text))), text);
  const std::string foreign = R"({"a":{"@odata.id":"x &&/r/a x","v":1}})";
  EXPECT_EQ(Compact(TextOf(Created(foreign))), foreign);
  // With nothing there the object is in place, and empty.
  const std::string in_place = R"({"a /o":{}})";
  EXPECT_EQ(Compact(TextOf(Created(in_place))), in_place);
  // One record of two members.
  const std::string field = "&&Object a /o &&/r/a /o";
  const Server both = Created(R"({"a": {"@odata.id": "/o &&/r/a /o", "v": 1}, "a /o": {"w": 1}})");
  const Texts losses = TextsOf(Export(both).losses);
  const std::string loss = "/r | " + field + " | can be read in more than one way";
  EXPECT_NE(std::find(losses.begin(), losses.end(), loss), losses.end());
}

TEST(WriteDocument, HasTheShortestMemberInAStub) {
  EXPECT_EQ(Compact(TextOf(Created(R"({"A": {"@odata.id": "/x", "a": "long", "b": 12, "c": {}},
                                       "B": {"@odata.id": "/x", "b": 12}})"))),
            R"({"A":{"@odata.id":"/x","a":"long","b":12,"c":{}},"B":{"@odata.id":"/x","b":12}})");
}

TEST(WriteDocument, HasNoLargeMemberInAStubAsALoadLooksNoFurther) {
  const std::string large(2000, 'n');
  EXPECT_EQ(Compact(TextOf(Created(R"({"A": {"@odata.id": "/x", "a": ")" + large +
                                   R"("}, "B": {"@odata.id": "/x", "c": []}})"))),
            R"({"A":{"@odata.id":"/x","a":")" + large + R"("},"B":{"@odata.id":"/x","a":null}})");
  EXPECT_EQ(Compact(TextOf(Created(R"({"A": {"@odata.id": "/x", ")" + large +
                                   R"(": 1}, "B": {"@odata.id": "/x", "c": []}})"))),
            R"({"A":{"@odata.id":"/x",")" + large + R"(":1},"B":{"@odata.id":"/x","Id":1}})");
}

TEST(WriteDocument, HasNoBlanksForEachOfVeryManyLevels) {
  const std::string text = TextOf(Created(Nested(2000, "1,1,1")));
  EXPECT_LT(text.size(), 2000U * 2 * 32 * kIndent + 3 * 32 * kIndent + 10000);
  EXPECT_NE(text.find("\n" + std::string(32 * kIndent, ' ') + "1,"), std::string::npos);
}

TEST(WriteDocument, OfARootGivesItsKeyOrLeavesTheFileOut) {
  const Server server = {{{"/r", Hash{{"&&File", "\"a.json\""}, {"@odata.type", "1"}, {"A", "1"}}}},
                         0};
  const PlannedExport planned(server, {"/r", true});
  EXPECT_EQ(Compact(planned.Write(0, RootForm::kWithItsKey).text),
            R"({"@odata.type":1,"@odata.id":"/r","A":1,"&&File":"a.json"})");
  const DocumentText without = planned.Write(0, RootForm::kWithoutInclusion);
  EXPECT_EQ(Compact(without.text), R"({"@odata.type":1,"A":1})");
  EXPECT_FALSE(without.tells_key);
  EXPECT_EQ(TextsOf(without.losses), Texts{});
}

TEST(WriteDocument, IsAsDeepAsALoadReads) {
  struct Case {
    const char* innermost;
    std::size_t levels;
  };
  for (const auto& [innermost, levels] :
       {Case{"", 0}, {"1", 1}, {"{}", 1}, {R"({"@odata.id":"/l"})", 2}}) {
    const std::string text = Nested(kMostLevels - 1 - levels, innermost);
    const Server server = Created(text);
    EXPECT_EQ(Compact(TextOf(server)), text);
  }
}

}  // namespace

}  // namespace ostrafel
