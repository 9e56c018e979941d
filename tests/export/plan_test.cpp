// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include "export/plan.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <string>
#include <vector>

#include "export/memory_export.h"

namespace ostrafel {

namespace {

using Texts = std::vector<std::string>;

// A line for each document, in the order of the plan: "folder: key key".
Texts LinesOf(const PlannedExport& planned) {
  Texts lines;
  std::size_t begin = 0;
  for (const PlannedDocument& document : planned.plan.documents) {
    std::string line = (document.folder.path.empty() ? "." : document.folder.path) + ":";
    for (std::size_t i = begin; i < document.end; ++i) line += " " + planned.plan.keys[i]->first;
    EXPECT_EQ(planned.plan.keys[begin], document.root);
    lines.push_back(line);
    begin = document.end;
  }
  EXPECT_EQ(begin, planned.plan.keys.size());
  return lines;
}

Texts LinesOf(const Server& server, const std::string& uri = "/r") {
  return LinesOf(PlannedExport(server, {uri, true}));
}

Texts UnplacedOf(const Server& server) {
  const PlannedExport planned(server, {"/r", true});
  return planned.Unplaced();
}

std::string RecordOf(const std::string& name, const std::string& target) {
  return "&&Object " + name + " " + target;
}

// A hash with its own key in "@odata.id" and with records of these objects.
Hash OwnKey(const std::string& key, const Texts& targets = {}) {
  Hash hash = {{"@odata.id", '"' + key + '"'}, {"x", "1"}};
  for (std::size_t i = 0; i < targets.size(); ++i) {
    hash[RecordOf("o" + std::to_string(i), targets[i])] = "";
  }
  return hash;
}

TEST(PlanTree, HasADocumentForEachResourceWithItsParts) {
  Server server;
  server.keys["/r"] = Hash{{RecordOf("B", "&&/r/B"), ""}, {"&&Array A &&/r/A", ""}};
  server.keys["&&/r/B"] = Hash{{"x", "1"}};
  server.keys["&&/r/A"] = List{"1", "&&Object &&/r/A/1"};
  server.keys["&&/r/A/1"] = Hash{{"x", "1"}};
  server.keys["/r/C"] = Hash{{"x", "1"}};
  server.keys["/other"] = Hash{{"x", "1"}};
  EXPECT_EQ(LinesOf(server), (Texts{".: /r &&/r/A &&/r/A/1 &&/r/B", "C: /r/C"}));
  EXPECT_EQ(UnplacedOf(server), Texts{});
}

TEST(PlanTree, OfOneResourceHasNothingElse) {
  Server server;
  server.keys["/r"] = Hash{{RecordOf("B", "&&/r/B"), ""}};
  server.keys["&&/r/B"] = Hash{{"x", "1"}};
  server.keys["/r/C"] = Hash{{"x", "1"}};
  EXPECT_EQ(LinesOf(PlannedExport(server, {"/r", false})), Texts{".: /r &&/r/B"});
}

TEST(PlanTree, OfOneResourceHasPartsThatAreNotThereYet) {
  // No search for names would tell that they have come.
  Server server;
  server.keys["/r"] = Hash{{RecordOf("B", "&&/r/B"), ""}, {RecordOf("C", "/nowhere"), ""}};
  EXPECT_EQ(LinesOf(PlannedExport(server, {"/r", false})), Texts{".: /r &&/r/B /nowhere"});
  EXPECT_EQ(LinesOf(PlannedExport(server, {"/r", true})), Texts{".: /r /nowhere"});
}

TEST(PlanTree, GivesAPartToTheRecordInItsPlace) {
  Server server;
  server.keys["/r"] = Hash{{RecordOf("A", "&&/r/b/y"), ""}};
  server.keys["/r/b"] = Hash{{RecordOf("y", "&&/r/b/y"), ""}};
  server.keys["&&/r/b/y"] = Hash{{"x", "1"}};
  EXPECT_EQ(LinesOf(server), (Texts{".: /r", "b: /r/b &&/r/b/y"}));
}

TEST(PlanTree, GivesAPartToARecordOfItsType) {
  Server server;
  server.keys["/r"] = Hash{{RecordOf("b", "&&/r/b"), ""}};
  server.keys["&&/r/b"] = Hash{{"&&Array y &&/r/b/y", ""}};
  server.keys["/r/b"] = Hash{{RecordOf("y", "&&/r/b/y"), ""}};
  server.keys["&&/r/b/y"] = Hash{{"x", "1"}};
  EXPECT_EQ(LinesOf(server), (Texts{".: /r &&/r/b", "b: /r/b &&/r/b/y"}));
}

TEST(PlanTree, HasADocumentForEachOfAChainOfFewObjects) {
  Server server;
  for (int i = 0; i < 12; ++i) {
    const std::string key = "/r/" + std::to_string(i);
    server.keys[key] = OwnKey(key, {"/r/" + std::to_string(i + 1)});
  }
  EXPECT_EQ(PlannedExport(server, {"/r", true}).plan.documents.size(), 12U);
}

TEST(PlanTree, HasADocumentForAnObjectWithAMemberThatAlmostIncludes) {
  Server server;
  server.keys["/r"] = OwnKey("/r", {"/r/a"});
  server.keys["/r/a"] = OwnKey("/r/a");
  std::get<Hash>(server.keys["/r/a"])["&&ObjectRef &&File  /r/b"] = "";
  EXPECT_EQ(LinesOf(server), (Texts{".: /r /r/a", "a: /r/a"}));
}

TEST(PlanTree, HasNoDocumentOfWhichOnlyTheKeyCouldBeRead) {
  // A load would take the key of the folder then.
  Server server;
  server.keys["/r//a"] = Hash{{"@odata.id", "\"/r//a\""}, {"\xFF", "1"}};
  EXPECT_EQ(LinesOf(server), Texts{});
  EXPECT_EQ(UnplacedOf(server), Texts{"/r//a"});
}

TEST(PlanTree, TakesNoPartForAReadingThatIsNotTheOnlyOne) {
  // What has its own key is the only target of an object's record that a create makes.
  Server server;
  server.keys["/r"] = Hash{{RecordOf("n", "q &&/r/b/y"), ""}};
  server.keys["q &&/r/b/y"] = OwnKey("q &&/r/b/y");
  server.keys["&&/r/b/y"] = Hash{{"x", "1"}};
  EXPECT_EQ(LinesOf(server), Texts{".: /r q &&/r/b/y"});
  EXPECT_EQ(UnplacedOf(server), Texts{"&&/r/b/y"});
}

TEST(PlanTree, GivesAFolderFirstToWhatNothingElseBringsBack) {
  // For Windows, the folder of the second is the one that the first would have.
  Server server;
  server.keys["/r/\""] = Hash{{"@odata.id", R"("/r/\"")"}, {"x", "1"}};
  server.keys["/r/%22"] = Hash{{"x", "1"}};
  const PlannedExport planned(server, {"/r", true}, true);
  ASSERT_EQ(planned.plan.documents.size(), 2U);
  EXPECT_EQ(planned.plan.documents[0].root->first, "/r/%22");
  EXPECT_EQ(planned.plan.documents[0].folder.path, "%22");
  EXPECT_EQ(planned.plan.documents[1].root->first, "/r/\"");
  EXPECT_TRUE(planned.plan.documents[1].folder.is_spare);
}

TEST(PlanTree, HasFirstWhatStandsInNoOther) {
  Server server;
  server.keys["/r"] = OwnKey("/r");
  server.keys["/r/A"] = OwnKey("/r/A");
  server.keys["/r/B"] = Hash{{RecordOf("A", "/r/A"), ""}};
  EXPECT_EQ(LinesOf(server), (Texts{".: /r", "B: /r/B /r/A", "A: /r/A"}));
}

TEST(PlanTree, HasNoDocumentThatNobodyAsksForOfWhatStandsInOthers) {
  Server server;
  server.keys["/r"] = OwnKey("/r", {"/r#/A", "/r?b", "/r/File"});
  server.keys["/r#/A"] = OwnKey("/r#/A");
  server.keys["/r?b"] = OwnKey("/r?b");
  server.keys["/r/File"] = OwnKey("/r/File");
  std::get<Hash>(server.keys["/r/File"])["&&File"] = "\"a\"";
  server.keys["/r/c#d"] = OwnKey("/r/c#d");
  EXPECT_EQ(LinesOf(server), (Texts{".: /r /r#/A /r?b /r/File", "c#d: /r/c#d"}));
  // Keys that are not below the URI stand within its resources all the same.
  EXPECT_EQ(UnplacedOf(server), Texts{});
  server.keys["/r"] = OwnKey("/r", {"/r/a#b"});
  server.keys["/r/a#b"] = OwnKey("/r/a#b");
  EXPECT_EQ(LinesOf(server), (Texts{".: /r /r/a#b", "File: /r/File", "c#d: /r/c#d"}));
}

TEST(PlanTree, HasADocumentForOneOfThoseThatHoldEachOther) {
  Server server;
  server.keys["/r/a#"] = OwnKey("/r/a#", {"/r/b#"});
  server.keys["/r/b#"] = OwnKey("/r/b#", {"/r/a#"});
  EXPECT_EQ(LinesOf(server), Texts{"a#: /r/a# /r/b#"});
  EXPECT_EQ(UnplacedOf(server), Texts{});
}

TEST(PlanTree, HasADocumentForAResourceThatHoldsItself) {
  Server server;
  server.keys["/r"] = OwnKey("/r", {"/r"});
  EXPECT_EQ(LinesOf(server), Texts{".: /r"});
}

TEST(PlanTree, HasSpareFoldersForKeysThatNameNone) {
  Server server;
  server.keys["/r/../x"] = OwnKey("/r/../x");
  server.keys["/r//x"] = OwnKey("/r//x", {"/r//y"});
  server.keys["/r//y"] = OwnKey("/r//y");
  server.keys["/r/."] = Hash{{"x", "1"}};
  EXPECT_EQ(LinesOf(server), (Texts{"%1: /r/../x", "%2: /r//x /r//y"}));
  EXPECT_EQ(UnplacedOf(server), Texts{"/r/."});
}

TEST(PlanTree, GivesAPartToOneResource) {
  Server server;
  server.keys["/r/A"] = Hash{{RecordOf("x", "&&/r/p"), ""}};
  server.keys["/r/B"] = Hash{{RecordOf("x", "&&/r/p"), ""}};
  server.keys["&&/r/p"] = Hash{{"x", "1"}};
  EXPECT_EQ(LinesOf(server), (Texts{"A: /r/A &&/r/p", "B: /r/B"}));
}

TEST(PlanTree, HasThePartsOfAResourceWhereverItStands) {
  Server server;
  server.keys["/r/A"] = Hash{{RecordOf("x", "/y"), ""}};
  server.keys["/r/B"] = Hash{{RecordOf("x", "/y"), ""}};
  server.keys["/y"] = OwnKey("/y", {"&&/y/o0"});
  server.keys["&&/y/o0"] = Hash{{"x", "1"}};
  EXPECT_EQ(LinesOf(server), (Texts{"A: /r/A /y &&/y/o0", "B: /r/B /y &&/y/o0"}));
}

TEST(PlanTree, LeavesOutWhatCannotBeReached) {
  Server server;
  server.keys["/r"] = Hash{{"x", "1"}};
  server.keys["&&/r/A"] = Hash{{"&&Array B &&/r/A/B", ""}};
  server.keys["&&/r/A/B"] = List{"1"};
  server.keys["/r/list"] = List{"1"};
  server.keys["/r/string"] = OtherType();
  EXPECT_EQ(LinesOf(server), Texts{".: /r"});
  EXPECT_EQ(UnplacedOf(server), (Texts{"&&/r/A", "&&/r/A/B", "/r/list", "/r/string"}));
}

TEST(PlanTree, LeavesOutAnObjectThatHasNotItsKey) {
  Server server;
  server.keys["/r"] = Hash{{RecordOf("A", "/x"), ""}};
  server.keys["/x"] = Hash{{"x", "1"}};
  EXPECT_EQ(LinesOf(server), Texts{".: /r"});
}

TEST(PlanTree, OfACircleOfPartsEnds) {
  Server server;
  server.keys["/r"] = Hash{{RecordOf("A", "&&/r/A"), ""}};
  server.keys["&&/r/A"] = Hash{{RecordOf("B", "&&/r/B"), ""}};
  server.keys["&&/r/B"] = Hash{{RecordOf("A", "&&/r/A"), ""}};
  EXPECT_EQ(LinesOf(server), Texts{".: /r &&/r/A &&/r/B"});
}

TEST(PlanTree, OfResourcesThatAllHoldEachOtherIsNoSquareOfTheStore) {
  // Each stands in all documents, one deeper than the other: as many copies as the square of their
  // number, and blanks as the third power.
  constexpr std::size_t count = 300;
  Server server;
  for (std::size_t i = 0; i < count; ++i) {
    const std::string key = "/r/" + std::to_string(i);
    server.keys[key] = OwnKey(key, {"/r/" + std::to_string((i + 1) % count)});
  }
  const PlannedExport planned(server, {"/r", true});
  EXPECT_EQ(planned.Unplaced(), Texts{});
  EXPECT_GT(planned.plan.documents.size(), 1U);
  std::size_t size = 0;
  for (std::size_t i = 0; i < planned.plan.documents.size(); ++i) {
    const DocumentText document = planned.Write(i, RootForm::kAsStored);
    EXPECT_EQ(TextsOf(document.losses), Texts{});
    size += document.text.size();
  }
  EXPECT_LT(size, 3000000U);
}

TEST(PlanTree, DoesNotDependOnTheOrderOfTheKeys) {
  Server server;
  for (int i = 0; i < 50; ++i) {
    const std::string key = "/r/" + std::to_string(i);
    server.keys[key] = OwnKey(key, {"/r/" + std::to_string(i * 7 % 50), "&&/r/p"});
  }
  server.keys["&&/r/p"] = Hash{{"x", "1"}};
  const Texts lines = LinesOf(server);
  EXPECT_EQ(lines.size(), 50U);
  StoreKeys keys = LearnKeysOf(server, {"/r", true});
  keys.rehash(5000);
  Folders folders("/r", false);
  const Plan plan = PlanTree(&keys, {"/r", true}, &folders);
  ASSERT_EQ(plan.documents.size(), lines.size());
  std::string all;
  std::string expected;
  for (const KeyEntry* entry : plan.keys) all += " " + entry->first;
  for (const std::string& line : lines) expected += line.substr(line.find(' '));
  EXPECT_EQ(all, expected);
}

}  // namespace

}  // namespace ostrafel
