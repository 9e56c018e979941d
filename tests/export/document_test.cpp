// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "export/document.h"

#include <gtest/gtest.h>
#include <jansson.h>

#include <algorithm>
#include <cstddef>
#include <string>
#include <vector>

#include "document/document.h"
#include "export/memory_export.h"
#include "layout/layout.h"
#include "play/play.h"
#include "support/temp_directory.h"

namespace ostrafel {

namespace {

using Texts = std::vector<std::string>;

// What the export of a store with one resource at /r says of it.
MemoryExport Export(const Server& server) { return ExportOf(server, "/r"); }

// The document of /r, of which all comes back.
std::string TextOf(const Server& server) {
  const MemoryExport made = Export(server);
  EXPECT_EQ(TextsOf(made.losses), Texts{});
  return made.documents.at("");
}

// The document of /r, of which this does not come back.
std::string TextOf(const Server& server, const Texts& losses) {
  const MemoryExport made = Export(server);
  EXPECT_EQ(TextsOf(made.losses), losses);
  return made.documents.at("");
}

// The same on one line.
std::string Compact(const std::string& text) {
  const Document document(json_loads(text.c_str(), 0, nullptr));
  EXPECT_NE(document, nullptr) << text;
  char* dumped = json_dumps(document.get(), JSON_COMPACT);
  std::string line = dumped == nullptr ? "" : dumped;
  free(dumped);
  return line;
}

// What a create of one file at this key makes.
Server Created(const std::string& text, const std::string& uri = "/r") {
  const TempDirectory tree;
  tree.Write("index.json", text);
  const LoadRequest request = {LoadAction::kCreate, tree.path(), uri, "index.json"};
  Server server;
  const Played played = PlayLoad(&server, request, ListTree(request), OnFailure::kStop);
  EXPECT_EQ(played.status, 0) << played.messages;
  return server;
}

// Arrays in each other, so many, in the one member of the root.
std::string Nested(std::size_t arrays, const std::string& innermost) {
  return R"({"A":)" + std::string(arrays, '[') + innermost + std::string(arrays, ']') + "}";
}

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

TEST(WriteDocument, ListsScalarsThatNoCreateStores) {
  Server server;
  server.keys["/r"] = Hash{{"A", "1e3"},         {"B", "3000000000"}, {"C", "2147483647"},
                           {"D", "TRUE"},        {"E", "\"a\"b\""},   {"F", "\"\xFF\""},
                           {"&&ETag", "a\"b"},   {"G", ""},           {"\xFF", "1"},
                           {"H", "-2147483648"}, {"I", "5.10"},       {"J", std::string(1, '\0')}};
  EXPECT_EQ(
      Compact(TextOf(server,
                     {
                         "/r | &&ETag | no create stores such a string",
                         "/r | A | no create stores a number like this",
                         "/r | B | no create stores a number like this",
                         "/r | C | may have been a number of more than 32 bits",
                         "/r | D | no create stores such a value",
                         "/r | E | no create stores such a value",
                         "/r | F | JSON can have no such string",
                         "/r | G | no create stores such a value",
                         "/r | H | may have been a number of more than 32 bits",
                         "/r | I | no create stores a number like this",
                         std::string("/r | J | JSON can have no such string"),
                         "/r | J | no create stores such a value",
                         "/r | \xFF | JSON can have no such name",
                     })),
      "{\"A\":1000.0,\"B\":3000000000,\"C\":2147483647,\"D\":\"TRUE\",\"E\":\"\\\"a\\\"b\\\"\","
      "\"F\":\"\xEF\xBF\xBD\",\"G\":\"\",\"H\":-2147483648,\"I\":5.0999999999999996,"
      "\"J\":\"\xEF\xBF\xBD\",\"&&ETag\":\"a\\\"b\"}");
}

TEST(WriteDocument, ListsRecordsThatNoCreateMakes) {
  Server server;
  server.keys["/r"] =
      Hash{{"&&Object A &&/r/B", ""}, {"&&Array C &&/r/D", ""},     {"&&Object E /not/there", ""},
           {"&&Object F /l", ""},     {"&&Array G &&/r/H", ""},     {"&&ObjectRef I \xFF", ""},
           {"&&Object J /h", ""},     {"&&ObjectRef K a b /c", ""}, {"L", "1"},
           {"&&ObjectRef L /x", ""},  {"&&Object M &&/r/M", ""}};
  server.keys["&&/r/B"] = Hash{{"x", "1"}};
  server.keys["&&/r/D"] = List{"1"};
  server.keys["&&/r/H"] = Hash{{"x", "1"}};
  server.keys["&&/r/M"] = Hash{{"@odata.id", "\"/m\""}, {"x", "1"}};
  server.keys["/h"] = Hash{{"x", "1"}};
  server.keys["/l"] = List{"1"};
  EXPECT_EQ(
      Compact(TextOf(server,
                     {
                         "&&/r/H |  | unplaced",
                         "&&/r/M | @odata.id | a create would take it for the object's key",
                         "/r | &&Array C &&/r/D | a create would store the array elsewhere",
                         "/r | &&Array G &&/r/H | a create would store the array elsewhere",
                         "/r | &&Object A &&/r/B | a create would store the object elsewhere",
                         "/r | &&Object E /not/there | its hash is not there",
                         "/r | &&Object F /l | its key holds no hash",
                         "/r | &&Object J /h | its hash does not have its key in \"@odata.id\"",
                         "/r | &&ObjectRef I \xFF | JSON can have no such string",
                         "/r | &&ObjectRef L /x | the hash has another record of this member",
                     })),
      "{\"A\":{\"x\":1},\"C\":[1],\"E\":{\"@odata.id\":\"/not/there\"},"
      "\"F\":{\"@odata.id\":\"/l\"},\"G\":[],\"I\":{\"@odata.id\":\"\xEF\xBF\xBD\"},"
      "\"J\":{\"@odata.id\":\"/h\"},\"K a b\":{\"@odata.id\":\"/c\"},\"L\":1,\"M\":{\"x\":1}}");
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

TEST(WriteDocument, ListsAnIdThatALoadWouldTakeForTheKey) {
  Server server;
  server.keys["/r"] = Hash{{"@odata.id", "\"/other\""}, {"A", "1"}};
  EXPECT_EQ(
      Compact(TextOf(server, {"/r | @odata.id | a load would take it for the resource's key"})),
      R"({"A":1})");
  server.keys["/r"] = Hash{{"@odata.id", "\"/other\""}};
  EXPECT_EQ(Compact(TextOf(server)), R"({"@odata.id":"/other"})");
}

TEST(WriteDocument, ListsAnObjectOfWhichNothingButTheKeyIsText) {
  Server server;
  server.keys["/r"] = Hash{{"&&Object A /x", ""}, {"&&Object B /x", ""}};
  server.keys["/x"] = Hash{{"@odata.id", "\"/x\""}, {"\xFF", "1"}};
  const Texts losses = {"/r | &&Object A /x | its hash does not have its key in \"@odata.id\"",
                        "/r | &&Object B /x | its hash does not have its key in \"@odata.id\""};
  const std::string text = R"({"A":{"@odata.id":"/x"},"B":{"@odata.id":"/x"}})";
  EXPECT_EQ(Compact(TextOf(server, losses)), text);
  // The same where both records are of one member.
  server.keys["/x"] = Hash{{"@odata.id", "\"/x\""}, {"&&Object @odata.id /x", ""}};
  EXPECT_EQ(Compact(TextOf(server, losses)), text);
}

TEST(WriteDocument, ListsRecordsThatCanBeReadInMoreThanOneWay) {
  const std::string field = "&&ObjectRef A /b /c";
  Server server;
  server.keys["/r"] = Hash{{field, ""}};
  EXPECT_EQ(Compact(TextOf(server, {"/r | " + field + " | can be read in more than one way"})),
            R"({"A":{"@odata.id":"/b /c"}})");
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

TEST(WriteDocument, HasALinkForWhatThePlanLeavesOut) {
  const Server server = Created(R"({"A": {"@odata.id": "/x", "y": 1}})");
  const PlannedExport planned(server, {"/r", true});
  Contents contents = planned.ContentsOf(0);
  contents.erase(&*planned.keys.find("/x"));
  const DocumentText made =
      WriteDocument(*planned.plan.documents[0].root, RootForm::kAsStored, planned.keys, contents);
  EXPECT_EQ(Compact(made.text), R"({"A":{"@odata.id":"/x"}})");
  EXPECT_EQ(made.keys.size(), 1U);
  EXPECT_EQ(TextsOf(made.losses),
            (Texts{"/r | &&Object A /x | stands in too many documents, and is a link here"}));
}

TEST(WriteDocument, ListsWhatStandsOnlyInWhatIsLeftOut) {
  // Two records of one member.
  Server server;
  server.keys["/r"] =
      Hash{{"A", "1"}, {"&&Object A /r/e#/1", ""}, {"B", "1"}, {"&&Array B &&/r/B", ""}};
  server.keys["/r/e#/1"] =
      Hash{{"@odata.id", "\"/r/e#/1\""}, {"&&Array C &&/r/e#/1/C", ""}, {"&&Object D /x", ""}};
  server.keys["&&/r/e#/1/C"] = List{"1"};
  server.keys["/x"] = Hash{{"@odata.id", "\"/x\""}, {"&&Object E &&/x/E", ""}};
  server.keys["&&/x/E"] = Hash{{"y", "1"}};
  server.keys["&&/r/B"] = List{"1"};
  // A name that is no text.
  server.keys["/r/\xff"] = Hash{{"&&Object \xff &&/r/\xff/\xff", ""}, {"x", "1"}};
  server.keys["&&/r/\xff/\xff"] = Hash{{"y", "1"}};
  EXPECT_EQ(Compact(TextOf(
                server, {"&&/r/B |  | unplaced", "&&/r/e#/1/C |  | unplaced",
                         "&&/r/\xff/\xff |  | unplaced", "&&/x/E |  | unplaced",
                         "/r | &&Array B &&/r/B | the hash has another record of this member",
                         "/r | &&Object A /r/e#/1 | the hash has another record of this member",
                         "/r/e#/1 |  | unplaced",
                         "/r/\xff | &&Object \xff &&/r/\xff/\xff | JSON can have no such name"})),
            R"({"A":1,"B":1})");
}

TEST(WriteDocument, ListsPartsOfOtherTypesThatAreOutsideOfTheScope) {
  Server server;
  server.keys["/r"] = Hash{{"&&Object o /other", ""}};
  server.keys["/other"] = Hash{
      {"@odata.id", "\"/other\""}, {"&&Object p &&/other/p", ""}, {"&&Array q &&/other/q", ""}};
  server.keys["&&/other/p"] = List{"1"};
  server.keys["&&/other/q"] = OtherType();
  EXPECT_EQ(Compact(TextOf(server, {"&&/other/p |  | unplaced", "&&/other/q |  | unplaced"})),
            R"({"o":{"@odata.id":"/other","p":{},"q":[]}})");
}

TEST(WriteDocument, HasNoBlanksForEachOfVeryManyLevels) {
  const std::string text = TextOf(Created(Nested(2000, "1,1,1")));
  EXPECT_LT(text.size(), 2000U * 2 * 32 * kIndent + 3 * 32 * kIndent + 10000);
  EXPECT_NE(text.find("\n" + std::string(32 * kIndent, ' ') + "1,"), std::string::npos);
}

TEST(WriteDocument, ShortensNamesOfMegabytesInWhatItLists) {
  const std::string name = std::string(1000000, 'n') + "end";
  Server server;
  server.keys["/r"] = Hash{{name, "foreign"}};
  server.keys["/r/" + name] = Hash{{"x", "1"}};
  const MemoryExport made = Export(server);
  ASSERT_EQ(made.losses.size(), 2U);
  const auto& first = *made.losses.ByKey().begin();
  for (const std::string& shown :
       {first.second.begin()->shown, ShownName(made.losses.ByKey().rbegin()->first)}) {
    EXPECT_NE(shown.find("nn... (1,000,00"), std::string::npos);
    EXPECT_NE(shown.find(" bytes) ...nn"), std::string::npos);
    EXPECT_EQ(shown.substr(shown.size() - 4), "nend");
    EXPECT_LT(shown.size(), 2100U);
  }
}

TEST(WriteDocument, HasALinkForAHashOfWhichJsonCanHaveOnlyTheKey) {
  // Its other record leads to /q, so that the name before that is not text.
  Server server;
  server.keys["/r"] = Hash{{"&&Object K /k", ""}};
  server.keys["/k"] = Hash{{"@odata.id", "\"/k\""}, {"&&Object a /\xff /q", ""}};
  server.keys["/q"] = Hash{{"@odata.id", "\"/q\""}, {"x", "1"}};
  EXPECT_EQ(Compact(TextOf(server,
                           {"/k | &&Object a /\xff /q | JSON can have no such name",
                            "/r | &&Object K /k | JSON can have nothing of its hash but the key"})),
            R"({"K":{"@odata.id":"/k"}})");
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

TEST(WriteDocument, ListsWhatIsDeeperThanALoadReads) {
  for (const std::string marker : {ArrayMarker, ObjectMarker, ObjectRefMarker}) {
    Server server = Created(Nested(kMostLevels - 2, "1"));
    std::string innermost = "&&/r/A";
    for (std::size_t i = 3; i < kMostLevels; ++i) innermost += "/0";
    std::string target = innermost + "/0";
    std::get<List>(server.keys.at(innermost)) = {marker + target};
    if (marker == ArrayMarker) server.keys[target] = List{"1"};
    if (marker == ObjectMarker) server.keys[target] = Hash{{"x", "1"}};
    const MemoryExport made = Export(server);
    const Texts texts = TextsOf(made.losses);
    const std::string loss =
        ShownName(innermost) + " | element 0 | stands deeper than a load reads";
    EXPECT_EQ(std::count(texts.begin(), texts.end(), loss), 1) << marker;
    EXPECT_NE(Compact(made.documents.at("")), "") << marker;
  }
}

}  // namespace

}  // namespace ostrafel
