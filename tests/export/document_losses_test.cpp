// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

// What a document lists as not coming back.
#include <gtest/gtest.h>

#include <cstddef>
#include <string>

#include "export/document.h"
#include "export/document_texts.h"
#include "layout/layout.h"

namespace ostrafel {

namespace {

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
