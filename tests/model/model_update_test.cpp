// SPDX-FileCopyrightText: 2026 The Ostrafel developers
// SPDX-License-Identifier: Apache-2.0

#include <gtest/gtest.h>

#include <string>

#include "model/model_fixture.h"

namespace model {
namespace {

TEST_F(ModelTest, ANewScalarCostsOneTypeAndOneHscan) {
  Update("/r", R"({"A": 1})");
  EXPECT_EQ(Stream(),
            "TYPE | &&/r/A\n--\n"
            "HSCAN | /r | 0 | MATCH | &&ObjectRef A *\n--\n"
            "HDEL | /r | A\n"
            "HDEL | /r | &&Array A &&/r/A\n"
            "HDEL | /r | &&ObjectRef A &&/r/A\n"
            "HDEL | /r | &&Object A &&/r/A\n--\n"
            "HSET | /r | A | 1\n");
}

TEST_F(ModelTest, ReservedStringsAreNotPruned) {
  Update("/r", R"({"&&ETag": "x"})");
  EXPECT_EQ(Stream(), "HSET | /r | &&ETag | x\n");
  Update("/r", R"({"&&ETag": 1})");
  EXPECT_EQ(FlightSizes(), (std::vector<std::size_t>{1, 1, 4, 1}));
}

TEST_F(ModelTest, AnObjectThatBecomesAScalarGoesWithEverythingBelowIt) {
  Create("/r", R"({"A": {"x": 1, "y": {"z": 2}}, "B": 1})");
  EXPECT_EQ(Update("/r", R"({"A": "new"})").status, 0);
  EXPECT_EQ(Dump(store), "hash | /r | A | \"new\"\nhash | /r | B | 1\n");
  EXPECT_EQ(Stream(),
            "TYPE | &&/r/A\n--\n"
            "SCAN | 0 | MATCH | &&/r/A/* | COUNT | 1000\n--\n"
            "HSCAN | /r | 0 | MATCH | &&ObjectRef A *\n--\n"
            "UNLINK | &&/r/A\n"
            "UNLINK | &&/r/A/y\n"
            "HDEL | /r | A\n"
            "HDEL | /r | &&Array A &&/r/A\n"
            "HDEL | /r | &&ObjectRef A &&/r/A\n"
            "HDEL | /r | &&Object A &&/r/A\n--\n"
            "HSET | /r | A | \"new\"\n");
}

TEST_F(ModelTest, AHashThatStaysAHashIsMergedInto) {
  Create("/r", R"({"A": {"x": 1, "y": {"z": 2}}})");
  Update("/r", R"({"A": {"x": 3, "w": 4}})");
  EXPECT_EQ(Dump(store),
            "hash | &&/r/A | &&Object y &&/r/A/y | \n"
            "hash | &&/r/A | w | 4\n"
            "hash | &&/r/A | x | 3\n"
            "hash | &&/r/A/y | z | 2\n"
            "hash | /r | &&Object A &&/r/A | \n");
}

TEST_F(ModelTest, AListOfPlainValuesIsReplacedWithoutAScan) {
  Create("/r", R"({"A": [1, 2, 3]})");
  Update("/r", R"({"A": [4]})");
  EXPECT_EQ(Dump(store), "list | &&/r/A | 4\nhash | /r | &&Array A &&/r/A | \n");
  EXPECT_EQ(Stream(),
            "TYPE | &&/r/A\n--\n"
            "LINDEX | &&/r/A | 0\n--\n"
            "HSCAN | /r | 0 | MATCH | &&ObjectRef A *\n--\n"
            "UNLINK | &&/r/A\n"
            "HDEL | /r | A\n"
            "HDEL | /r | &&Array A &&/r/A\n"
            "HDEL | /r | &&ObjectRef A &&/r/A\n"
            "HDEL | /r | &&Object A &&/r/A\n--\n"
            "HSET | /r | &&Array A &&/r/A | \n--\n"
            "RPUSH | &&/r/A | 4\n");
}

TEST_F(ModelTest, AListOfObjectsIsReplacedWithEverythingBelowIt) {
  Create("/r", R"({"A": [{"x": 1}, {"@odata.id": "/m", "y": 1}]})");
  Update("/r", R"({"A": ["s"]})");
  EXPECT_EQ(Dump(store),
            "list | &&/r/A | \"s\"\n"
            "hash | /m | @odata.id | \"/m\"\n"
            "hash | /m | y | 1\n"
            "hash | /r | &&Array A &&/r/A | \n");
}

TEST_F(ModelTest, AMarkerWithNothingBehindItCountsAsAPlainValue) {
  for (const std::string marker : {"&&Object ", "&&ObjectRef ", "&&Array "}) {
    store = {{"&&/r/A", {List{marker}}}, {"&&/r/A/0", {Hash{{"x", "1"}}}}};
    Update("/r", R"({"A": 1})");
    EXPECT_EQ(Dump(store), "hash | &&/r/A/0 | x | 1\nhash | /r | A | 1\n") << marker;
    store = {{"&&/r/A", {List{marker + "k"}}}, {"&&/r/A/0", {Hash{{"x", "1"}}}}};
    Update("/r", R"({"A": 1})");
    EXPECT_EQ(Dump(store), "hash | /r | A | 1\n") << marker;
  }
}

TEST_F(ModelTest, AnInlineObjectThatBecomesALinkGoes) {
  Create("/r", R"({"A": {"x": 1, "y": {"z": 2}}})");
  Update("/r", R"({"A": {"@odata.id": "/l"}})");
  EXPECT_EQ(Dump(store), "hash | /r | &&ObjectRef A /l | \n");
  EXPECT_EQ(Stream(),
            "HEXISTS | /r | &&Object A &&/r/A\n--\n"
            "TYPE | &&/r/A\n--\n"
            "HSCAN | /r | 0 | MATCH | &&ObjectRef A *\n--\n"
            "SCAN | 0 | MATCH | &&/r/A/* | COUNT | 1000\n--\n"
            "UNLINK | &&/r/A\n"
            "UNLINK | &&/r/A/y\n"
            "HDEL | /r | A\n"
            "HDEL | /r | &&Array A &&/r/A\n"
            "HDEL | /r | &&ObjectRef A &&/r/A\n"
            "HDEL | /r | &&Object A &&/r/A\n--\n"
            "HSET | /r | &&ObjectRef A /l | \n");
}

TEST_F(ModelTest, EveryOldLinkOfAPropertyGoesEvenThatOfANameWithABlank) {
  Create("/r", R"({"A": {"@odata.id": "/old"}, "A B": {"@odata.id": "/other"},
                   "AB": {"@odata.id": "/kept"}})");
  Update("/r", R"({"A": {"@odata.id": "/new"}})");
  EXPECT_EQ(Dump(store),
            "hash | /r | &&ObjectRef A /new | \nhash | /r | &&ObjectRef AB /kept | \n");
}

TEST_F(ModelTest, ATwinIsScannedForAKeyWithoutThePrefix) {
  store = {{"/x", {List{"&&Object &&/x/0"}}},
           {"/x/a", {Hash{{"b", "1"}}}},
           {"&&/x/0", {Hash{{"c", "1"}}}},
           {"&&/x", {Hash{{"d", "1"}}}}};
  EXPECT_EQ(Update("/r", R"({"A": {"@odata.id": "/x", "v": 1}})").status, 0);
  // "&&/x" itself is nobody's business.
  EXPECT_EQ(Dump(store),
            "hash | &&/x | d | 1\n"
            "hash | /r | &&Object A /x | \n"
            "hash | /x | @odata.id | \"/x\"\n"
            "hash | /x | v | 1\n");
  EXPECT_EQ(Describe(flights[0].commands[0]), "TYPE | /x");
  EXPECT_EQ(Describe(flights[1].commands[0]), "LINDEX | /x | 0");
  EXPECT_EQ(Describe(flights[2].commands[0]), "SCAN | 0 | MATCH | /x/* | COUNT | 1000");
  EXPECT_EQ(Describe(flights[3].commands[0]), "SCAN | 0 | MATCH | &&/x/* | COUNT | 1000");
}

TEST_F(ModelTest, ASecondWayToAStaleKeyScansNothing) {
  store = {{"/x", {std::string("s")}}, {"/x/a", {Hash{{"b", "1"}}}}};
  Update("/r", R"({"A": {"@odata.id": "/x", "v": 1}, "B": {"@odata.id": "/x", "v": 1}})");
  std::size_t scans = 0;
  std::size_t types = 0;
  std::size_t unlinks = 0;
  for (const Flight& flight : flights) {
    for (const Command& command : flight.commands) {
      scans += command[0] == "SCAN" ? 1u : 0u;
      types += command == Command{"TYPE", "/x"} ? 1u : 0u;
      unlinks += command == Command{"UNLINK", "/x"} ? 1u : 0u;
    }
  }
  EXPECT_EQ(scans, 2u);
  EXPECT_EQ(types, 2u);
  EXPECT_EQ(unlinks, 2u);
}

TEST_F(ModelTest, ASubtreeInsideAPrunedOneIsNotScannedAgain) {
  store = {{"&&/r/A", {std::string("s")}}, {"&&/r/A/B", {std::string("t")}}};
  Update("/r", R"({"A": {"B": 1}})");
  EXPECT_EQ(Dump(store), "hash | &&/r/A | B | 1\nhash | /r | &&Object A &&/r/A | \n");
  std::size_t scans = 0;
  for (const Flight& flight : flights) scans += flight.commands[0][0] == "SCAN" ? 1u : 0u;
  EXPECT_EQ(scans, 1u);
}

TEST_F(ModelTest, AnObjectInsideOneThatReplacesAnotherTypeFails) {
  // The removal of the list only waits, so the HSCAN of the new parent still meets it.
  store = {{"&&/r/A", {List{"1"}}}};
  const Outcome outcome = Update("/r", R"({"A": {"B": {"x": 1}}})");
  EXPECT_EQ(outcome.err,
            ">>> Error occurs while parsing file " + folder.Path() + "/document.json\n");
  EXPECT_EQ(Dump(store), "list | &&/r/A | 1\n");
}

TEST_F(ModelTest, AChildKeyWithALastSlashIsScannedWithoutASecondOne) {
  store = {{"&&/r/A/", {std::string("s")}}, {"&&/r/A/x", {std::string("t")}}};
  Update("/r", R"({"A/": 1})");
  EXPECT_EQ(Dump(store), "hash | /r | A/ | 1\n");
}

TEST_F(ModelTest, ElementsArePrunedFromTheirListAndByNoHscan) {
  Update("/r", R"({"L": [{"x": 1}]})");
  EXPECT_EQ(Stream(),
            "TYPE | &&/r/L\n--\n"
            "HSCAN | /r | 0 | MATCH | &&ObjectRef L *\n--\n"
            "TYPE | &&/r/L/0\n--\n"
            "TYPE | &&/r/L/0/x\n--\n"
            "HSCAN | &&/r/L/0 | 0 | MATCH | &&ObjectRef x *\n--\n"
            "LREM | &&/r/L | 0 | 0\n"
            "LREM | &&/r/L | 0 | &&Array &&/r/L/0\n"
            "LREM | &&/r/L | 0 | &&ObjectRef &&/r/L/0\n"
            "LREM | &&/r/L | 0 | &&Object &&/r/L/0\n"
            "HDEL | &&/r/L/0 | x\n"
            "HDEL | &&/r/L/0 | &&Array x &&/r/L/0/x\n"
            "HDEL | &&/r/L/0 | &&ObjectRef x &&/r/L/0/x\n"
            "HDEL | &&/r/L/0 | &&Object x &&/r/L/0/x\n"
            "HDEL | /r | L\n"
            "HDEL | /r | &&Array L &&/r/L\n"
            "HDEL | /r | &&ObjectRef L &&/r/L\n"
            "HDEL | /r | &&Object L &&/r/L\n--\n"
            "HSET | &&/r/L/0 | x | 1\n"
            "HSET | /r | &&Array L &&/r/L | \n--\n"
            "RPUSH | &&/r/L | &&Object &&/r/L/0\n");
}

TEST_F(ModelTest, AnEmptyIdPrunesTheKeyThatFollowsFromTheName) {
  store = {{"&&/r/A", {std::string("s")}}};
  Update("/r", R"({"A": {"@odata.id": "", "x": 1}})");
  EXPECT_EQ(Dump(store),
            "hash |  | @odata.id | \"\"\n"
            "hash |  | x | 1\n"
            "hash | /r | &&Object A  | \n");
}

TEST_F(ModelTest, AFailedLinkIsWrittenAsAnInlineObject) {
  // The parent is no hash, so the HSCAN behind the link's pruning is refused, and so is that of
  // the inline path: the member fails.
  store = {{"/r", {List{"x"}}}};
  const Outcome outcome = Update("/r", R"({"A": {"@odata.id": "/l"}})");
  EXPECT_EQ(outcome.status, 255);
  EXPECT_EQ(Stream(),
            "HEXISTS | /r | &&Object A &&/r/A\n--\n"
            "TYPE | &&/r/A\n--\n"
            "HSCAN | /r | 0 | MATCH | &&ObjectRef A *\n--\n"
            "TYPE | /l\n--\n"
            "HSCAN | /r | 0 | MATCH | &&ObjectRef A *\n");
}

TEST_F(ModelTest, AScalarIsWrittenEvenWhenItCouldNotBePruned) {
  const std::string path = folder.Write("d.json", R"({"A": 1})");
  ReplayEndpoint endpoint({{{{"TYPE", "&&/r/A"}}, {ErrorReply("ERR no")}},
                           {{{"HSET", "/r", "A", "1"}}, {IntegerReply(1)}}});
  EXPECT_EQ(RunModel(endpoint, {"update", path, "/r"}).out, kSuccessLine);
  EXPECT_FALSE(endpoint.FirstDivergence());
}

TEST_F(ModelTest, CursorsAreFollowedToTheirEnd) {
  const std::string path = folder.Write("d.json", R"({"A": 1})");
  const auto page = [](const char* cursor, std::vector<Reply> items) {
    return ArrayReply({StringReply(cursor), ArrayReply(std::move(items))});
  };
  ReplayEndpoint endpoint(
      {{{{"TYPE", "&&/r/A"}}, {StatusReply("string")}},
       {{{"SCAN", "0", "MATCH", "&&/r/A/*", "COUNT", "1000"}}, {page("17", {})}},
       {{{"SCAN", "17", "MATCH", "&&/r/A/*", "COUNT", "1000"}},
        {page("0", {StringReply("&&/r/A/x")})}},
       {{{"HSCAN", "/r", "0", "MATCH", "&&ObjectRef A *"}},
        {page("5", {StringReply("&&ObjectRef A /b"), StringReply("")})}},
       {{{"HSCAN", "/r", "5", "MATCH", "&&ObjectRef A *"}}, {page("0", {})}},
       {{{"UNLINK", "&&/r/A"},
         {"UNLINK", "&&/r/A/x"},
         {"HDEL", "/r", "A"},
         {"HDEL", "/r", "&&Array A &&/r/A"},
         {"HDEL", "/r", "&&ObjectRef A &&/r/A"},
         {"HDEL", "/r", "&&Object A &&/r/A"},
         {"HDEL", "/r", "&&ObjectRef A /b"}},
        std::vector<Reply>(7, IntegerReply(0))},
       {{{"HSET", "/r", "A", "1"}}, {IntegerReply(1)}}});
  EXPECT_EQ(RunModel(endpoint, {"update", path, "/r"}).out, kSuccessLine);
  EXPECT_FALSE(endpoint.FirstDivergence()) << Describe(*endpoint.FirstDivergence());
}

TEST_F(ModelTest, MalformedPagesFailLikeRepliesOfAnotherType) {
  const std::string path = folder.Write("d.json", R"({"A": []})");
  const Command type = {"TYPE", "&&/r/A"};
  const Command hscan = {"HSCAN", "/r", "0", "MATCH", "&&ObjectRef A *"};
  const Reply malformed[] = {
      ArrayReply({}),
      ArrayReply({StringReply("0")}),
      ArrayReply({IntegerReply(0), ArrayReply({})}),
      ArrayReply({StringReply("0"), StringReply("")}),
      ArrayReply({StringReply("0"), ArrayReply({NilReply(), NilReply()})}),
      NilReply(),
  };
  for (const Reply& reply : malformed) {
    ReplayEndpoint endpoint({{{type}, {StatusReply("none")}}, {{hscan}, {reply}}});
    EXPECT_EQ(RunModel(endpoint, {"update", path, "/r"}).err,
              ">>> Error occurs while parsing file " + path + "\n");
    EXPECT_FALSE(endpoint.FirstDivergence());
  }
}

}  // namespace
}  // namespace model
